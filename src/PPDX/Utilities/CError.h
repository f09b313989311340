// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/Utilities/CString.h"

#include <cstdint>

// A collected error: a code, a text that may be empty, and whether the error ended the work. A value.

namespace torka {

class CError {
public:
    CError() = default;
    explicit CError(std::int16_t errorCode, const char* text = nullptr, bool isFatal = false)
        : code(errorCode)
        , description(text)
        , fatal(isFatal) {}

    // Compares only the codes.
    bool operator==(std::int16_t other) const { return code == other; }

    std::int16_t Code() const { return code; }
    bool IsFatal() const { return fatal; }

    // Given interface; no caller here
    // Null when empty.
    const char* Description() const { return description.Empty() ? nullptr : description.Buffer(); }
    void Description(const char* text) { description = text; }

private:
    std::int16_t code = 0;
    CString description;
    bool fatal = false;
};

} // namespace torka
