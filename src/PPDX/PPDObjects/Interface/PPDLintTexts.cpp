// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDLintTexts.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/PPDObjects/Properties/PPDXErrors.h"

#include <algorithm>
#include <array>

namespace torka {

namespace {

// In both texts "%1" stands for the note's text, "%2" for its keyword.
struct LintRow {
    PPDLintKind kind;
    const char* name;
    std::string_view says;
    std::string_view remedy;
};

#define TORKA_ROW(kind, says, remedy)                                                                        \
    LintRow { PPDLintKind::kind, #kind, says, remedy }
constexpr std::array rows{
    TORKA_ROW(unplacedGroup, "the group is declared but no *%ZANParent line places it",
              "add a *%ZANParent line for the group, or remove its declaration"),
    TORKA_ROW(parentWithoutGroup, "the line places nothing: no line above declares the group",
              "declare the group above with *%ZANGroupName or *%ZANSubGroupName"),
    TORKA_ROW(parentWithoutKind, "the line does not place the group: it lacks Rolldown or Scrollpane",
              "add |Rolldown or |Scrollpane to its flags"),
    TORKA_ROW(unknownGroup, "the group \"%1\" does not exist",
              "name a roll-down that is declared and placed above"),
    TORKA_ROW(secondScrollPane, "the page already has a scroll pane; \"%1\" takes its place",
              "place roll-downs in one scroll pane, or declare another page"),
    TORKA_ROW(groupPlacedTwice, "the group has been placed already",
              "keep one *%ZANParent line for each group"),
    TORKA_ROW(hiddenByFlag, "the element is hidden: \"%1\" is no flag", "write \"True\" exactly"),
    TORKA_ROW(unknownFlag, "the flag word \"%1\" is unknown and has no effect",
              "use the flag words of the language, in their letter case"),
    TORKA_ROW(hiddenControls, "the group is not shown, but its %1 still go into the job",
              "show the page, the scroll pane and the roll-down, or remove the controls"),
    TORKA_ROW(blockInNoGroup, "the control has no group and is shown on no page",
              "add a *%ZANGroup line, or the flag NoTorkaDriverUI"),
    TORKA_ROW(noteInScrollPane, "the job note is placed in the scroll pane \"%1\" and is shown on no page",
              "name a roll-down in the *%ZANGroup line"),
    TORKA_ROW(strayControlLine, "%1 stands outside a control's definition and is lost",
              "put it directly behind the lines of its control, which begins with *%ZANFlags"),

    TORKA_ROW(unknownJobNoteFlag, "the job-note flag word \"%1\" is unknown and was skipped",
              "use the words of the table of job notes"),
    TORKA_ROW(badDefaultNote, "the default text %1", "change the default text or the note's rules"),
    TORKA_ROW(strayNoteLine, "%1 does not belong to its job note and is lost",
              "put *%DefaultKEY and then *%KEY directly behind the *%ZANJobNote line; both begin with *%, "
              "and KEY is spelt as in that line, without its asterisk"),
    TORKA_ROW(lostMinLength, "\"MinLength\" behind \"%1\" sets the minimum length back to none",
              "write MinLength|%1"),
    TORKA_ROW(noPlaceholder, "the template has no placeholder <%2>: the job never holds the value",
              "write <%2> where the value belongs"),
    TORKA_ROW(placeholderInString,
              "<%2> stands in a longer string, where the job holds the value's hexadecimal digits as text",
              "write (<%2>) alone, and join strings in the PostScript"),
    TORKA_ROW(minLengthAboveMaximum, "the minimum length is above the maximum length (%1)",
              "give a minimum length of at most the maximum length"),
    TORKA_ROW(hiddenRequiredNote, "the job note is required, has no default text and is shown on no page",
              "show the note, give it a default text, or remove the word Required"),

    TORKA_ROW(badNumber, "\"%1\" is not a number that can be used here", "write a number within the limits"),
    TORKA_ROW(textAfterNumber, "only the beginning of \"%1\" counts as a number",
              "separate the numbers by \";\" and write nothing else"),
    TORKA_ROW(swappedBounds, "the minimum is above the maximum (%1)", "exchange the two bounds"),
    TORKA_ROW(defaultOutsideBounds, "the default is outside the bounds (%1)",
              "give a default between minimum and maximum"),
    TORKA_ROW(defaultOffStep, "the default is no multiple of the increment: %1",
              "give a default that is a multiple of the increment"),
    TORKA_ROW(negativeScale, "the minimum is below 0 (%1), and a job takes no scale below 0",
              "give a minimum of at least 0"),
    TORKA_ROW(extraNumber, "\"%1\" is a fifth number and is lost",
              "give minimum, maximum, increment and default only"),
    TORKA_ROW(badCustomSize, "the custom size line is not understood",
              "write Width: 1 points MINIMUM MAXIMUM, or Height: 2 points MINIMUM MAXIMUM"),
    TORKA_ROW(customSizeWithoutBounds, "the custom size has no %1 above 0",
              "give both lines, Width and Height, each with a maximum above 0"),
    TORKA_ROW(unitNotPoints, "the bounds are read as points, not as \"%1\"",
              "give the bounds in points, and write the word points"),

    TORKA_ROW(unknownDefault, "the default \"%1\" names no option; the first one is the default",
              "name an option of the block"),
    TORKA_ROW(otherDefault, "%1 counts as this control's default line, but names another keyword",
              "name the control's own keyword"),
    TORKA_ROW(emptyBlock, "the block has no options", "add options or remove the block"),
    TORKA_ROW(unclosedBlock, "the block that opens here is not closed before %1", "add its closing line"),
    TORKA_ROW(optionTwice, "the option \"%1\" stands in the block twice", "remove or rename one of the two"),
    TORKA_ROW(optionBehindBlock, "the line stands behind the block of its control and is lost",
              "put it between the opening and the closing line of the block"),
    TORKA_ROW(missingState, "the check box has no option %1: that state sends no code",
              "add the option, with \"\" for no code"),
    TORKA_ROW(blockOfOtherKey, "the block's keyword differs from \"%1\" of its *%ZANFlags line",
              "use the same keyword in both lines"),
    TORKA_ROW(optionOfOtherKey, "%1 is not the keyword of this block", "use the keyword of the block"),
    TORKA_ROW(optionWithoutName, "the line names no option and is lost",
              "write the option between the keyword and the colon"),
    TORKA_ROW(optionWithoutValue, "the option \"%1\" has no quoted value behind a colon, and sends no code",
              "write a colon and the value in quotes, or \"\" for no code"),
    TORKA_ROW(longBlock, "%1, more than a job takes: the setting is left out of the job",
              "shorten the PostScript so that the block has at most 1024 bytes"),
    TORKA_ROW(unbalancedPostscript, "the PostScript is not balanced: %1",
              "close every brace, parenthesis and hexadecimal string in the same value"),
    TORKA_ROW(specialOptionTwice, "the special option has a value already; the first one counts",
              "keep one line"),
    TORKA_ROW(unknownSpecialOption, "nothing reads a special option of this keyword",
              "use a keyword of the table of special options"),
    TORKA_ROW(unknownSpecialValue, "the special option takes no value \"%1\"",
              "use a value of the table of special options, or remove the line"),
    TORKA_ROW(shortcutNotShown, "no quick access offers the control: %1",
              "name a control that the pane shows, or remove the line"),
    TORKA_ROW(lineInTemplate, "the line count of the management template takes this line, which is lost",
              "correct the count in the *DMT_X0000 line"),

    TORKA_ROW(cutLine, "the line has more than 255 bytes and was cut into pieces",
              "break the value inside its quotes, or shorten the line"),
    TORKA_ROW(cutValue, "the value has more than 255 bytes and was cut", "shorten the value"),
    TORKA_ROW(unclosedQuote, "the value has no closing quote and ends where the next keyword begins",
              "close the quote"),
    TORKA_ROW(textWithoutQuotes, "the text \"%1\" stands outside the quotes of the value and is lost",
              "put the whole value between two quotes \" directly behind the colon"),
    TORKA_ROW(textBehindQuote, "text stands behind the closing quote of the value and is lost",
              "close the quote behind the whole value; a value holds no quote \" of its own"),
    TORKA_ROW(unreadableByte, "the line holds a byte %1, at which its text ends", "remove the byte"),
    TORKA_ROW(untranslatableText, "the text is not valid in the declared *LanguageEncoding",
              "write the text in that encoding, or declare the encoding of the text"),
    TORKA_ROW(otherEncoding, "the text \"%1\" is probably not in the declared *LanguageEncoding",
              "write the text in that encoding, or declare the encoding of the text"),
    TORKA_ROW(
        textBeforeEncoding,
        "the text \"%1\" needs an encoding before *LanguageVersion and *LanguageEncoding are both known",
        "put both lines above the first translation"),
    TORKA_ROW(unknownEncoding, "the encoding \"%1\" is unknown; texts are read as UTF-8",
              "use a name of the table of encodings"),
    TORKA_ROW(unknownLanguage, "the language \"%1\" is unknown; watermark fonts and notes go by its name",
              "write the English name of the language, such as English or Japanese"),
    TORKA_ROW(misspeltKeyword, "no reader knows this keyword, and the line is lost", "correct the keyword"),
    TORKA_ROW(linesBehindEnd, "the end marker stands above this line: from here on %1 not read",
              "move the line *% End of PPD file to the end"),
    TORKA_ROW(
        lineWithoutAsterisk,
        "the line stands outside a value and does not begin with *: the print server refuses the "
        "description",
        "begin the line with *, or with *% where the value's first line does; close the value behind it"),
    TORKA_ROW(refusedName, "the print server refuses the description: %1",
              "use at most 40 characters, and only letters, digits and signs of ASCII"),

    TORKA_ROW(unknownConstraintKeyword, "a constraint names this keyword, which nothing defines",
              "name a keyword of the description"),
    TORKA_ROW(unknownConstraintOption, "a constraint names the option \"%1\", which is not offered",
              "name an option that the block offers"),
    TORKA_ROW(constraintOnValue,
              "a constraint names this keyword, which has no options: nothing evaluates it",
              "name a popup or a check box, or remove the line"),
    TORKA_ROW(oneWayConstraint, "the constraint holds in one direction only; \"%1\" is missing",
              "add the reverse line"),
    TORKA_ROW(constraintOnItself, "the constraint forbids %1 by itself: nobody can choose it",
              "name another keyword in the line, or remove it"),
    TORKA_ROW(textBehindConstraint, "\"%1\" stands behind the second option of the constraint and is lost",
              "write one line for each two options"),
    TORKA_ROW(defaultsInConflict, "the constraint forbids defaults of the description: %1",
              "change one of the two defaults, or the constraint"),
    TORKA_ROW(requirement, "nothing evaluates a requirement: it is listed and forbids nothing",
              "write constraint lines for what must not be chosen"),

    TORKA_ROW(noMakerVersion, "there is no *%QVVersion, so that the printer has no pane",
              "add *%QVVersion with the controller's version"),
    TORKA_ROW(noFileName, "no *PCFileName gives a name, so that the printer has no pane",
              "add *PCFileName with a quoted name that the plug-in's PrinterList.plist lists"),
    TORKA_ROW(unlistedFileName,
              "the plug-in's PrinterList.plist does not list \"%1\", so that the printer has no pane",
              "use a listed *PCFileName, or add this one to the list"),
};
#undef TORKA_ROW

static_assert([] {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].kind != static_cast<PPDLintKind>(i)) {
            return false;
        }
    }
    return true;
}());

