#pragma once

#include "platform/LibraryLoader.h"

namespace torka::platform {

// Libraries by dlopen. A library stays in the process once it was loaded: toolkits leave behind what points
// into it.
class PosixLibraryLoader final : public LibraryLoader {
public:
    bool Exists(const std::filesystem::path& path) const override;
    // Only a path with a folder is loaded; the library search path is not asked.
    std::unique_ptr<LoadedLibrary> Load(const std::filesystem::path& path, std::string& error) override;
};

} // namespace torka::platform
