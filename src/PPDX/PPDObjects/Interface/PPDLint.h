// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Groups/GroupName.h"
#include "platform/CoreFoundation.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace torka {

class PPDXControl;
class PPDXGroup;
class PPDXRangeControl;
class ZANPPD;

// Findings beyond errors, for the author of a description. PPDLintTexts.cpp says each in words.
enum class PPDLintKind {
    // Groups and pages
    unplacedGroup,      // a declared group name that no parent line places
    parentWithoutGroup, // a parent line for a name that no line above declares
    parentWithoutKind,  // a parent line without the kind of group, of a group that no other line places
    unknownGroup,       // a group line that names no group
    secondScrollPane,   // a page that has a scroll pane gets another one
    groupPlacedTwice,   // a group that a parent line has placed already
    hiddenByFlag,       // a page or group that lacks "True" and has a word like it
    unknownFlag,        // any other word that is no flag
    hiddenControls,     // a hidden group that holds controls
    blockInNoGroup,     // a control that is meant to be shown and has no group line
    noteInScrollPane,   // a job note whose group is no roll-down
    strayControlLine,   // a line of a control's definition that stands alone
    // Job notes
    unknownJobNoteFlag,    // a word that is not a job note flag
    badDefaultNote,        // a default text that breaks a rule of its note
    strayNoteLine,         // a default or PostScript line that does not follow its note, or lacks the "%"
    lostMinLength,         // a bare "MinLength" after "MinLength8"
    noPlaceholder,         // a template of a note or a range without "<*KEY>"
    placeholderInString,   // "<*KEY>" in a longer string of a note's template
    minLengthAboveMaximum, // a minimum length that no text within the maximum reaches
    hiddenRequiredNote,    // a required note without a default text that nobody can fill in
    // Ranges and numbers
    badNumber,               // a number of a range, or a length of a job note, that is not a number
    textAfterNumber,         // text behind a number of a range
    swappedBounds,           // a minimum above the maximum
    defaultOutsideBounds,    // a default below the minimum or above the maximum
    defaultOffStep,          // a default that is rounded to another number
    negativeScale,           // a scale's minimum below 0, which no job takes
    extraNumber,             // a fifth number
    badCustomSize,           // a custom page size line that cannot be parsed
    customSizeWithoutBounds, // a custom page size whose width or height may only be 0
    unitNotPoints,           // a custom page size in another unit, which is read as points
    // Options
    unknownDefault,       // a default that names no option of its block
    otherDefault,         // a default line that names another keyword
    emptyBlock,           // a block without options
    unclosedBlock,        // a block that another element or the end of the file ends
    optionTwice,          // an option that the block has already
    optionBehindBlock,    // an option line that stands behind the closing line
    missingState,         // a check box that lacks one of its two options
    blockOfOtherKey,      // a block whose keyword differs from its flags line
    optionOfOtherKey,     // an option line under another keyword than the block's
    optionWithoutName,    // a line of the block's keyword without an option
    optionWithoutValue,   // an option without a quoted value
    longBlock,            // PostScript too long for a job
    unbalancedPostscript, // a brace, parenthesis or hex string that is not closed
    specialOptionTwice,   // a special option that has a value already
    unknownSpecialOption, // a special option whose keyword is nearly one that is read
    unknownSpecialValue,  // a value that the special option does not know
    shortcutNotShown,     // a shortcut whose control the pane offers in no quick access
    lineInTemplate,       // an element that the line count of a management template takes
    // Lines, texts and encoding
    cutLine,             // a line of more than 255 bytes
    cutValue,            // a quoted value of more than 255 bytes
    unclosedQuote,       // a value without its closing quote
    textWithoutQuotes,   // text where only a quoted value is read
    textBehindQuote,     // text behind the closing quote of a value
    unreadableByte,      // a line with a byte NUL or 0xFF, which ends its text
    untranslatableText,  // bytes that are no text of the declared encoding
    otherEncoding,       // a text that is probably in another encoding than the declared one
    textBeforeEncoding,  // a text that needs the encoding, before both language lines
    unknownEncoding,     // an encoding that the parser does not know
    unknownLanguage,     // a language that no list of PPD names knows
    misspeltKeyword,     // a main keyword that is nearly one of the extension's
    linesBehindEnd,      // elements behind the end marker
    lineWithoutAsterisk, // a line outside values that the print server refuses
    refusedName,         // a keyword or option that it refuses
    // Constraints
    unknownConstraintKeyword, // a constraint line names a keyword that the description does not define
    unknownConstraintOption,  // ... or an option that its control does not offer
    constraintOnValue,        // ... or a control without options
    oneWayConstraint,         // a constraint without its reverse
    constraintOnItself,       // a constraint that forbids an option by itself
    textBehindConstraint,     // a fifth word
    defaultsInConflict,       // two defaults that a constraint forbids together
    requirement,              // a requirement line, which nothing evaluates
    // The pane
    noMakerVersion,   // no controller version: no pane
    noFileName,       // no PC file name: no pane
    unlistedFileName, // a PC file name that the plug-in's bundle does not list: no pane
};

