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
    setPopupJobNotesState({});
}

PopupJobNotesState popupJobNotesState() {
    return {gPopupJobNotesDefaultsButton, gPopupJobNotesSavedEnable,    gPopupJobNotesSavedSetting,
            gPopupJobNotesSavedShowLast,  gPopupJobNotesLangIsJapanese, gPopupJobNotesDoneInitializing,
            gPopupJobNotesFoundOne};
}

void setPopupJobNotesState(const PopupJobNotesState& state) {
    gPopupJobNotesDefaultsButton = state.defaultsButton;
    gPopupJobNotesSavedEnable = state.savedEnable;
    gPopupJobNotesSavedSetting = state.savedSetting;
    gPopupJobNotesSavedShowLast = state.savedShowLast;
    gPopupJobNotesLangIsJapanese = state.isJapanese;
    gPopupJobNotesDoneInitializing = state.doneInitializing;
    gPopupJobNotesFoundOne = state.foundOne;
}

} // namespace torka
