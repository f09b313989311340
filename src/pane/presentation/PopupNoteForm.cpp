// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/PopupNoteForm.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "pane/data/PanelState.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/panel/CustomizePaneController.h"

#include <algorithm>
#include <array>

namespace torka {
namespace {

void keepTexts(const std::vector<PPDXJobNote*>& notes, std::array<std::string, popupJobNoteCount>& kept) {
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const bool isShown = i < notes.size() && !isSecret(*notes[i]);
        kept[i] = isShown ? PaneEditor::Value(*notes[i]) : std::string();
    }
}

} // namespace

PopupNoteForm::PopupNoteForm(const PaneTexts& paneTexts, CustomizePaneController& paneController,
                             const std::set<std::string, std::less<>>& checkedOutlets)
    : texts(paneTexts)
    , controller(paneController)
    , notes(popupJobNotes(paneTexts.editor.Model())) {
    const std::vector<std::string> numbers = popupJobNoteFields(notes.size());
    for (std::size_t i = 0; i < notes.size(); ++i) {
        PPDXJobNote& note = *notes[i];
        before.push_back({note.CopyNotes(), note.NotesAreUTF8(), note.GetNotesOnValue()});
        const std::string outlet = (isSecret(note) ? "popupJobNoteSec" : "popupJobNoteVal") + numbers[i];
        fields.push_back({&note, controller.TagOfJobNote(note.Keyword()), numbers[i], outlet, nameOf(note),
                          noteRules(texts, note), note.IsOnOffSwitch(), isSecret(note),
                          texts.editor.LockOf(note) != PaneLock::none, checkedOutlets.contains(outlet)});
    }
}

bool PopupNoteForm::MustAsk() const { return !notes.empty() && mustAskForPopupJobNotes(notes); }

std::string PopupNoteForm::ValueOf(const Field& field) { return PaneEditor::Value(*field.note); }

TypedNote PopupNoteForm::Type(const Field& field, const CFStringRef& typed) {
    return takeTypedText(texts, controller, field.tag, *field.note, typed, field.isChecked);
}

void PopupNoteForm::Switch(const Field& field, bool isOn) {
    controller.controlTextDidChange(field.tag, cfString(isOn ? "True" : "False"));
    field.note->SetNotesOnValue(isOn);
}

NoteCounter PopupNoteForm::CounterOf(const Field& field) const {
    return noteCounter(texts, *field.note, cfString(ValueOf(field)), field.isLocked);
}

PopupNoteForm::Warning PopupNoteForm::BrokenFields() const {
    Warning warning;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string sentence = CounterOf(fields[i]).broken;
        if (sentence.empty()) {
            continue;
        }
        if (warning.text.empty()) {
            warning.firstField = i;
        } else {
            warning.text += '\n';
        }
        warning.text += sentence;
    }
    return warning;
}

PopupNoteForm::Preferences PopupNoteForm::PresentPreferences() const {
    const bool inForce = gPopupJobNotesSavedEnable == '1';
    return {inForce && gPopupJobNotesSavedShowLast == '1',
            !inForce || gPopupJobNotesSavedSetting != '0' || gPopupJobNotesDefaultsButton != 0};
}

bool PopupNoteForm::HasRemembered() const {
    return std::ranges::any_of(notes, [this](const PPDXJobNote* note) {
        return isPopupJobNoteRemembered(texts.editor.Model(), *note);
    });
}

void PopupNoteForm::Keep(const Preferences& preferences) {
    if (preferences.beginsWithLast || !preferences.asksAlways) {
        gPopupJobNotesSavedEnable = '1';
    }
    gPopupJobNotesSavedShowLast = preferences.beginsWithLast ? '1' : '0';
    gPopupJobNotesSavedSetting = preferences.asksAlways ? '1' : '0';
    gPopupJobNotesDefaultsButton = 0;
}

void PopupNoteForm::Restore() {
    for (std::size_t i = 0; i < notes.size(); ++i) {
        if (before[i].isUtf8) {
            notes[i]->SetUTF8Notes(before[i].text);
        } else {
            notes[i]->SetCurrentControlWithCFString(before[i].text);
        }
        notes[i]->SetNotesOnValue(before[i].isOn);
    }
}

void PopupNoteForm::KeepTextsBefore() const { keepTexts(notes, gPopupJobNotesSavedNote); }

void PopupNoteForm::KeepTextsAfter() const { keepTexts(notes, gPopupJobNotesNote); }

} // namespace torka
