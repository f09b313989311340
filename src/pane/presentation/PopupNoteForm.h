// SPDX-License-Identifier: Apache-2.0
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

// The form that asks for the popup job notes before a job is printed. It has the fields, and the preferences
// of the person in the globals of PanelState.h.
//
// Typing changes a note at once; Restore brings back the notes as they were. Refers to its arguments, which
// must outlive it.
class PopupNoteForm {
public:
    // `checkedOutlets`: the fields in which only characters that the note admits may be typed.
    PopupNoteForm(const PaneTexts& texts, CustomizePaneController& controller,
                  const std::set<std::string, std::less<>>& checkedOutlets);

    struct Field {
        PPDXJobNote* note;
        std::uint32_t tag;  // of the field in the controller
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
    // False when there are no notes, and when the person wants no form and no text breaks a rule.
    bool MustAsk() const;

    static std::string ValueOf(const Field& field);
    TypedNote Type(const Field& field, const CFStringRef& typed);
    void Switch(const Field& field, bool isOn);
    NoteCounter CounterOf(const Field& field) const;
    // The sentences of all fields that break a rule, one a line, and the index of the first of these fields.
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
    // Whether a note is remembered for the next job. Without one, beginsWithLast has no meaning.
    bool HasRemembered() const;
    // Stores the preferences. They are in force from the first time on that they differ from the defaults.
    static void Keep(const Preferences& preferences);
    // Sets the notes to their state when the form was made.
    void Restore();
    // Write the texts of the notes into gPopupJobNotesSavedNote when the form opens and into
    // gPopupJobNotesNote when it closes. Texts of secret notes are left out.
    void KeepTextsBefore() const;
    void KeepTextsAfter() const;

private:
    // The state of a note, for Restore.
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
