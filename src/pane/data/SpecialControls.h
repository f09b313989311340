// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/ColourKeywords.h"

#include <array>
#include <string_view>

namespace torka {

class PPDXControl;
class PPDXControls;

// The control bar. Like the dynamicColourKeywords it also has a job note that holds its value.
inline constexpr const char* controlBarKeyword = "*QVControlBar";
// The notes that name the server preset from which the settings came.
inline constexpr std::array<const char*, 3> serverPresetKeywords = {"*PresetType", "*PresetName",
                                                                    "*PresetTimestampModified"};

// The control of that keyword, job notes left out; null for none.
PPDXControl* settingControl(const PPDXControls& controls, const char* keyword);

} // namespace torka
