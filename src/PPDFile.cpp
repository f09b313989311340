// SPDX-License-Identifier: Apache-2.0
#include "PPDFile.h"

#include <filesystem>

namespace torka {

namespace {

FSRef referenceOf(const CFURLRef& url) {
    FSRef reference;
    CFURLGetFSRef(url, reference);
    return reference;
}

} // namespace

PPDFile::PPDFile(const CFURLRef& url)
    : FileMac(referenceOf(url)) {}

PPDFile::PPDFile(std::string_view volume, std::string_view directory, std::string_view name)
    : FileMac(FSRef{(std::filesystem::path(volume) / directory / name).string()}) {}

} // namespace torka
