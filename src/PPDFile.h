// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "File_Mac.h"

#include <string_view>

// The file of a printer description.

namespace torka {

class PPDFile : public FileMac {
public:
    explicit PPDFile(const FSRef& reference)
        : FileMac(reference) {}
    // Accepts only a file URL; the object is otherwise not valid.
    explicit PPDFile(const CFURLRef& url);

    // Given interface; no caller here
    // Refers to `name` in `directory` below `volume`; both may be empty.
    PPDFile(std::string_view volume, std::string_view directory, std::string_view name);
};

} // namespace torka
