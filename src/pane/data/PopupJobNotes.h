// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <string>
#include <string_view>
#include <vector>

// The popup job notes, which the pane asks for before it prints a job, and the values that are remembered for
// the next job. docs/presets.md describes the stored form.

namespace torka {

class PPDXJobNote;
class ZANPPD;

// Searches for notes with the flag "PopupJN". Sets gPopupJobNotesFoundOne and gPopupJobNotesDoneInitializing.
void lookForPopupJobNotes(const ZANPPD& model);

// The notes that the dialog asks for, in the order of the description. The dialog has 15 fields; further
// notes are logged and left out.
std::vector<PPDXJobNote*> popupJobNotes(const ZANPPD& model);
// The numbers of the fields for `notes` notes, "11" to "55". Row n has n fields and serves n notes. More than
// five notes take the rows from row 5 down.
std::vector<std::string> popupJobNoteFields(std::size_t notes);
// Whether a value of the note is kept for the next job.
bool isPopupJobNoteRemembered(const ZANPPD& model, const PPDXJobNote& note);
// False when the person wants to be asked only about texts that break a rule, and no text breaks one. After
// the Defaults button (gPopupJobNotesDefaultsButton) it is true.
bool mustAskForPopupJobNotes(const std::vector<PPDXJobNote*>& notes);

// The text that QVPDEDataWrite stores: three characters (enable, setting, show last) from the globals of
// PanelState.h, then a line "KEYWORD=VALUE" for each popup note that is remembered. Secret notes are left
// out.
std::string popupJobNotePreferences(const ZANPPD& model);
enum class RememberedValues { take, leave };
// Writes the preferences that the model has read (ReadPUJNPrefs) into the globals. When they are enabled and
// ask for the last values, and these are to be taken, it also writes the remembered values into their notes.
void applyPopupJobNotePreferences(ZANPPD& model, RememberedValues values = RememberedValues::take);
// Sets the description from which the stored preferences are read; "" for none.
void readPopupJobNotePreferencesFrom(std::string_view ppdPath);
// The preferences that the queue has stored, as far as this process knows.
const std::string& knownPopupJobNotePreferences();
void setKnownPopupJobNotePreferences(std::string_view preferences);
// Sends the preferences to the queue. Sends nothing when the queue has them already.
OSStatus QVPDEDataWrite(const PMPrinter& printer, std::string_view preferences);

} // namespace torka
