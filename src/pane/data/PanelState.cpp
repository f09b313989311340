// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PanelState.h"

namespace torka {

TorkaFeaturesPDE* sTorkaFeaturesPDE = nullptr;
TorkaFeaturesPDE* sTorkaFeaturesPDEsaved = nullptr;
bool invalidDeallocCall = false;
std::string sessionQueueName;
std::string cachesPDEOpenFilePath;
std::string sessionPDEPath;
PMPrintSession currentPrintSession;
PMPrinter* thePMPrinter = nullptr;
int gVectorWorksFix = 0;

std::string gPopupJobNotesFileName;
std::array<std::string, popupJobNoteCount> gPopupJobNotesNote;
std::array<std::string, popupJobNoteCount> gPopupJobNotesSavedNote;
int gPopupJobNotesDefaultsButton = 0;
char gPopupJobNotesSavedEnable = '0';
char gPopupJobNotesSavedSetting = '1';
char gPopupJobNotesSavedShowLast = '0';

void resetPopupJobNotes() {
    gPopupJobNotesFileName.clear();
    gPopupJobNotesNote.fill({});
    gPopupJobNotesSavedNote.fill({});
    gPopupJobNotesDefaultsButton = 0;
    gPopupJobNotesSavedEnable = '0';
    gPopupJobNotesSavedSetting = '1';
    gPopupJobNotesSavedShowLast = '0';
    gPopupJobNotesLangIsJapanese = false;
    gPopupJobNotesDoneInitializing = false;
    gPopupJobNotesFoundOne = false;
}

} // namespace torka
