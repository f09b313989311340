#pragma once

#include "PPDX/PPDObjects/Groups/GroupName.h"
#include "platform/CoreFoundation.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace torka {

class ZANPPD;

// Findings beyond errors, for the author of a description.
enum class PPDLintKind {
    unknownJobNoteFlag,       // a word that is not a job note flag
    unknownConstraintKeyword, // a constraint line names a keyword that the description does not define
    unknownConstraintOption,  // ... or an option that its control does not offer
    unplacedGroup,            // a declared group name that no parent line places
    cutLine,                  // a line of more than 255 bytes
    untranslatableText,       // bytes that are no text of the declared encoding
    unknownDefault,           // a default that names no option of its block
    unknownGroup,             // a group line that names no group
    emptyBlock,               // a block without options
    unclosedBlock,            // a block that another element or the end of the file ends early
    unclosedQuote,            // a value without its closing quote
    unreadableByte,           // a line with a byte NUL or 0xFF, which ends its text
    badCustomSize,            // a custom page size line that cannot be parsed
    badNumber,                // a number of a range, or a length of a job note, that is not a number
    badDefaultNote            // a job note's default text that breaks a rule of the note
};

// Returns "unknownJobNoteFlag" and so on.
const char* ppdLintName(PPDLintKind kind);

struct PPDLintNote {
    PPDLintKind kind;
    long line = 0;       // from 1; 0 when it concerns no line
    std::string keyword; // the element concerned, with any asterisk; may be empty
    std::string text;    // the word, option or text concerned; may be empty
};

// Collects notes while a description is parsed. Pass it to ZANPPD::SetLint before the parse; it must outlive
// the parse. A parse without a collector skips these checks. After Finish the notes are in line order. At
// most `maximumNotes` are kept.
class PPDLint {
public:
    static constexpr std::size_t maximumNotes = 10000;

    const std::vector<PPDLintNote>& Notes() const { return notes; }

    // These functions are for the parser.
    void Note(PPDLintKind kind, long line, std::string_view keyword, std::string_view text = {});
    void ConstraintLine(long line, std::string_view key1, std::string_view option1, std::string_view key2,
                        std::string_view option2);
    // Records a choice block that is left to the spooler: constraint lines may name it.
    void SpoolerKeyword(std::string_view keyword) { spoolerKeywords.emplace(keyword); }
    void DeclaredGroup(const GroupName& name, long line) { declaredGroups.push_back({line, name.name}); }
    void PlacedGroup(std::string_view name) { placedGroups.emplace(name); }
    // Notes `text` when its bytes, with hexadecimal substrings decoded, are not valid in the encoding.
    void CheckText(long line, std::string_view keyword, std::string_view text, CFStringEncoding encoding);
    // Runs the checks that need the whole description: constraint lines, groups, and raw lines of the file.
    void Finish(ZANPPD& description);

private:
    struct Constraint {
        long line;
        std::string text; // the four parts, each ended by a NUL
    };
    struct Declared {
        long line;
        std::string name;
    };

    void CheckConstraint(ZANPPD& description, const Constraint& constraint);
    void CheckConstraintSide(ZANPPD& description, long line, const char* key, const char* option);
    void CheckGroups();
    void CheckLines(const ZANPPD& description);
    void CheckLine(long line, std::string_view start, std::size_t length, std::string_view badByte);

    std::vector<PPDLintNote> notes;
    std::vector<Constraint> constraints;
    std::vector<Declared> declaredGroups;
    std::unordered_set<std::string> placedGroups;
    std::unordered_set<std::string> spoolerKeywords;
};

} // namespace torka
