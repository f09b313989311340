// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string_view>

namespace torka::platform {

// The rule of System::Resolve, shared by its adapters. An absolute path is taken below `root`; its ".."
// cannot leave `root`. Returns a relative path unchanged, and every path when `root` is empty.
std::filesystem::path belowRoot(const std::filesystem::path& root, std::string_view fixedPath);

} // namespace torka::platform
