#pragma once

#include <filesystem>
#include <string_view>

namespace torka::platform {

// The rule of System::Resolve, shared by its adapters: an absolute path is taken below `root`, whatever ".."
// it holds; a relative one, and any path under an empty root, comes back unchanged.
std::filesystem::path belowRoot(const std::filesystem::path& root, std::string_view fixedPath);

} // namespace torka::platform
