// SPDX-License-Identifier: Apache-2.0
// Deciphers arbitrary hexadecimal text of a protected note. The result is a text, or an error with a text.
// Also passes notes with arbitrary text through the cipher and back.

#include "fuzz/Fuzzing.h"
#include "output/NoteCipher.h"

#include <algorithm>
#include <string>

namespace {

using namespace torka;
using namespace torka::fuzz;

std::shared_ptr<const FieldKeys> makeKeys() {
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::shared_ptr<const FieldKeys> keys = makeKeys();
    if (size == 0) {
        return 0;
    }
    const NoteAlgorithm algorithm = data[0] % 2 == 0 ? NoteAlgorithm::des : NoteAlgorithm::aes;
    const std::string special = std::to_string(data[0] / 2 % 13);
    const std::string input(reinterpret_cast<const char*>(data + 1), size - 1);

    if (const auto text = decipherNote(*keys, special, algorithm, input); !text) {
        require(!text.Why().text.empty());
    }
    const std::string text = input.c_str();
    const std::string hex = encipherNote(*keys, special, algorithm, text.c_str());
    require(hex.size() == std::min(noteCipherLength(text.size(), algorithm) * 2, noteHexSize));
    const auto back = decipherNote(*keys, special, algorithm, hex);
    require(static_cast<bool>(back));
    // The end of a cut text may look like padding by chance.
    const bool isWhole = noteCipherLength(text.size(), algorithm) * 2 <= noteHexSize;
    require(isWhole ? *back == text : text.starts_with(*back));
    return 0;
}
