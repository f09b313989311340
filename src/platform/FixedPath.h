// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string_view>

namespace torka::platform {

// The rule of System::Resolve, shared by its adapters. An absolute path is taken below `root`; its ".."
// cannot leave `root`. "/Library/Caches/…" lies in "/var/cache/torka", the rest of "/Library/…" in
// "/var/lib/torka". Returns a relative path unchanged.
std::filesystem::path belowRoot(const std::filesystem::path& root, std::string_view fixedPath);

} // namespace torka::platform