struct PPDLintNote {
    PPDLintKind kind;
    long line = 0;          // from 1; 0 when it concerns no line
    std::string keyword;    // the element concerned, with any asterisk; may be empty
    std::string text;       // the word, option or text concerned; may be empty
    std::string suggestion; // the known word that is probably meant; may be empty
};

// Collects notes while a description is parsed. Pass it to ZANPPD::SetLint before the parse; it must outlive
// the parse. A parse without a collector skips these checks. After Finish the notes are in line order. At
// most `maximumNotes` are kept.
class PPDLint {
public:
    static constexpr std::size_t maximumNotes = 10000;

    const std::vector<PPDLintNote>& Notes() const { return notes; }
    // Sets the PC file names that the plug-in's bundle lists. Without a list, any name is good.
    void SetListedFileNames(CFArrayRef names) { listedFileNames = std::move(names); }

    // These functions are for the parser.
    void Note(PPDLintKind kind, long line, std::string_view keyword, std::string_view text = {},
              std::string_view suggestion = {});
    void ConstraintLine(long line, std::string_view key1, std::string_view option1, std::string_view key2,
                        std::string_view option2, bool isRequirement);
    // Records a choice block that is left to the spooler: constraint lines may name it.
    void SpoolerKeyword(std::string_view keyword) { spoolerKeywords.emplace(keyword); }
    void DeclaredGroup(const GroupName& name, long line) { declaredGroups.push_back({line, name.name}); }
    void PlacedGroup(std::string_view name) { placedGroups.emplace(name); }
    void ParentWithoutGroup(std::string_view name, long line) {
        undeclaredParents.push_back({line, std::string(name)});
    }
    void ParentWithoutKind(std::string_view name, long line) {
        kindlessParents.try_emplace(std::string(name), line);
    }
    // Checks the words of a page, group or parent line against the known ones. `flags` is the line behind the
    // names.
    void CheckFlags(long line, std::string_view element, std::string_view flags,
                    std::span<const std::string_view> known, bool isVisible);
    void CheckControlFlags(long line, std::string_view keyword, std::span<const std::string_view> flags);
    // Notes `text` when its bytes, with hexadecimal substrings decoded, are not valid in the encoding, or
    // look like another one. nullopt: the description has not declared its encoding yet.
    void CheckText(long line, std::string_view keyword, std::string_view text,
                   std::optional<CFStringEncoding> encoding);
    // Does the same for a note's default text, whose hexadecimal substrings nobody decodes.
    void CheckNoteText(long line, std::string_view keyword, std::string_view text,
                       std::optional<CFStringEncoding> encoding) {
        CheckBytes(line, keyword, text, text, encoding);
    }
    void CheckEncodingName(long line, std::string_view name);
    void CheckLanguageName(long line, std::string_view name);
    struct RangeValues {
        double minimum;
        double maximum;
        double byDefault;
    };
    // Takes the four numbers as they stand, their values, and what follows them.
    void CheckRange(long line, std::string_view keyword, std::span<const std::string> numbers,
                    const RangeValues& values, std::string_view fifth, bool isFloat);
    // Checks PostScript. `option` is empty for a template, which must hold its placeholder.
    void CheckPostscript(long line, std::string_view keyword, std::string_view option,
                         const unsigned char* bytes, long length);
    // Checks where the template of a note has its placeholder.
    void CheckNoteTemplate(long line, std::string_view keyword, std::string_view postscript);
    // The line behind a note that has no template. `rest` follows its keyword.
    void LineBehindNote(long line, std::string_view note, std::string_view keyword, std::string_view rest);
    void CustomSizeLine(long line) { customSizeLine = customSizeLine == 0 ? line : customSizeLine; }
    void CheckShortcut(long line, const PPDXControl& control);
    // A line that is read as part of a management template.
    void LineInTemplate(long line, std::string_view text);
    // Notes a default between the bounds that the new control has rounded.
    void CheckHeldDefault(long line, const PPDXRangeControl& range);
    // Notes text that stands where a quoted value is expected. `rest` is the line from there on.
    void CheckQuotes(long line, std::string_view keyword, std::string_view rest);
    // Does the same for an option of a block, and notes an option without a value.
    void CheckOptionValue(long line, std::string_view keyword, std::string_view option,
                          std::string_view rest);
    void CheckSpecialOption(long line, std::string_view keyword, std::string_view value);
    void OptionLine(long line, std::string_view keyword, std::string_view option);
    // A line inside the block of `block` that no reader takes.
    void LineInBlock(long line, std::string_view block, std::string_view keyword, std::string_view text);
    // A line outside definitions that no reader takes.
    void OtherLine(long line, std::string_view keyword);
    // A control's group line; `group` is null when it names none.
    void GroupLine(long line, std::string_view keyword, std::string_view name, const PPDXGroup* group);
    // A control without a group.
    void Orphan(long line, std::string_view keyword, std::span<const std::string_view> flags);
    // A line of a control's definition that stands outside one. After an error in a definition, its further
    // lines are no findings.
    void StrayControlLine(long line, std::string_view keyword);
    void BeginsControl() { hasFailedControl = hasGroupLine = false; }
    void Failed() { hasFailedControl = true; }
    // Runs the checks that need the whole description. Returns false when its file could not be read again.
    bool Finish(ZANPPD& description);

private:
    struct Constraint {
        long line;
        bool isRequirement;
        std::string key1;
        std::string option1;
        std::string key2;
        std::string option2;
    };
    // A line and the names on it.
    struct Named {
        long line;
        std::string name;
        std::string other{};
    };
    using Words = std::vector<std::string_view>;
    static constexpr std::size_t maximumWordsCompared = 200000; // for suggestions

