#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torka::platform {

// Names of language folders, without ".lproj", that could serve a person who prefers the language of a
// BCP 47 tag; the closest first: "zh-Hans-CN" gives "zh_Hans_CN", "zh-Hans-CN", "zh_CN", "zh_Hans", "zh".
// Chinese without a region gets the one where its script is usual. Empty for a tag that is none.
std::vector<std::string> languageFolders(std::string_view tag);

} // namespace torka::platform
