// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LibraryLoader.h"

namespace torka::platform {

// Loads libraries with dlopen. A loaded library stays in the process, because toolkits keep pointers into it.
class PosixLibraryLoader final : public LibraryLoader {
public:
    bool Exists(const std::filesystem::path& path) const override;
    // Loads only a path with a folder, so that the library search path is never used.
    Result<std::unique_ptr<LoadedLibrary>> Load(const std::filesystem::path& path) override;
};

} // namespace torka::platform
