// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

// The flags of a job note. One row holds a flag's word, level, effect and characters. The parser, the note's
// accessors, the pane, the command line and the table in docs/extended-ppd.md use these rows.
//
// A new flag needs an enumerator in JobNoteFlag and a row in jobNoteFlags. The assertions below fail for one
// without the other. A test compares the rows with the document.

enum JobNoteFlag : std::uint32_t {
    jobNoteNoFlag = 0,
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
    jobNotePopupJN = 1u << 25,
    jobNoteFlagsEnd // one more than the last flag
};

// A set of kinds of characters.
enum NoteCharacters : std::uint8_t {
    noteNoCharacters = 0,
    noteDigits = 1u << 0,
    noteLetters = 1u << 1, // of ASCII
    noteBlank = 1u << 2,
    noteHyphen = 1u << 3,
    noteComma = 1u << 4,
    notePeriod = 1u << 5,
    noteUnderscore = 1u << 6
};

struct NoteCharacterKind {
    NoteCharacters kind;
    std::u16string_view characters;
    std::string_view name; // in English; the character itself for a kind with one character
};

// In the order shown to users.
inline constexpr std::array<NoteCharacterKind, 7> noteCharacterKinds = {{
    {noteDigits, u"0123456789", "digits"},
    {noteLetters, u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", "letters"},
    {noteBlank, u" ", "blanks"},
    {noteHyphen, u"-", "-"},
    {noteComma, u",", ","},
    {notePeriod, u".", "."},
    {noteUnderscore, u"_", "_"},
}};

// The effect of a flag on the characters that may be typed.
enum class NoteTyping : std::uint8_t {
    free,     // nothing
    limits,   // a note with such a flag takes only characters that its flags admit
    joins,    // its characters join those of limiting flags; alone it admits every character
    replaces, // admits only its own characters, regardless of other flags
};

// Where a flag takes effect.
enum class NoteEffect : std::uint8_t {
    typing,       // on each typed character
    finishedText, // on the text before it leaves: brokenNoteRules
    field,        // on the display of the note and the storage of its text
    job,          // on the form of the text in the job
    none,         // nowhere: the flag is only recorded
};

struct JobNoteFlagRow {
    JobNoteFlag flag;
    std::string_view word;
    int level; // lowest extension-support level that accepts the word
    NoteEffect effect;
    std::string_view meaning;             // for authors of descriptions
    std::string_view rule = {};           // what a finished text must satisfy; "%1" stands for a length
    NoteTyping typing = NoteTyping::free; // the remaining fields are about typed characters
    std::uint8_t admits = noteNoCharacters;
    bool unlessDecimal = false; // admits nothing when "Decimal" is set too
};

inline constexpr std::uint8_t lcdCharacters =
    noteDigits | noteLetters | noteHyphen | noteComma | notePeriod | noteUnderscore;

// In bit order: entry n is bit n.
inline constexpr std::array<JobNoteFlagRow, 26> jobNoteFlags = {{
    {.flag = jobNoteAlpha,
     .word = "Alpha",
     .level = 0,
     .effect = NoteEffect::typing,
     .meaning = "letters allowed",
     .typing = NoteTyping::limits,
     .admits = noteLetters},
    {.flag = jobNoteNumeric,
     .word = "Numeric",
     .level = 0,
     .effect = NoteEffect::typing,
     .meaning = "digits allowed",
     .typing = NoteTyping::limits,
     .admits = noteDigits},
    {.flag = jobNoteDecimal,
     .word = "Decimal",
     .level = 0,
     .effect = NoteEffect::typing,
     .meaning = "a decimal number",
     .typing = NoteTyping::limits,
     .admits = noteDigits | notePeriod | noteComma},
    {.flag = jobNoteRequired,
     .word = "Required",
     .level = 0,
     .effect = NoteEffect::finishedText,
     .meaning = "may not be empty",
     .rule = "must not be empty"},
    {.flag = jobNoteRemembered,
     .word = "Remembered",
     .level = 0,
     .effect = NoteEffect::field,
     .meaning = "kept between jobs, when it is also `PopupJN` and holds no secret"},
    {.flag = jobNotePassword,
     .word = "Password",
     .level = 0,
     .effect = NoteEffect::field,
     .meaning = "masked entry; kept nowhere"},
    {.flag = jobNoteAlwaysDisplay,
     .word = "AlwaysDisplay",
     .level = 0,
     .effect = NoteEffect::none,
     .meaning = "always shown"},
    {.flag = jobNoteResume,
     .word = "Resume",
     .level = 0,
     .effect = NoteEffect::none,
     .meaning = "needed to resume a held job"},
    {.flag = jobNoteMember,
     .word = "Member",
     .level = 0,
     .effect = NoteEffect::none,
     .meaning = "belongs to a set of fields"},
    {.flag = jobNoteOnOffSwitch,
     .word = "OnOfSwitch",
     .level = 1,
     .effect = NoteEffect::field,
     .meaning = "an on/off switch (spelled so); no rule on texts applies"},
    {.flag = jobNoteLengthReq,
     .word = "LengthReq",
     .level = 1,
     .effect = NoteEffect::finishedText,
     .meaning = "exactly MAXLEN characters, or none",
     .rule = "must have exactly %1 characters"},
    {.flag = jobNoteSecPrint,
     .word = "SecPrint",
     .level = 1,
     .effect = NoteEffect::none,
     .meaning = "secure-print code"},
    {.flag = jobNoteCommand,
     .word = "Command",
     .level = 2,
     .effect = NoteEffect::none,
     .meaning = "sent as a command"},
    {.flag = jobNoteSpace,
     .word = "Space",
     .level = 2,
     .effect = NoteEffect::typing,
     .meaning = "a blank allowed",
     .typing = NoteTyping::limits,
     .admits = noteBlank},
    {.flag = jobNoteNegative,
     .word = "Negative",
     .level = 2,
     .effect = NoteEffect::typing,
     .meaning = "a minus sign allowed",
     .typing = NoteTyping::limits,
     .admits = noteHyphen},
    {.flag = jobNoteEncrypt,
     .word = "Encrypt",
     .level = 3,
     .effect = NoteEffect::job,
     .meaning = "enciphered in the job"},
    {.flag = jobNoteMultiSpace,
     .word = "MultiSpace",
     .level = 3,
     .effect = NoteEffect::typing,
     .meaning = "several blanks allowed",
     .typing = NoteTyping::limits,
     .admits = noteBlank,
     .unlessDecimal = true},
    {.flag = jobNoteMultiComma,
     .word = "MultiComma",
     .level = 3,
     .effect = NoteEffect::typing,
     .meaning = "several commas allowed",
     .typing = NoteTyping::limits,
     .admits = noteComma,
     .unlessDecimal = true},
    {.flag = jobNoteLCD,
     .word = "LCD",
     .level = 3,
     .effect = NoteEffect::typing,
     .meaning = "only what the controller's panel can show",
     .typing = NoteTyping::replaces,
     .admits = lcdCharacters},
    {.flag = jobNoteHyphen,
     .word = "Hyphen",
     .level = 3,
     .effect = NoteEffect::typing,
     .meaning = "a hyphen allowed",
     .typing = NoteTyping::joins,
     .admits = noteHyphen},
    {.flag = jobNoteTwoCharField,
     .word = "TwoCharField",
     .level = 3,
     .effect = NoteEffect::finishedText,
     .meaning = "items of two letters or digits, or ranges of them, as in `01-05,07`",
     .rule = "must be items of two letters or digits, or ranges of them, as in 01-05,07"},
    {.flag = jobNoteNoComma,
     .word = "NoComma",
     .level = 3,
     .effect = NoteEffect::finishedText,
     .meaning = "a comma forbidden",
     .rule = "must not hold a comma"},
    {.flag = jobNoteMinLength,
     .word = "MinLength",
     .level = 3,
     .effect = NoteEffect::finishedText,
     .meaning = "a minimum length is kept; see below",
     .rule = "must have at least %1 characters"},
    {.flag = jobNoteUTF8, .word = "UTF8", .level = 3, .effect = NoteEffect::job, .meaning = "sent as UTF-8"},
    {.flag = jobNoteAESEncrypt,
     .word = "AESEncrypt",
     .level = 3,
     .effect = NoteEffect::job,
     .meaning = "enciphered with AES rather than DES"},
    {.flag = jobNotePopupJN,
     .word = "PopupJN",
     .level = 3,
     .effect = NoteEffect::field,
     .meaning = "asked for in a dialog before printing"},
}};

// The rule of MAXLEN. It has no flag, because every note has a MAXLEN.
inline constexpr std::string_view maximumLengthRule = "must have at most %1 characters";

// Returns the flags that limit the characters that may be typed.
constexpr std::uint32_t limitingNoteFlags() {
    std::uint32_t flags = 0;
    for (const JobNoteFlagRow& row : jobNoteFlags) {
        flags |= row.typing == NoteTyping::limits ? row.flag : 0U;
    }
    return flags;
}

static_assert([] {
    for (std::size_t bit = 0; bit < jobNoteFlags.size(); ++bit) {
        const JobNoteFlagRow& row = jobNoteFlags[bit];
        if (row.flag != 1U << bit || row.rule.empty() == (row.effect == NoteEffect::finishedText) ||
            (row.typing == NoteTyping::free) == (row.effect == NoteEffect::typing) ||
            (row.typing == NoteTyping::free) != (row.admits == noteNoCharacters)) {
            return false;
        }
    }
    return true;
}());
static_assert(jobNoteFlags.back().flag + 1U == jobNoteFlagsEnd);
static_assert(limitingNoteFlags() == 0x36007);

// REQUIRES: one flag.
const JobNoteFlagRow& jobNoteFlagRow(JobNoteFlag flag);
// Returns true when no flag limits or replaces the characters.
bool takesAnyCharacter(std::uint32_t flags);
// Returns the kinds of characters that may be typed into a note that does not accept every character.
std::uint8_t admittedCharacters(std::uint32_t flags);
// Returns noteNoCharacters for a UTF-16 unit that belongs to no kind.
NoteCharacters noteCharacterKind(char16_t unit);
// Tells whether the UTF-16 unit may be typed into a note with these flags.
bool isAdmittedCharacter(std::uint32_t flags, char16_t unit);

// The limits of a note's finished text, from its declaration. Lengths are in UTF-16 units.
struct NoteLimits {
    std::uint32_t flags = 0; // of JobNoteFlag
    std::int64_t maxLength = 0;
    std::int64_t minLength = 0; // a negative length counts as 0
};

struct BrokenNoteRule {
    JobNoteFlag flag;    // the flag that sets the rule; jobNoteNoFlag for MAXLEN
    std::int64_t length; // the length in the rule, 0 for none

    // Returns the rule in English, to follow the note's name: "must have at least 4 characters".
    std::string Words() const;
};

// Returns the rules that a finished text breaks, none for a text that may go with a job. An empty text can
// break only "Required". A minimum length holds even without the bit of "MinLength". An on/off switch breaks
// no rule. Does not check which characters may be typed.
std::vector<BrokenNoteRule> brokenNoteRules(const NoteLimits& limits, std::u16string_view text);
// Tells whether a text consists of items of two letters or digits, or ranges of two such items, separated by
// commas. A range has "-" between its items, and the second is not before the first. Blanks around items are
// ignored. An empty or blank text is valid.
bool isTwoCharacterRanges(std::u16string_view text);

// Reads the flag words of one declaration.
class JobNoteFlagReader {
public:
    enum class Result {
        taken,
        unknown,   // no such word; not an error
        aboveLevel // a known word above the description's level: the declaration fails
    };

    // Takes the description's extension-support level, 0 to 3.
    explicit JobNoteFlagReader(int supportLevel)
        : level(supportLevel) {}
    // A word that begins with "MinLength" also sets the minimum length, whatever the result.
    Result Read(std::string_view word);

    std::uint32_t Flags() const { return flags; }
    // Returns 0 for none, and a negative value for a bad "MinLength": -1 when the first character after the
    // word is not a digit, -2 for more than two characters, -3 when the second is not a digit.
    std::int64_t MinLength() const { return minLength; }

private:
    int level;
    std::uint32_t flags = 0;
    std::int64_t minLength = 0;
};

} // namespace torka