    void CheckBytes(long line, std::string_view keyword, std::string_view text, std::string_view bytes,
                    std::optional<CFStringEncoding> encoding);
    void CheckConstraints(ZANPPD& description);
    bool CheckConstraintSide(ZANPPD& description, const Words& keywords, const Constraint& line,
                             const std::string& key, const std::string& option);
    bool IsReversed(const ZANPPD& description, const Constraint& line,
                    const std::unordered_set<std::string>& lines);
    std::string_view Suggestion(std::string_view word, const Words& candidates);
    void CheckGroups(const ZANPPD& description);
    void CheckOptions(const ZANPPD& description);
    void CheckBlockSize(long line, std::string_view keyword, std::string_view option, long size);
    bool CheckNoteLine(const Named& line, const std::unordered_map<std::string, std::string>& notesByName);
    void CheckKeyword(const Named& line);
    void CheckCustomSize(const ZANPPD& description);
    void CheckOtherLines(const ZANPPD& description);
    void CheckWords(const ZANPPD& description);
    void CheckDefaults(const ZANPPD& description);
    void CheckPane(const ZANPPD& description);
    bool CheckLines(const ZANPPD& description);
    void CheckLine(long line, std::string_view start, std::size_t length, std::string_view badByte);

    std::vector<PPDLintNote> notes;
    std::vector<Constraint> constraints;
    std::vector<Named> declaredGroups;
    std::vector<Named> unknownGroups;                           // control, group
    std::vector<Named> options;                                 // key, option
    std::vector<Named> templates;                               // of ranges and notes
    std::vector<Named> linesInBlocks;                           // block, keyword
    std::vector<Named> otherLines;                              // keyword; "lost" behind a failed control
    std::unordered_map<long, std::string> linesBehindNotes;     // line, note
    std::unordered_map<std::string, std::string> meantKeywords; // by an unknown one; "" for none
    long customSizeLine = 0;
    std::unordered_set<std::string> placedGroups;
    std::unordered_map<std::string, long> kindlessParents; // group, line
    std::vector<Named> undeclaredParents; // parent lines of groups that no line above declares
    std::unordered_set<std::string> spoolerKeywords;
    std::unordered_set<std::string> optionsSeen; // key NUL option
    std::optional<Named> firstText;              // the first one that needs an encoding before it is known
    CFArrayRef listedFileNames;
    std::size_t pairsCompared = 0; // for reverse lines
    std::size_t wordsCompared = 0; // for suggestions
    bool hasFailedControl = false;
    bool hasGroupLine = false; // of the current control
};

} // namespace torka
