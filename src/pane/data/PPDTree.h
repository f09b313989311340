// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace torka {

// Limits of the tree. An entry beyond a limit is refused and logged.
inline constexpr std::size_t maximumTreeGroups = 30;
inline constexpr std::size_t maximumTreeControls = 255; // of one group
inline constexpr std::size_t maximumQuickAccess = 99;
inline constexpr std::size_t treeKeywordSize = 64; // bytes; a longer keyword is cut

// One control of a group node.
struct PPDTreeControl {
    std::string userName; // for people
    std::string keyword;
};

// One control of the quick-access area. `position` is 100 x (index of the group + 1) + index of the control
// in the group; 0 for a control outside all groups.
struct PPDTreeQuickAccess {
    std::string userName;
    std::string keyword;
    std::int32_t position = 0;
};

struct PPDTreeGroup {
    std::string userName;
    std::string keyword;
    std::vector<PPDTreeControl> controls;
};

// What the pane shows: groups of controls, and the controls of the quick-access area.
struct PPDTree {
    std::vector<PPDTreeGroup> groups;
    std::vector<PPDTreeQuickAccess> quickAccess;
};

} // namespace torka
