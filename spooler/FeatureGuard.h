// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <string_view>

// Decides which feature code a Splicer places inside "[{" ... "} stopped cleartomark". This guard makes code
// that a device refuses cost one setting and not the job.

namespace torka {

// Main keywords, each with its asterisk.
using KeywordSet = std::set<std::string, std::less<>>;

// Returns the job notes of a description (the content of its file) whose code a job must not print without:
// passwords, protected notes, secure-print codes and the sign-in. A note is one of them by its flag words, or
// by its keyword alone.
KeywordSet unguardedNotes(std::string_view description);

// Returns the main keyword of an entry that is one feature block, from "%%BeginFeature:" to "%%EndFeature";
// "" for any other entry.
std::string_view featureKeyword(std::string_view entry);

// Tells whether the code means the same inside a procedure: its braces balance and its strings are closed, it
// does not read the document (currentfile), and no name is evaluated while the procedure is read ("//name").
bool canBeGuarded(std::string_view code);

} // namespace torka
