#pragma once

#include <filesystem>
#include <memory>
#include <string>

// Libraries that are loaded at run time.
//
// One loader serves the process. It is chosen at start with setLibraryLoader (apps and tests do that);
// without one no library is found.

namespace torka::platform {

// A library that is loaded as long as this lives.
class LoadedLibrary {
public:
    LoadedLibrary() = default;
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    virtual ~LoadedLibrary();
    // Null when the library has no such symbol.
    virtual void* Symbol(const char* name) const = 0;
};

class LibraryLoader {
public:
    LibraryLoader() = default;
    LibraryLoader(const LibraryLoader&) = delete;
    LibraryLoader& operator=(const LibraryLoader&) = delete;
    virtual ~LibraryLoader();
    virtual bool Exists(const std::filesystem::path& path) const = 0;
    // Null when the library cannot be loaded; `error` says why, in one line.
    virtual std::unique_ptr<LoadedLibrary> Load(const std::filesystem::path& path, std::string& error) = 0;
};

// Null when none was chosen.
LibraryLoader* libraryLoader();
// REQUIRES: no library of the old loader is in use.
void setLibraryLoader(std::unique_ptr<LibraryLoader> loader);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
