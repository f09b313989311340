// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/NoteRules.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "PPDX/Utilities/ModelState.h"
#include "PPDX/Utilities/NarrowText.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/editing/PaneEditor.h"
#include "pane/panel/CustomizePaneController.h"

#include <algorithm>
#include <array>
#include <utility>

namespace torka {
namespace {

struct RuleWord {
    JobNoteFlag flag; // jobNoteNoFlag for the maximum length
    const PaneWord& word;
};

// In the order of the tooltip.
constexpr std::array ruleWords{
    RuleWord{jobNoteRequired, words::ruleRequired}, RuleWord{jobNoteLengthReq, words::ruleExactly},
    RuleWord{jobNoteNoFlag, words::ruleAtMost},     RuleWord{jobNoteMinLength, words::ruleAtLeast},
    RuleWord{jobNoteNoComma, words::ruleNoComma},   RuleWord{jobNoteTwoCharField, words::ruleTwoCharacters},
};

constexpr const PaneWord* wordOf(JobNoteFlag flag) {
    for (const RuleWord& rule : ruleWords) {
        if (rule.flag == flag) {
            return &rule.word;
        }
    }
    return nullptr;
}

// "" for a flag without a rule.
constexpr std::string_view englishOf(JobNoteFlag flag) {
    for (const RuleWord& rule : ruleWords) {
        if (rule.flag == flag) {
            return rule.word.english;
        }
    }
    return {};
}

// Every rule in the table of flags has a word here with the same English text.
static_assert(std::ranges::all_of(jobNoteFlags,
                                  [](const JobNoteFlagRow& row) { return englishOf(row.flag) == row.rule; }));
static_assert(englishOf(jobNoteNoFlag) == maximumLengthRule);

std::vector<std::string> rulesOf(const PaneTexts& texts, const PPDXJobNote& note) {
    std::vector<std::string> rules;
    for (const auto& [flag, word] : ruleWords) {
        const bool isLength = flag == jobNoteNoFlag;
        const bool isMinimum = flag == jobNoteMinLength;
        const bool holds = isLength    ? !note.IsLengthReq()
                           : isMinimum ? note.MinLength() > 0
                                       : (note.NoteFlags() & flag) != 0;
        if (holds) {
            rules.push_back(texts.Say(word, std::to_string(isMinimum ? note.MinLength() : note.MaxLength())));
        }
    }
    return rules;
}

// The characters that the note admits; "" when it admits any.
std::string allowedSentence(const PaneTexts& texts, const PPDXJobNote& note) {
    std::vector<std::string> kinds;
    if (!takesAnyCharacter(note.NoteFlags())) {
        const std::uint8_t admitted = admittedCharacters(note.NoteFlags());
        for (const NoteCharacterKind& kind : noteCharacterKinds) {
            if ((admitted & kind.kind) != 0) {
                kinds.push_back(kind.kind == noteDigits    ? texts.Say(words::allowedDigits)
                                : kind.kind == noteLetters ? texts.Say(words::allowedLetters)
                                : kind.kind == noteBlank   ? texts.Say(words::allowedSpaces)
                                                           : std::string(kind.name));
            }
        }
    }
    return kinds.empty() ? std::string() : texts.Say(words::allowedCharacters, joined(kinds));
}

// The characters, each once. `isWanted` judges a whole character.
template <class Wanted>
std::u16string charactersOf(std::u16string_view text, const Wanted& isWanted) {
    std::u16string characters;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t begin = position;
        nextCodePoint(text, position);
        const std::u16string_view character = text.substr(begin, position - begin);
        if (isWanted(character) && characters.find(character) == std::u16string::npos) {
            characters += character;
        }
    }
    return characters;
}

std::u16string without(std::u16string_view text, std::u16string_view characters) {
    std::u16string rest;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t begin = position;
        nextCodePoint(text, position);
        const std::u16string_view character = text.substr(begin, position - begin);
        if (characters.find(character) == std::u16string_view::npos) {
            rest += character;
        }
    }
    return rest;
}

std::string notAllowed(const PaneTexts& texts, const PPDXJobNote& note, std::u16string_view characters) {
    return isSecret(note) ? texts.Say(words::noteRefusedSecret)
                          : texts.Say(words::noteRefused, utf8FromUtf16(characters));
}

} // namespace

