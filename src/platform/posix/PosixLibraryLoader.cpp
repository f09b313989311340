// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixLibraryLoader.h"

#include <dlfcn.h>
#include <system_error>

namespace torka::platform {

namespace {

struct CloseLibrary {
    void operator()(void* library) const { dlclose(library); }
};

class PosixLibrary final : public LoadedLibrary {
public:
    explicit PosixLibrary(void* openLibrary)
        : library(openLibrary) {}
    void* Symbol(const char* name) const override { return dlsym(library.get(), name); }

private:
    std::unique_ptr<void, CloseLibrary> library;
};

} // namespace

bool PosixLibraryLoader::Exists(const std::filesystem::path& path) const {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

Result<std::unique_ptr<LoadedLibrary>> PosixLibraryLoader::Load(const std::filesystem::path& path) {
    if (!path.has_parent_path()) {
        return Fault{"names no folder", path.string()};
    }
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!library) {
        const char* reason = dlerror();
        return reason ? Fault{reason} : Fault{"cannot be loaded", path.string()};
    }
    return std::unique_ptr<LoadedLibrary>(std::make_unique<PosixLibrary>(library));
}

} // namespace torka::platform
