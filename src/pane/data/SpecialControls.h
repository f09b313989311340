#pragma once

#include <array>
#include <string_view>

namespace torka {

class PPDXControl;
class PPDXControls;

// The colour controls whose value lives in a job note of the same keyword, too, because the controller may
// add to their choices; and the control bar, which is kept likewise.
inline constexpr std::array<const char*, 5> colourNoteKeywords = {
    "*QVOutProfile", "*QVSimulation", "*QVRGBOverride", "*QVSpotPriority", "*QVGrayOverride"};
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
