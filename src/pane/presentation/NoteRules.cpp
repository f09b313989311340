#include "pane/presentation/NoteRules.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "pane/data/NoteLength.h"
#include "pane/editing/PaneCatalog.h"

#include <algorithm>
#include <vector>

namespace torka {

std::string noteRules(const PaneTexts& texts, const PPDXControl& control) {
    const auto* note = dynamic_cast<const PPDXJobNote*>(&control);
    if (note == nullptr) {
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
    std::vector<std::string> rules;
    if (!kinds.empty()) {
        rules.push_back(texts.Say(words::allowedCharacters, joined(kinds)));
    }
    rules.push_back(
        texts.Say(note->IsLengthReq() ? words::exactly : words::atMost, std::to_string(note->MaxLength())));
    if (note->MinLength() > 0) {
        rules.push_back(texts.Say(words::atLeast, std::to_string(note->MinLength())));
    }
    return joined(rules, " ");
}

NoteCounter noteCounter(const PaneTexts& texts, const PPDXJobNote& note, std::int64_t length, bool isLocked) {
    const NoteLength state = isLocked ? NoteLength::good : lengthOfNote(note, length);
    const std::string present = std::to_string(length);
    const std::string longest = std::to_string(note.MaxLength());
    return {state == NoteLength::missing ? texts.Say(words::required) : present + " / " + longest,
            texts.Say(words::lengthOf, present, longest), state != NoteLength::good};
}

std::string whyNoteCannotGo(const PaneTexts& texts, const PPDXJobNote& note, std::int64_t length) {
    switch (lengthOfNote(note, length)) {
    case NoteLength::missing:
        return texts.Say(words::popupMissing, nameOf(note));
    case NoteLength::wrong:
        return texts.Say(words::popupWrong, nameOf(note), noteRules(texts, note));
    case NoteLength::good:
        break;
    }
    return {};
}

} // namespace torka
