// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace torka {

// A setting that no job takes: its code is too long, or its value is below 0.
struct LeftOutSetting {
    std::string keyword; // "watermark" for the watermark
    std::size_t bytes;   // of its code
    std::size_t maximum; // that a job takes
    bool isBelowZero = false;
};

// Returns the choices that the last emission left to the system's own code: main keyword without its
// asterisk, and choice. They belong among the job's options. Takes the value of the print setting
// systemChoicesSetting, null when there is none.
inline std::vector<std::pair<std::string, std::string>> systemChoices(const CFTypeRef& setting) {
    std::vector<std::pair<std::string, std::string>> choices;
    if (const auto dictionary = cfCast<CFDictionary>(setting)) {
        for (const auto& [keyword, choice] : dictionary->Pairs()) {
            choices.emplace_back(utf8Text(keyword), utf8Text(cfCast<CFString>(choice)));
        }
    }
    return choices;
}

} // namespace torka
