// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/Base64Encoder.h"

#include <nettle/base64.h>

namespace torka {

namespace {

// The line feed counts as a character. After it, every group of four ends one past a multiple of four and
// never at a multiple of 64 again. Only the first 48 bytes make a line.
constexpr std::size_t bytesInFirstLine = 48;
constexpr std::size_t charactersInFirstLine = 64;

bool hasLineFeed(std::size_t length, bool wrap) {
    return wrap && BASE64_ENCODE_RAW_LENGTH(length) >= charactersInFirstLine;
}

} // namespace

std::size_t Base64Encoder::EncodedLength(std::size_t length, bool wrap) {
    return BASE64_ENCODE_RAW_LENGTH(length) + (hasLineFeed(length, wrap) ? 1 : 0);
}

std::size_t Base64Encoder::Encode(const std::uint8_t* in, std::size_t length, std::span<char> out,
                                  bool wrap) const {
    const std::size_t needed = EncodedLength(length, wrap);
    if (in == nullptr || length == 0 || out.size() < needed) {
        return 0;
    }
    if (!hasLineFeed(length, wrap)) {
        base64_encode_raw(out.data(), length, in);
        return needed;
    }
    const std::size_t first = length < bytesInFirstLine ? length : bytesInFirstLine;
    base64_encode_raw(out.data(), first, in);
    out[charactersInFirstLine] = '\n';
    if (length > first) {
        base64_encode_raw(out.data() + charactersInFirstLine + 1, length - first, in + first);
    }
    return needed;
}

} // namespace torka
