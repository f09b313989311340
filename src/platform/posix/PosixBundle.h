#pragma once

#include "platform/Bundle.h"

#include <filesystem>
#include <string>

namespace torka::platform {

// Opens the bundle at a folder. Null, with `problem` in one line that is logged too, when Info.plist is
// missing or broken or names no identifier. Strings tables and the shared object are read when they are first
// asked for: a broken table is logged once and counts as empty.
//
// Files are read through platform::System, the person's language is asked there too.
BundleRef openBundle(const std::filesystem::path& folder, std::string& problem);

// The bundle folder (".../NAME.bundle") around the shared object that holds this address; empty when there is
// none. For the shared object's own use.
std::filesystem::path bundleFolderAround(const void* address);

} // namespace torka::platform
