// SPDX-License-Identifier: Apache-2.0
// Deciphers arbitrary hexadecimal text of a protected note. The result is a text, or an error with a text.
// Also passes notes with arbitrary text through the cipher and back.

#include "fuzz/SampleKeys.h"
#include "output/NoteCipher.h"

#include <algorithm>
#include <string>

using namespace torka;
using namespace torka::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::shared_ptr<const FieldKeys> keys = sampleKeys();
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
