#pragma once

#include "PPDX/PPDObjects/Controls/ColourKeywords.h"

#include <array>
#include <string_view>

namespace torka {

class PPDXControl;
class PPDXControls;

// Kept as the dynamicColourKeywords are: its value lives in a job note, too.
inline constexpr const char* controlBarKeyword = "*QVControlBar";
// What names the preset of the server that the settings came from.
inline constexpr std::array<const char*, 3> serverPresetKeywords = {"*PresetType", "*PresetName",
                                                                    "*PresetTimestampModified"};

// These two are kept without the conversion that the others' values take.
constexpr bool takesValueAsItIs(std::string_view keyword) {
    return keyword == "*QVSpotPriority" || keyword == "*QVGrayOverride";
}

// The control of that keyword that is no job note; null for none.
PPDXControl* settingControl(const PPDXControls& controls, const char* keyword);

} // namespace torka
