// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

namespace torka {

// The paper that the print dialog chose, as it stands in its print settings.
struct SystemPaper {
    CFDictionaryRef ticket; // null for none; then the size is 0
    double width = 0;       // points
    double height = 0;
};
SystemPaper systemPaper(const PMPrintSettings& settings);

} // namespace torka
