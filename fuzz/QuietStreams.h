// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/text/StandardStreams.h"

#include <memory>

namespace torka::fuzz {

// Keeps the two-way exchange's diagnostics off the process's streams, from the first call on.
inline void quietStreams() {
    class NoStreams final : public StandardStreams {
    public:
        void Output(std::string_view /*text*/) override {}
        void Error(std::string_view /*text*/) override {}
    };
    static const bool quiet = (setStandardStreams(std::make_shared<NoStreams>()), true);
    static_cast<void>(quiet);
}

} // namespace torka::fuzz
