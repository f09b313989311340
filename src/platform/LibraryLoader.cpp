// SPDX-License-Identifier: Apache-2.0
#include "platform/LibraryLoader.h"

#include <utility>

namespace torka::platform {

namespace {

std::unique_ptr<LibraryLoader>& chosenLoader() {
    static std::unique_ptr<LibraryLoader> loader;
    return loader;
}

} // namespace

LoadedLibrary::~LoadedLibrary() = default;

LibraryLoader::~LibraryLoader() = default;

LibraryLoader* libraryLoader() { return chosenLoader().get(); }

void setLibraryLoader(std::unique_ptr<LibraryLoader> loader) { chosenLoader() = std::move(loader); }

} // namespace torka::platform