std::string noteRules(const PaneTexts& texts, const PPDXControl& control) {
    const auto* note = dynamic_cast<const PPDXJobNote*>(&control);
    if (note == nullptr || note->IsOnOffSwitch()) {
        return {};
    }
    std::vector<std::string> sentences;
    if (std::string allowed = allowedSentence(texts, *note); !allowed.empty()) {
        sentences.push_back(std::move(allowed));
    }
    sentences.push_back(texts.Say(words::noteText, joined(rulesOf(texts, *note))));
    return joined(sentences, " ");
}

std::string brokenRules(const PaneTexts& texts, const PPDXJobNote& note, const CFStringRef& text) {
    std::vector<std::string> rules;
    for (const BrokenNoteRule& rule : note.BrokenRules(text)) {
        rules.push_back(texts.Say(*wordOf(rule.flag), std::to_string(rule.length)));
    }
    return rules.empty() ? std::string() : texts.Say(words::noteBreaks, nameOf(note), joined(rules));
}

NoteCounter noteCounter(const PaneTexts& texts, const PPDXJobNote& note, const CFStringRef& text,
                        bool isLocked) {
    const std::string present = std::to_string(CFStringGetLength(text));
    const std::string maximum = std::to_string(note.MaxLength());
    NoteCounter counter{present + " / " + maximum, texts.Say(words::lengthOf, present, maximum), {}};
    if (!isLocked) {
        counter.broken = brokenRules(texts, note, text);
    }
    if (!counter.broken.empty() && CFStringGetLength(text) == 0) {
        counter.shown = texts.Say(words::required);
    }
    return counter;
}

TypedNote takeTypedText(const PaneTexts& texts, CustomizePaneController& controller, std::uint32_t tag,
                        PPDXJobNote& note, const CFStringRef& typed, bool isChecked) {
    std::vector<std::string> sentences;
    const CFStringEncoding encoding = narrowTextEncoding();
    const std::u16string outside = charactersOutside(typed->units, encoding);
    CFStringRef text = typed;
    if (!outside.empty()) {
        text = CFStringCreateWithCharacters(without(typed->units, outside));
        sentences.push_back(notAllowed(texts, note, outside));
        sentences.push_back(texts.Say(words::noteEncoding, std::string(encodingName(encoding))));
    }
    if (!isChecked) {
        note.SetCurrentControlWithCFString(text);
        return {text, joined(sentences, "\n")};
    }
    const CFStringRef shown = controller.controlTextDidChange(tag, text);
    if (CFStringGetLength(text) > note.MaxLength()) {
        if (!CFEqual(shown, text)) {
            sentences.push_back(texts.Say(words::noteTooLong, std::to_string(note.MaxLength())));
        }
    } else if (encodeText(text->units, kCFStringEncodingMacRoman)) { // other texts are not checked
        const std::u16string refused = charactersOf(text->units, [&](std::u16string_view character) {
            return std::ranges::any_of(
                character, [&](char16_t unit) { return !isAdmittedCharacter(note.NoteFlags(), unit); });
        });
        if (!refused.empty()) {
            sentences.push_back(notAllowed(texts, note, refused));
            sentences.push_back(allowedSentence(texts, note));
        }
    }
    return {shown, joined(sentences, "\n")};
}

std::vector<BrokenNote> brokenNotes(const PaneTexts& texts) {
    const std::vector<PPDXJobNote*> askedFor = popupJobNotes(texts.editor.Model());
    std::vector<BrokenNote> broken;
    texts.editor.Catalog().ForEach([&](const PaneField& field) {
        const auto* note = dynamic_cast<const PPDXJobNote*>(field.control);
        if (note == nullptr || std::ranges::find(askedFor, note) != askedFor.end() ||
            texts.editor.LockOf(*note) != PaneLock::none) {
            return;
        }
        if (std::string sentence = brokenRules(texts, *note, note->CopyNotes()); !sentence.empty()) {
            broken.push_back({field.keyword, std::move(sentence)});
        }
    });
    return broken;
}

} // namespace torka
