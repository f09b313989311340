// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Log.h"

#include <cstdlib>
#include <string_view>

// Shared by the fuzz targets.

namespace torka::fuzz {

inline void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

class NoLog : public platform::LogSink {
    void Line(std::string_view /*line*/) override {}
};

} // namespace torka::fuzz
