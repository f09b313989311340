// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/Utilities/CError.h"
#include "PPDX/Utilities/CString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace torka {

enum PPDErr : std::int16_t {
    PPDErr_OutOfMemory = 1,
    PPDErr_PropPageParsing = 4,
    PPDErr_GroupParsing = 5,
    PPDErr_JobNoteParsing = 6,
    PPDErr_RangeParsing = 7,
    PPDErr_OpenUIParsing = 8,
    PPDErr_BooleanParsing = 9,
    PPDErr_OpenUIZANParsing1 = 10,
    PPDErr_PopupParsing = 11,
    PPDErr_GroupNameParsing = 12,
    PPDErr_ParentParsingNoParent = 14,
    PPDErr_ParentParsing = 15,
    PPDErr_ControlParsing = 16,
    PPDErr_FileError = 18,
    PPDErr_BadShortcut = 19,
    PPDErr_NoParent = 21,
    PPDErr_Duplicate = 23,
    PPDErr_NoPropertyPages = 25,
    PPDErr_NoGroups = 26,
    PPDErr_NoControls = 27,
    PPDErr_NotPPDFile = 28,
    PPDErr_InvalidParent = 29,
    PPDErr_InvalidOpenUIType = 31,
    PPDErr_UnsupportedJobNoteFlag = 32,
    PPDErr_NoDefaultValueFlag = 33,
    PPDErr_OpenUIZANParsing2 = 34,
    PPDErr_NoPostscript = 35,
    PPDErr_BadConstraint = 36,
    PPDErr_SubGroupNameParsing = 37,
    PPDErr_TooManyElements = 38,
    PPDErr_TooManyBytes = 39
};

// Returns "PPDErr_Duplicate" for 23; "" for an unknown code.
const char* ppdErrName(std::int16_t code);
// Returns true for the codes that end a parse: memory, file, format, limits.
bool isFatalPPDErr(std::int16_t code);

// One defect of a description: its code, whether it ended the parse, its keyword and its line. The error's
// description text is empty.
class PPDXErrorObj final : public CError {
public:
    // The code decides whether it is fatal. A null keyword counts as empty. Lines count from 1; 0 when the
    // defect concerns no line.
    PPDXErrorObj(std::int16_t code, const char* keyword, long line = 0);
    PPDXErrorObj(std::int16_t code, bool fatal, const char* keyword, long line);

    // Never returns null.
    const char* Keyword() const;
    long Line() const { return lineNumber; }

private:
    CString keyword;
    long lineNumber;
};

// The defects of a description in the order of detection; owns them.
class PPDXErrors {
public:
    // Ignores null.
    void Add(std::unique_ptr<PPDXErrorObj> error);
    std::size_t Count() const { return errors.size(); }
    bool Empty() const { return errors.empty(); }
    // Return null at the end.
    PPDXErrorObj* First();
    PPDXErrorObj* Next();

private:
    std::vector<std::unique_ptr<PPDXErrorObj>> errors;
    std::size_t cursor = 0;
};

} // namespace torka
