// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Properties/PPDXErrors.h"

#include <utility>

namespace torka {

const char* ppdErrName(std::int16_t code) {
    switch (code) {
#define TORKA_NAME(name)                                                                                     \
    case name:                                                                                               \
        return #name;
        TORKA_NAME(PPDErr_OutOfMemory)
        TORKA_NAME(PPDErr_PropPageParsing)
        TORKA_NAME(PPDErr_GroupParsing)
        TORKA_NAME(PPDErr_JobNoteParsing)
        TORKA_NAME(PPDErr_RangeParsing)
        TORKA_NAME(PPDErr_OpenUIParsing)
        TORKA_NAME(PPDErr_BooleanParsing)
        TORKA_NAME(PPDErr_OpenUIZANParsing1)
        TORKA_NAME(PPDErr_PopupParsing)
        TORKA_NAME(PPDErr_GroupNameParsing)
        TORKA_NAME(PPDErr_ParentParsingNoParent)
        TORKA_NAME(PPDErr_ParentParsing)
        TORKA_NAME(PPDErr_ControlParsing)
        TORKA_NAME(PPDErr_FileError)
        TORKA_NAME(PPDErr_BadShortcut)
        TORKA_NAME(PPDErr_NoParent)
        TORKA_NAME(PPDErr_Duplicate)
        TORKA_NAME(PPDErr_NoPropertyPages)
        TORKA_NAME(PPDErr_NoGroups)
        TORKA_NAME(PPDErr_NoControls)
        TORKA_NAME(PPDErr_NotPPDFile)
        TORKA_NAME(PPDErr_InvalidParent)
        TORKA_NAME(PPDErr_InvalidOpenUIType)
        TORKA_NAME(PPDErr_UnsupportedJobNoteFlag)
        TORKA_NAME(PPDErr_NoDefaultValueFlag)
        TORKA_NAME(PPDErr_OpenUIZANParsing2)
        TORKA_NAME(PPDErr_NoPostscript)
        TORKA_NAME(PPDErr_BadConstraint)
        TORKA_NAME(PPDErr_SubGroupNameParsing)
        TORKA_NAME(PPDErr_TooManyElements)
        TORKA_NAME(PPDErr_TooManyBytes)
#undef TORKA_NAME
    default:
        return "";
    }
}

bool isFatalPPDErr(std::int16_t code) {
    return code == PPDErr_OutOfMemory || code == PPDErr_FileError || code == PPDErr_NotPPDFile ||
           code == PPDErr_TooManyElements || code == PPDErr_TooManyBytes;
}

PPDXErrorObj::PPDXErrorObj(std::int16_t errorCode, const char* concerned, long line)
    : PPDXErrorObj(errorCode, isFatalPPDErr(errorCode), concerned, line) {}

PPDXErrorObj::PPDXErrorObj(std::int16_t errorCode, bool isFatal, const char* concerned, long line)
    : CError(errorCode, nullptr, isFatal)
    , keyword(concerned ? concerned : "")
    , lineNumber(line) {}

const char* PPDXErrorObj::Keyword() const { return keyword.Buffer() ? keyword.Buffer() : ""; }

void PPDXErrors::Add(std::unique_ptr<PPDXErrorObj> error) {
    if (error) {
        errors.push_back(std::move(error));
    }
}

PPDXErrorObj* PPDXErrors::First() {
    cursor = 0;
    return Next();
}

PPDXErrorObj* PPDXErrors::Next() { return cursor < errors.size() ? errors[cursor++].get() : nullptr; }

} // namespace torka
