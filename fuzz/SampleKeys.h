// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/FieldKeys.h"
#include "fuzz/Fuzzing.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

// A set of field keys for the targets that encipher notes.

namespace torka::fuzz {

inline std::shared_ptr<const FieldKeys> makeSampleKeys() {
    std::string list = "<plist version=\"1.0\"><dict><key>KeyOffsets</key><array>";
    for (int i = 0; i < 11; ++i) {
        list += "<integer>" + std::to_string(16 * i) + "</integer>";
    }
    list += "</array>";
    // Base64 of sizes that are no multiple of 3 ends in padding.
    const std::pair<const char*, std::size_t> tables[] = {
        {"KeyTable", 208}, {"VectorTable", 80}, {"StringVector", 16}};
    for (const auto& [name, size] : tables) {
        std::string text;
        for (std::size_t i = 0; i < (size * 8 + 5) / 6; ++i) {
            text += static_cast<char>('A' + i * 7 % 16);
        }
        text.back() = 'A';
        text.append((4 - text.size() % 4) % 4, '=');
        list += std::string("<key>") + name + "</key><data>" + text + "</data>";
    }
    list += "</dict></plist>";
    const auto keys = FieldKeys::Load({reinterpret_cast<const std::uint8_t*>(list.data()), list.size()});
    require(static_cast<bool>(keys));
    return *keys;
}

inline std::shared_ptr<const FieldKeys> sampleKeys() {
    static const std::shared_ptr<const FieldKeys> keys = makeSampleKeys();
    return keys;
}

} // namespace torka::fuzz
