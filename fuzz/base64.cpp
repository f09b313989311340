// SPDX-License-Identifier: Apache-2.0
// Passes arbitrary text through both Base64 decoders, in pieces and into buffers of any size. Also passes
// arbitrary bytes through the encoder and back.

#include "ZANUtils/Base64Encoder.h"
#include "ZANUtils/QVCFBase64.h"
#include "ZANUtils/given/Base64Decoder.h"
#include "fuzz/Fuzzing.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace torka;
using namespace torka::fuzz;

std::vector<std::uint8_t> decodeInPieces(const char* text, std::size_t length, std::size_t piece) {
    Base64Decoder decoder;
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < length; at += piece) {
        const std::size_t taken = std::min(piece, length - at);
        std::vector<std::uint8_t> out(Base64Decoder::MaximumLength(taken));
        const std::size_t written = decoder.Decode(text + at, taken, out);
        require(written <= out.size());
        bytes.insert(bytes.end(), out.begin(), out.begin() + static_cast<std::ptrdiff_t>(written));
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t piece = data[0] % 16U + 1U;
    const std::vector<std::uint8_t> input(data + 1, data + size);
    const auto* text = reinterpret_cast<const char*>(input.data());

    const auto whole = decodeInPieces(text, input.size(), input.size() + 1);
    require(decodeInPieces(text, input.size(), piece) == whole);
    std::vector<std::uint8_t> cut(piece);
    const std::size_t written = Base64Decoder().Decode(text, input.size(), cut);
    require(written == std::min(whole.size(), cut.size()) &&
            std::equal(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(written), cut.begin()));

    const CFStringRef string = CFStringCreateWithCharacters(std::u16string(input.begin(), input.end()));
    const CFDataRef unchecked = QVCFBase64CreateDecodedData(string);
    require(unchecked && unchecked->bytes.size() <= input.size() * 3 / 4 + 3);

    for (const bool wrap : {false, true}) {
        std::string encoded(Base64Encoder::EncodedLength(input.size(), wrap), '?');
        require(Base64Encoder().Encode(input.data(), input.size(), encoded, wrap) == encoded.size());
        require(decodeInPieces(encoded.data(), encoded.size(), piece) == input);
        if (!wrap) {
            require(QVCFBase64CreateDecodedData(cfString(encoded))->bytes == input);
            require(utf8Text(QVCFBase64CreateEncodedString(CFDataCreate(input.data(), input.size()))) ==
                    encoded);
        }
    }
    return 0;
}
