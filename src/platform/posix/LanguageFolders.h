// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torka::platform {

// Names of language folders, without ".lproj", that match the language of a BCP 47 tag, the closest first:
// "zh-Hans-CN" gives "zh_Hans_CN", "zh-Hans-CN", "zh_CN", "zh-CN", "zh_Hans", "zh-Hans". Chinese without a
// region gets the region in which its script is usual. Empty for an invalid tag.
std::vector<std::string> languageFolders(std::string_view tag);

} // namespace torka::platform
