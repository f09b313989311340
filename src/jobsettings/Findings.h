// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/LeftOutSetting.h"
#include "output/ZANJobNoteList.h"

#include <string>
#include <string_view>
#include <vector>

// What is wrong with a job's settings, in English. The texts are UTF-8 and repeat texts of the description
// and the job, so that a caller who shows them on a terminal masks their control characters.

namespace torka {

class PPDXJobNote;
class ZANPPD;

// One text for each pair of present settings in conflict: "*QVStaple=Saddle does not go together with …".
std::vector<std::string> conflictTexts(const ZANPPD& description);
// One text for each rule that the note's present text breaks: "*Notes1 has at most 63 characters".
std::vector<std::string> brokenRuleTexts(const PPDXJobNote& note);
// Why the job cannot carry this text of the note: the encoding in force lacks characters of it. Names none of
// a secret note. "" when it can.
std::string lostTextReason(const ZANPPD& description, const PPDXJobNote& note, std::string_view text);
// Why an emission left out a note, or another setting.
std::string leftOutReason(LeftOutReason reason);
std::string leftOutReason(const LeftOutSetting& setting);

} // namespace torka
