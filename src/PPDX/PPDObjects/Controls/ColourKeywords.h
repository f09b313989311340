// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace torka {

// The five colour settings that go into the job as dynamic options, in the order in which they are sent. Each
// lives in a job note of the same keyword, too, because the controller may add to its choices.
inline constexpr std::array<const char*, 5> dynamicColourKeywords = {
    "*QVOutProfile", "*QVSimulation", "*QVRGBOverride", "*QVSpotPriority", "*QVGrayOverride"};

// Popups that take a choice which the description does not offer: the controller may add to them at any time.
inline constexpr std::array<std::string_view, 7> openColourPopups = {
    "*QVSimulation", "*QVOutProfile",   "*QVRGBOverride",  "*QVCurveAdjust",
    "*QVControlBar", "*QVSpotPriority", "*QVGrayOverride",
};

// By the exact keyword.
constexpr bool isOpenColourPopup(std::string_view keyword) {
    return std::ranges::find(openColourPopups, keyword) != openColourPopups.end();
}

static_assert(std::ranges::all_of(dynamicColourKeywords, isOpenColourPopup));

} // namespace torka
