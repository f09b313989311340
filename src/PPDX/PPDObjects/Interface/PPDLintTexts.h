// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/PPDLint.h"

#include <cstdint>
#include <string>
#include <string_view>

// What lint says to the author of a description: names, explanations, and what to do. docs/extended-ppd.md
// lists the same texts.

namespace torka {

// Returns "unknownJobNoteFlag" and so on.
const char* ppdLintName(PPDLintKind kind);
// Says what is wrong, in one line, with the note's own text and suggestion.
std::string ppdLintMessage(const PPDLintNote& note);
// Says what to do about it.
std::string ppdLintRemedy(const PPDLintNote& note);
// Says what to do about a parse error; "" for an unknown code.
std::string_view ppdErrRemedy(std::int16_t code);

} // namespace torka
