// SPDX-License-Identifier: Apache-2.0
// Reads arbitrary bytes as a description and as feature code. Every unguarded keyword is one word of the
// description. Code that may be guarded may also be guarded twice.

#include "fuzz/Fuzzing.h"
#include "spooler/FeatureGuard.h"

#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using torka::fuzz::require;
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const std::string& keyword : torka::unguardedNotes(text)) {
        require(text.find(keyword) != std::string::npos);
        require(keyword.find_first_of("\r\n/:") == std::string::npos);
    }
    torka::featureKeyword(text);
    if (torka::canBeGuarded(text)) {
        require(torka::canBeGuarded("[{\n" + text + "\n} stopped cleartomark\n"));
    }
    return 0;
}
