// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/text/StandardStreams.h"

#include <memory>
#include <string>
#include <vector>

namespace torka::tests {

// Collects the exchange's output on the standard streams while it lives.
class CapturingStreams {
public:
    CapturingStreams() { setStandardStreams(sink); }
    CapturingStreams(const CapturingStreams&) = delete;
    CapturingStreams& operator=(const CapturingStreams&) = delete;
    ~CapturingStreams() { setStandardStreams(nullptr); }

    const std::string& Output() const { return sink->output; }
    const std::vector<std::string>& Errors() const { return sink->errors; } // one text for each call
    void Clear() {
        sink->output.clear();
        sink->errors.clear();
    }

private:
    class Sink final : public StandardStreams {
    public:
        void Output(std::string_view text) override { output += text; }
        void Error(std::string_view text) override { errors.emplace_back(text); }

        std::string output;
        std::vector<std::string> errors;
    };
    std::shared_ptr<Sink> sink = std::make_shared<Sink>();
};

} // namespace torka::tests
