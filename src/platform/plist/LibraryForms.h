// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// What libplist itself writes, for the parts of a list that are not worth a writer of our own.

namespace torka::platform {

struct LibraryFrame {
    std::string prolog; // before the value: declaration, document type, the element's begin
    std::string epilog; // behind the value and its line end
};
const LibraryFrame& libraryFrame();

// The digits of a finite real, with a decimal point in every locale.
std::string libraryReal(double number);

} // namespace torka::platform
