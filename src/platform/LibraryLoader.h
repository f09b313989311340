// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"

#include <filesystem>
#include <memory>
#include <string>

// Loads libraries at run time.
//
// One loader serves the process. Apps and tests set it at start with setLibraryLoader. No library is found
// without a loader.

namespace torka::platform {

// A library that stays loaded while the object lives.
class LoadedLibrary {
public:
    LoadedLibrary() = default;
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    virtual ~LoadedLibrary();
    // Null when the library lacks the symbol.
    virtual void* Symbol(const char* name) const = 0;
};

class LibraryLoader {
public:
    LibraryLoader() = default;
    LibraryLoader(const LibraryLoader&) = delete;
    LibraryLoader& operator=(const LibraryLoader&) = delete;
    virtual ~LibraryLoader();
    virtual bool Exists(const std::filesystem::path& path) const = 0;
    // Never null on success.
    virtual Result<std::unique_ptr<LoadedLibrary>> Load(const std::filesystem::path& path) = 0;
};

// Null before setLibraryLoader.
LibraryLoader* libraryLoader();
// REQUIRES: no library of the old loader is in use.
void setLibraryLoader(std::unique_ptr<LibraryLoader> loader);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
