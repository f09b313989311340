// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"

#include <cstdio>

namespace torka::tool {

namespace {

bool writeFailed = false;

} // namespace

ExitStatus unusable(std::string_view what) {
    warn(what);
    return ExitStatus::unusable;
}

ExitStatus unusable(const Fault& why) { return unusable(why.Line()); }

void warn(std::string_view what) {
    const std::string line = "torka: " + printable(what) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        writeFailed = true;
    }
}

bool outputFailed() { return std::fflush(stdout) != 0 || writeFailed; }

std::string printable(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto value = static_cast<unsigned char>(c);
        if (value >= 0x20 && value != 0x7f) {
            result += c;
        } else {
            result += "\\x";
            result += digits[value >> 4U];
            result += digits[value & 15U];
        }
    }
    return result;
}

} // namespace torka::tool
