// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Bundle.h"

#include <filesystem>
#include <string>

namespace torka::platform {

// Opens the bundle at a folder. Null when Info.plist is missing or broken or names no identifier; `problem`
// then gives the reason in one line, which is also logged. Strings tables and the shared object are read at
// their first use. A broken table is logged once and counts as empty.
//
// Reads files and the person's language through platform::System.
Result<BundleRef> openBundle(const std::filesystem::path& folder);

// The folder of the shared object or program that holds this address; empty when it cannot be told.
std::filesystem::path folderOfObjectAt(const void* address);

// The bundle folder (".../NAME.bundle") of the shared object that holds this address; empty when the object
// lies in no bundle. A shared object calls this for itself.
std::filesystem::path bundleFolderAround(const void* address);

} // namespace torka::platform
