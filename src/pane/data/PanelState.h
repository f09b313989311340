// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/Utilities/ModelState.h"
#include "platform/Printing.h"

#include <array>
#include <string>
#include <string_view>

// The process-wide state of the pane, one copy for each loaded plug-in. Only the main thread of the host
// reads and writes it. Other such state: gEndOfPPD, gDocumentServer and the flags of the popup job notes in
// ModelState.h, the language of the server in bidi/module/JobPropertiesState.h, the state of the panel model
// in UI_Panel.h.

namespace torka {

class TorkaFeaturesPDE;

// The newest panel, and the one before it while two exist. TorkaFeaturesPDE writes them at its start and end.
// Neither names a panel that has ended.
extern TorkaFeaturesPDE* sTorkaFeaturesPDE;
extern TorkaFeaturesPDE* sTorkaFeaturesPDEsaved;
// True: the end of the next panel leaves the two pointers above unchanged. Written by TorkaFeaturesPDE.
extern bool invalidDeallocCall;

// The size of sessionQueueName, in bytes with terminator. Written by TorkaFeaturesPDE at its start.
inline constexpr std::size_t sessionQueueNameSize = 256;
// The name of the queue: the file name of the description's link target, without ".ppd"; under CUPS, where
// the path is no link, the name that the print server gives it.
extern std::string sessionQueueName;
// The path of the queue's description, `destinationPPD` (at most 1,023 bytes), is kept by
// bidi/commands/CommandJob.h; TorkaFeaturesPDE sets it at its start.

// The popup job notes of the newest panel. Each new panel resets them; the popup job-note dialog writes them.
inline constexpr std::size_t popupJobNoteCount = 5;
// Not 0 after the Defaults button was pressed. TorkaFeaturesPDE writes it too.
extern int gPopupJobNotesDefaultsButton;
// The stored preferences (PopupJobNotes.h) write these three too.
extern char gPopupJobNotesSavedEnable;   // '0' or '1'
extern char gPopupJobNotesSavedSetting;  // '0' or '1'
extern char gPopupJobNotesSavedShowLast; // '0' or '1'

// Sets all variables of the popup job notes to the values with which a new panel begins.
void resetPopupJobNotes();

// The variables of the popup job notes, kept for a panel while they belong to another one.
struct PopupJobNotesState {
    int defaultsButton = 0;
    char savedEnable = '0';
    char savedSetting = '1';
    char savedShowLast = '0';
    bool isJapanese = false;
    bool doneInitializing = false;
    bool foundOne = false;
};
PopupJobNotesState popupJobNotesState();
void setPopupJobNotesState(const PopupJobNotesState& state);

// True when the description was searched for popup job notes and has none.
inline bool hasNoPopupJobNotes() { return gPopupJobNotesDoneInitializing && !gPopupJobNotesFoundOne; }

// Given state; nothing here reads it

// The texts of the popup job notes after the dialog and before it, note 1 first; a secret one is "". Written
// by resetPopupJobNotes and the popup job-note dialog.
extern std::array<std::string, popupJobNoteCount> gPopupJobNotesNote;
extern std::array<std::string, popupJobNoteCount> gPopupJobNotesSavedNote;
// "/Library/Caches/ZAN/" + the queue's name + ".pdeopen". Written by TorkaFeaturesPDE at its start.
inline constexpr std::size_t cachesPDEOpenFilePathSize = 512; // with its terminator
extern std::string cachesPDEOpenFilePath;
// The folder of the installed plug-in, with a trailing "/"; "" when it does not exist. Written by
// fillPDEInstallPath.
inline constexpr std::size_t sessionPDEPathSize = 256; // with its terminator
extern std::string sessionPDEPath;
// The session of the panel made last, and the address of that panel's printer variable. Null without a panel.
// Written by TorkaFeaturesPDE at its start and end.
extern PMPrintSession currentPrintSession;
extern PMPrinter* thePMPrinter;
// A flag for one application. Each panel clears it; nothing sets it.
extern int gVectorWorksFix;
// Emptied by resetPopupJobNotes; nothing sets it.
extern std::string gPopupJobNotesFileName;

} // namespace torka
