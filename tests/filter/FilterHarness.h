// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/System.h"
#include "platform/posix/PosixSystem.h"
#include "spooler/filter/FilterNotes.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/support/TestSupport.h"

#include <filesystem>
#include <memory>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

namespace torka::tests {

// Runs the filter's parts below a temporary system root and collects their messages to the server.
class FilterHarness {
public:
    FilterHarness() {
        platform::PosixSystemOptions options;
        options.root = root.Path();
        platform::setSystem(std::make_unique<platform::PosixSystem>(options));
    }
    FilterHarness(const FilterHarness&) = delete;
    FilterHarness& operator=(const FilterHarness&) = delete;
    ~FilterHarness() { platform::setSystem(nullptr); }

    // A file of the filter's folder.
    std::filesystem::path Cache(std::string_view name = "") const {
        return root.Path() / "var/cache/torka/ZAN" / name;
    }
    // The lines that the server reads when another filter has just written a piece of a line. Only messages
    // for debugging may stand behind it.
    std::vector<std::string> Messages() const {
        const std::string piece = "DEBUG: Running";
        std::vector<std::string> lines;
        for (const std::string& written : streams.Errors()) {
            std::istringstream text((written.starts_with("DEBUG: ") ? "" : piece) + written);
            for (std::string line; std::getline(text, line);) {
                if (line != piece) {
                    lines.push_back(line + "\n");
                }
            }
        }
        return lines;
    }
    std::string Told() const {
        const std::vector<std::string> lines = Messages();
        return std::accumulate(lines.begin(), lines.end(), std::string());
    }
    void Forget() { streams.Clear(); }

    const TemporaryFolder root;

private:
    CapturingStreams streams;
};

inline std::string ticketPath(int number) {
    const std::string digits = std::to_string(100000000000 + number);
    return "/Library/Caches/ZAN/Torka.temp5D2E7A41-9C3B-4F60-8E17-" + digits;
}

} // namespace torka::tests
