// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"

#include "apps/torka/PersonsLanguage.h"

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
    const std::string line = "torka: " + printable(inPersonsLanguage(what)) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        writeFailed = true;
    }
}

bool outputFailed() { return std::fflush(stdout) != 0 || writeFailed; }

} // namespace torka::tool
