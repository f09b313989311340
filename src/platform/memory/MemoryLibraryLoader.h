// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LibraryLoader.h"

#include <map>
#include <string>

namespace torka::platform {

// Libraries that a test supplies: symbols by name. Public members may be changed at any time.
class MemoryLibraryLoader final : public LibraryLoader {
public:
    struct Library {
        std::map<std::string, void*> symbols;
        std::string error; // not empty when the library does not load
    };

    bool Exists(const std::filesystem::path& path) const override { return libraries.contains(path); }
    Result<std::unique_ptr<LoadedLibrary>> Load(const std::filesystem::path& path) override {
        const auto found = libraries.find(path);
        if (found == libraries.end()) {
            return Fault{"no such file", path.string()};
        }
        if (!found->second.error.empty()) {
            return Fault{found->second.error};
        }
        return std::unique_ptr<LoadedLibrary>(std::make_unique<Loaded>(found->second));
    }

    std::map<std::filesystem::path, Library> libraries;

private:
    class Loaded final : public LoadedLibrary {
    public:
        explicit Loaded(const Library& from)
            : library(from) {}
        void* Symbol(const char* name) const override {
            const auto found = library.symbols.find(name);
            return found == library.symbols.end() ? nullptr : found->second;
        }

    private:
        Library library;
    };
};

} // namespace torka::platform
