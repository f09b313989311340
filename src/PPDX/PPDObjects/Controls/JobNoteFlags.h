#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace torka {

// The flag words of a job note, and how a declaration's words become a flag word and a minimum length.

enum JobNoteFlag : std::uint32_t {
    jobNoteAlpha = 1u << 0,
    jobNoteNumeric = 1u << 1,
    jobNoteDecimal = 1u << 2,
    jobNoteRequired = 1u << 3,
    jobNoteRemembered = 1u << 4,
    jobNotePassword = 1u << 5,
    jobNoteAlwaysDisplay = 1u << 6,
    jobNoteResume = 1u << 7,
    jobNoteMember = 1u << 8,
    jobNoteOnOffSwitch = 1u << 9,
    jobNoteLengthReq = 1u << 10,
    jobNoteSecPrint = 1u << 11,
    jobNoteCommand = 1u << 12,
    jobNoteSpace = 1u << 13,
    jobNoteNegative = 1u << 14,
    jobNoteEncrypt = 1u << 15,
    jobNoteMultiSpace = 1u << 16,
    jobNoteMultiComma = 1u << 17,
    jobNoteLCD = 1u << 18,
    jobNoteHyphen = 1u << 19,
    jobNoteTwoCharField = 1u << 20,
    jobNoteNoComma = 1u << 21,
    jobNoteMinLength = 1u << 22,
    jobNoteUTF8 = 1u << 23,
    jobNoteAESEncrypt = 1u << 24,
    jobNotePopupJN = 1u << 25
};

struct JobNoteFlagWord {
    std::string_view word;
    int level; // lowest extension-support level that takes the word
};

// In bit order: entry n stands for bit n.
extern const std::array<JobNoteFlagWord, 26> jobNoteFlagWords;

// Collects the flag words of one declaration.
class JobNoteFlagReader {
public:
    enum class Result {
        taken,
        unknown,   // no such word; not an error
        aboveLevel // a known word that the description's level does not have: the declaration fails
    };

    // The description's extension-support level is 0 to 3.
    explicit JobNoteFlagReader(int supportLevel)
        : level(supportLevel) {}
    // A word that begins with "MinLength" also sets the minimum length, whatever the result.
    Result Read(std::string_view word);

    std::uint32_t Flags() const { return flags; }
    // 0 for none; -1, -2, -3: first character after the word no digit, more than two of them, second one no
    // digit.
    std::int64_t MinLength() const { return minLength; }

private:
    int level;
    std::uint32_t flags = 0;
    std::int64_t minLength = 0;
};

} // namespace torka