const LintRow& rowOf(PPDLintKind kind) { return rows[static_cast<std::size_t>(kind)]; }

struct ErrorRow {
    std::int16_t code;
    std::string_view remedy;
};

// The remedies say these numbers.
static_assert(DescriptionLimits().elements == 1'000'000 && DescriptionLimits().bytes == 256U << 20U);

constexpr std::array errorRows{
    ErrorRow{PPDErr_OutOfMemory, "free memory, or use a smaller description"},
    ErrorRow{PPDErr_PropPageParsing, "give the *%ZANPropPage line a name"},
    ErrorRow{PPDErr_GroupParsing,
             "use the *%ZANFlags keyword in the *%ZANGroup line, and let a control follow"},
    ErrorRow{PPDErr_JobNoteParsing, "use the group line's keyword in the *%ZANJobNote line"},
    ErrorRow{PPDErr_RangeParsing,
             "use the group line's keyword; give minimum, maximum, positive increment and default"},
    ErrorRow{PPDErr_OpenUIParsing, "give the *OpenUI line a keyword"},
    ErrorRow{PPDErr_BooleanParsing,
             "name the options of a boolean block True and False, with one default line"},
    ErrorRow{PPDErr_OpenUIZANParsing1, "give the *OpenUIZAN line a keyword"},
    ErrorRow{PPDErr_PopupParsing, "leave one default line in the popup's block"},
    ErrorRow{PPDErr_GroupNameParsing, "give the *%ZANGroupName line a name"},
    ErrorRow{PPDErr_ParentParsingNoParent, "declare the page or scroll pane before the *%ZANParent line; a "
                                           "roll-down needs a scroll pane"},
    ErrorRow{PPDErr_ParentParsing, "write both names: CHILD/PARENT"},
    ErrorRow{PPDErr_ControlParsing, "let a *%ZANGroup line or a block follow the *%ZANFlags line"},
    ErrorRow{PPDErr_FileError, "give a file that can be opened and read"},
    ErrorRow{PPDErr_BadShortcut, "name an existing control that is not a reserved name"},
    ErrorRow{PPDErr_NoParent, "give the control a group line that names a declared roll-down"},
    ErrorRow{PPDErr_Duplicate, "remove the second definition of the control, page or group"},
    ErrorRow{PPDErr_NoPropertyPages, "declare at least one visible page"},
    ErrorRow{PPDErr_NoGroups, "declare groups and place them"},
    ErrorRow{PPDErr_NoControls, "define controls"},
    ErrorRow{PPDErr_NotPPDFile, "begin the file with *PPD-Adobe: \"4.3\""},
    ErrorRow{PPDErr_InvalidParent, "name a roll-down, not a scroll pane, in the group line"},
    ErrorRow{PPDErr_InvalidOpenUIType, "use Boolean, PickOne or PickMany"},
    ErrorRow{PPDErr_UnsupportedJobNoteFlag, "remove the flag word above the reader's level"},
    ErrorRow{PPDErr_NoDefaultValueFlag, "add a *Default line to the block"},
    ErrorRow{PPDErr_OpenUIZANParsing2, "use Boolean, PickOne or PickMany"},
    ErrorRow{PPDErr_NoPostscript, "give the range its quoted PostScript, beginning on the same line"},
    ErrorRow{PPDErr_BadConstraint, "name the second keyword"},
    ErrorRow{PPDErr_SubGroupNameParsing, "give the *%ZANSubGroupName line a name"},
    ErrorRow{PPDErr_TooManyElements, "leave at most 1,000,000 elements in the description"},
    ErrorRow{PPDErr_TooManyBytes, "leave at most 256 MiB in the description's file"},
};

std::string filled(std::string_view pattern, const PPDLintNote& note) {
    std::string result;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const std::string_view place = pattern.substr(at, 2);
        if (place == "%1" || place == "%2") {
            result += place == "%1" ? note.text : note.keyword;
            ++at;
        } else {
            result += pattern[at];
        }
    }
    return result;
}

} // namespace

const char* ppdLintName(PPDLintKind kind) { return rowOf(kind).name; }

std::string ppdLintMessage(const PPDLintNote& note) {
    const std::string message = filled(rowOf(note.kind).says, note);
    return note.suggestion.empty() ? message : message + "; did you mean \"" + note.suggestion + "\"?";
}

std::string ppdLintRemedy(const PPDLintNote& note) { return filled(rowOf(note.kind).remedy, note); }

std::string_view ppdErrRemedy(std::int16_t code) {
    const auto* const row =
        std::ranges::find_if(errorRows, [code](const ErrorRow& each) { return each.code == code; });
    return row == errorRows.end() ? std::string_view() : row->remedy;
}

} // namespace torka
