// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/CustomizePaneController.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "pane/panel/PaneInterface.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <limits>

namespace torka {

void CustomizePaneController::drawControlsInTree(const PPDTree& tree) {
    if (view != nullptr) {
        view->drawControlsInTree(tree);
    }
}

void CustomizePaneController::greyoutShortcutControls(bool grey) {
    if (view != nullptr) {
        view->greyoutShortcutControls(grey);
    }
}

bool CustomizePaneController::IsAlpha(UniChar character) {
    return noteCharacterKind(character) == noteLetters;
}

bool CustomizePaneController::IsDigit(UniChar character) {
    return noteCharacterKind(character) == noteDigits;
}

bool CustomizePaneController::IsValidKey(const PPDXJobNote& note, UniChar character) {
    return isAdmittedCharacter(note.NoteFlags(), character);
}

bool CustomizePaneController::LimitTextLengthOfJobNoteControl(std::string_view keyword,
                                                              const CFStringRef& text) {
    jobNoteClipValue = 0;
    const PPDXJobNote* note = FindNote(keyword);
    const bool numeric = note != nullptr && note->IsNumeric() && !note->IsAlpha();
    isNumericVal = numeric ? 1 : 0;
    isComma = numeric && note->IsMultiComma() ? 1 : 0;
    isHypen = numeric && note->IsHyphen() ? 1 : 0;
    if (note == nullptr || CFStringGetLength(text) <= note->MaxLength()) {
        return false;
    }
    jobNoteClipValue = static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(note->MaxLength(), 0, std::numeric_limits<std::uint32_t>::max()));
    return true;
}

std::int64_t CustomizePaneController::isNumericText(const CFStringRef& text) const {
    std::int64_t last = -1;
    for (CFIndex i = 0; i < CFStringGetLength(text); ++i) {
        const UniChar character = CFStringGetCharacterAtIndex(text, i);
        if (!IsDigit(character) && !(character == u',' && isComma != 0) &&
            !(character == u'-' && isHypen != 0)) {
            last = i;
        }
    }
    return last;
}

std::uint32_t CustomizePaneController::TagOfJobNote(std::string_view keyword) {
    const auto [place, isNew] =
        tags.try_emplace(std::string(keyword), static_cast<std::uint32_t>(keywords.size() + 1));
    if (isNew) {
        keywords.emplace_back(keyword);
    }
    return place->second;
}

CFStringRef CustomizePaneController::controlTextDidChange(std::uint32_t tag, const CFStringRef& text) {
    CFStringRef result = text ? text : cfString("");
    const std::string keyword = tag > 0 && tag <= keywords.size() ? keywords[tag - 1] : std::string();
    PPDXJobNote* note = FindNote(keyword);
    if (!LimitTextLengthOfJobNoteControl(keyword, result)) {
        currentJobNoteControlTag = tag;
        if (note != nullptr && encodeText(result->units, kCFStringEncodingMacRoman)) {
            const auto refused = std::ranges::find_if(
                result->units, [note](UniChar character) { return !IsValidKey(*note, character); });
            if (refused != result->units.end()) { // only the first refused character is removed
                const auto index = static_cast<std::size_t>(refused - result->units.begin());
                result = CFStringCreateWithCharacters(
                    std::u16string(result->units, 0, index).append(result->units, index + 1));
            }
        }
        JobNoteString = result;
        if (note != nullptr) {
            note->SetCurrentControlWithCFString(result);
        }
    } else if (tag == currentJobNoteControlTag && !isLanguageEncodingNonISOLatin()) {
        JobNoteString = note->CopyNotes(); // an undo or a preset may have changed it since
        result = JobNoteString;
    } else {
        note->SetCurrentControlWithCFString(result);
    }
    resetJPServerpresetKeys();
    return result;
}

void CustomizePaneController::resetJPServerpresetKeys() const {
    if (forgetServerPreset) {
        forgetServerPreset();
    }
}

PPDXJobNote* CustomizePaneController::FindNote(std::string_view keyword) const {
    return model == nullptr || model->GetControls() == nullptr
               ? nullptr
               : model->GetControls()->FindJobNote(std::string(keyword).c_str(), true);
}

// PPD 4.3: a description without an encoding is Latin.
bool CustomizePaneController::isLanguageEncodingNonISOLatin() const {
    const CString* encoding = model == nullptr ? nullptr : model->LanguageEncoding();
    return encoding != nullptr && !std::string_view(encoding->Buffer()).starts_with("ISOLatin");
}

} // namespace torka
