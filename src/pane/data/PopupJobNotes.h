#pragma once

#include "platform/Printing.h"

#include <string>
#include <string_view>
#include <vector>

// The popup job notes: those that are asked for before a job is printed, and what is remembered of them
// (docs/presets.md tells the stored form).

namespace torka {

class PPDXJobNote;
class ZANPPD;

// Looks for notes flagged "PopupJN", and sets gPopupJobNotesFoundOne and gPopupJobNotesDoneInitializing.
void lookForPopupJobNotes(const ZANPPD& model);

// The notes that the dialog asks for, in the description's order; no more than it has fields.
std::vector<PPDXJobNote*> popupJobNotes(const ZANPPD& model);
// The numbers of the fields for that many notes, "11" to "55": row n of the fields serves n notes. More than
// five notes take the rows from the longest on.
std::vector<std::string> popupJobNoteFields(std::size_t notes);
// Whether a value of the note is kept for the next job.
bool isPopupJobNoteRemembered(const ZANPPD& model, const PPDXJobNote& note);
// False when the person wants to be asked only about texts that break a rule, and none does. The defaults
// button (gPopupJobNotesDefaultsButton) makes the dialog ask again.
bool mustAskForPopupJobNotes(const std::vector<PPDXJobNote*>& notes);

// What QVPDEDataWrite stores: three characters (enable, setting, show last) from the globals of PanelState.h,
// then a line "KEYWORD=VALUE" for each popup note that is to be remembered. Secret notes are never in it.
std::string popupJobNotePreferences(const ZANPPD& model);
// Takes the preferences that the model has read (ReadPUJNPrefs) over into the globals, and when enabled, and
// the last values are to be shown, the remembered values into their notes.
void applyPopupJobNotePreferences(ZANPPD& model);
// The queue's stored preferences are read from this description from now on; "" for none.
void readPopupJobNotePreferencesFrom(std::string_view ppdPath);
// Sends the preferences to the queue; not when they are those that were read or sent last.
OSStatus QVPDEDataWrite(const PMPrinter& printer, std::string_view preferences);

} // namespace torka
