// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/NoteRules.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/editing/PaneEditor.h"

#include <algorithm>
#include <array>

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

} // namespace

std::string noteRules(const PaneTexts& texts, const PPDXControl& control) {
    const auto* note = dynamic_cast<const PPDXJobNote*>(&control);
    if (note == nullptr || note->IsOnOffSwitch()) {
        return {};
    }
    std::vector<std::string> kinds;
    if (!takesAnyCharacter(note->NoteFlags())) {
        const std::uint8_t admitted = admittedCharacters(note->NoteFlags());
        for (const NoteCharacterKind& kind : noteCharacterKinds) {
            if ((admitted & kind.kind) != 0) {
                kinds.push_back(kind.kind == noteDigits    ? texts.Say(words::allowedDigits)
                                : kind.kind == noteLetters ? texts.Say(words::allowedLetters)
                                : kind.kind == noteBlank   ? texts.Say(words::allowedSpaces)
                                                           : std::string(kind.name));
            }
        }
    }
    std::vector<std::string> sentences;
    if (!kinds.empty()) {
        sentences.push_back(texts.Say(words::allowedCharacters, joined(kinds)));
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
