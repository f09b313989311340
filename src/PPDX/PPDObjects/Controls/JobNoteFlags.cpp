// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/JobNoteFlags.h"

#include <algorithm>
#include <bit>

namespace torka {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::int64_t minLengthOf(std::string_view suffix) {
    if (suffix.empty()) {
        return 0;
    }
    if (!isDigit(suffix[0])) {
        return -1;
    }
    if (suffix.size() == 1) {
        return suffix[0] - '0';
    }
    if (!isDigit(suffix[1])) {
        return -3;
    }
    return suffix.size() == 2 ? 10 * (suffix[0] - '0') + (suffix[1] - '0') : -2;
}

bool isTwoCharacterItem(std::u16string_view item) {
    return item.size() == 2 && std::ranges::all_of(item, [](char16_t unit) {
               return (noteCharacterKind(unit) & (noteDigits | noteLetters)) != 0;
           });
}

std::u16string_view trimmed(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    return first == std::u16string_view::npos ? std::u16string_view()
                                              : text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

bool isItemOrRange(std::u16string_view text) {
    const std::size_t hyphen = text.find(u'-');
    if (hyphen == std::u16string_view::npos) {
        return isTwoCharacterItem(trimmed(text));
    }
    const std::u16string_view first = trimmed(text.substr(0, hyphen));
    const std::u16string_view last = trimmed(text.substr(hyphen + 1));
    return isTwoCharacterItem(first) && isTwoCharacterItem(last) && first <= last;
}

} // namespace

const JobNoteFlagRow& jobNoteFlagRow(JobNoteFlag flag) {
    return jobNoteFlags[static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(flag)))];
}

std::uint8_t admittedCharacters(std::uint32_t flags) {
    unsigned admitted = noteNoCharacters;
    for (const JobNoteFlagRow& row : jobNoteFlags) {
        if ((flags & row.flag) == 0) {
            continue;
        }
        if (row.typing == NoteTyping::replaces) {
            return row.admits;
        }
        if (!row.unlessDecimal || (flags & jobNoteDecimal) == 0) {
            admitted |= row.admits;
        }
    }
    return static_cast<std::uint8_t>(admitted);
}

bool takesAnyCharacter(std::uint32_t flags) {
    return std::ranges::none_of(jobNoteFlags, [flags](const JobNoteFlagRow& row) {
        return (flags & row.flag) != 0 &&
               (row.typing == NoteTyping::limits || row.typing == NoteTyping::replaces);
    });
}

NoteCharacters noteCharacterKind(char16_t unit) {
    for (const NoteCharacterKind& kind : noteCharacterKinds) {
        if (kind.characters.find(unit) != std::u16string_view::npos) {
            return kind.kind;
        }
    }
    return noteNoCharacters;
}

bool isAdmittedCharacter(std::uint32_t flags, char16_t unit) {
    return takesAnyCharacter(flags) || (noteCharacterKind(unit) & admittedCharacters(flags)) != 0;
}

std::string BrokenNoteRule::Words() const {
    std::string words(flag == jobNoteNoFlag ? maximumLengthRule : jobNoteFlagRow(flag).rule);
    constexpr std::string_view place = "%1";
    if (const std::size_t at = words.find(place); at != std::string::npos) {
        words.replace(at, place.size(), std::to_string(length));
    }
    return words;
}

std::vector<BrokenNoteRule> brokenNoteRules(const NoteLimits& limits, std::u16string_view text) {
    const auto has = [&limits](JobNoteFlag flag) { return (limits.flags & flag) != 0; };
    std::vector<BrokenNoteRule> broken;
    if (has(jobNoteOnOffSwitch)) {
        return broken;
    }
    if (text.empty()) {
        if (has(jobNoteRequired)) {
            broken.push_back({jobNoteRequired, 0});
        }
        return broken;
    }
    const auto length = static_cast<std::int64_t>(text.size());
    if (has(jobNoteLengthReq) && length != limits.maxLength) {
        broken.push_back({jobNoteLengthReq, limits.maxLength});
    } else if (length > limits.maxLength) {
        broken.push_back({jobNoteNoFlag, limits.maxLength});
    }
    if (length < limits.minLength) {
        broken.push_back({jobNoteMinLength, limits.minLength});
    }
    if (has(jobNoteNoComma) && text.find(u',') != std::u16string_view::npos) {
        broken.push_back({jobNoteNoComma, 0});
    }
    if (has(jobNoteTwoCharField) && !isTwoCharacterRanges(text)) {
        broken.push_back({jobNoteTwoCharField, 0});
    }
    return broken;
}

bool isTwoCharacterRanges(std::u16string_view text) {
    if (trimmed(text).empty()) {
        return true;
    }
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(u',', start), text.size());
        if (!isItemOrRange(text.substr(start, end - start))) {
            return false;
        }
        start = end + 1;
    }
    return true;
}

JobNoteFlagReader::Result JobNoteFlagReader::Read(std::string_view word) {
    const std::string_view minLengthWord = jobNoteFlagRow(jobNoteMinLength).word;
    if (word.starts_with(minLengthWord)) {
        minLength = minLengthOf(word.substr(minLengthWord.size()));
    }
    const auto* const row = std::ranges::find(jobNoteFlags, word, &JobNoteFlagRow::word);
    if (row == jobNoteFlags.end()) {
        return Result::unknown;
    }
    if (row->level > level) {
        return Result::aboveLevel;
    }
    flags |= row->flag;
    return Result::taken;
}

} // namespace torka
