#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/NoteRules.h"
#include "pane/presentation/PaneTexts.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class CustomizePaneController;
class PPDXJobNote;

// The form that asks for the popup job notes before a job is printed: its fields, and the person's
// preferences for it in the globals of PanelState.h.
//
// A note changes while its text is typed; Restore brings back what was there before. Refers to its arguments,
// which must outlive it.
class PopupNoteForm {
public:
    // `checkedOutlets`: the fields whose text is held to the characters that the note admits.
    PopupNoteForm(const PaneTexts& texts, CustomizePaneController& controller,
                  const std::set<std::string, std::less<>>& checkedOutlets);

    struct Field {
        PPDXJobNote* note;
        std::uint32_t tag;  // of the controller
        std::string number; // "11" to "55"
        std::string outlet; // "popupJobNoteVal11", or "popupJobNoteSec11" for a secret
        std::string name;
        std::string rules;
        bool isSwitch;
        bool isSecret;
        bool isLocked;
        bool isChecked;
    };
    const std::vector<Field>& Fields() const { return fields; }
    // False when there are no notes, or the person wants no form and no text breaks a rule.
    bool MustAsk() const;

    static std::string ValueOf(const Field& field);
    // Takes a text that a person typed; the result is what the field holds from now on.
    CFStringRef Type(const Field& field, const CFStringRef& typed);
    void Switch(const Field& field, bool isOn);
    NoteCounter CounterOf(const Field& field) const;
    // The sentences of all fields that break a rule, one a line, and the first of these fields.
    struct Warning {
        std::string text; // "" for none
        std::size_t firstField = 0;
    };
    Warning BrokenFields() const;

    struct Preferences {
        bool beginsWithLast; // the next job begins with these values
        bool asksAlways;     // else only when a text breaks a rule
    };
    Preferences PresentPreferences() const;
    // Whether a note is kept for the next job, so that beginsWithLast has a meaning.
    bool HasRemembered() const;
    // In force from the first time on that the person wants something else than the defaults.
    static void Keep(const Preferences& preferences);
    // The notes as they were when the form was made.
    void Restore();
    // Writes the texts of the notes, secret ones left out, into the first global when the form opens and into
    // the second when it closes: gPopupJobNotesSavedNote, gPopupJobNotesNote.
    void KeepTextsBefore() const;
    void KeepTextsAfter() const;

private:
    // What a note holds, to bring it back.
    struct NoteState {
        CFStringRef text;
        bool isUtf8;
        bool isOn;
    };

    const PaneTexts& texts;
    CustomizePaneController& controller;
    std::vector<PPDXJobNote*> notes;
    std::vector<Field> fields;
    std::vector<NoteState> before;
};

} // namespace torka
