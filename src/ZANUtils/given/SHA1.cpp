// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/given/SHA1.h"

#include "ZANUtils/SecureBuffer.h"

#include <algorithm>
#include <cstring>
#include <nettle/sha1.h>

namespace torka {

SHA1::~SHA1() {
    wipeValue(messageBlock);
    wipeValue(digest);
}

void SHA1::Reset() {
    digest = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    lengthLow = 0;
    lengthHigh = 0;
    wipeValue(messageBlock);
    messageBlockIndex = 0;
    computed = false;
    corrupted = false;
}

void SHA1::Input(const std::uint8_t* bytes, std::size_t length) {
    if (bytes == nullptr || length == 0) {
        return;
    }
    const std::uint64_t bitsBefore = (std::uint64_t{lengthHigh} << 32) | lengthLow;
    // The digest cannot count more than 2^64 - 1 bits.
    if (computed || length > (UINT64_MAX - bitsBefore) / 8) {
        corrupted = true;
    }
    if (corrupted) {
        return;
    }
    const std::uint64_t bits = bitsBefore + std::uint64_t{length} * 8;
    lengthLow = static_cast<std::uint32_t>(bits);
    lengthHigh = static_cast<std::uint32_t>(bits >> 32);

    while (length > 0) {
        if (messageBlockIndex == 0 && length >= blockBytes) {
            nettle_sha1_compress(digest.data(), bytes);
            bytes += blockBytes;
            length -= blockBytes;
            continue;
        }
        const std::size_t taken = std::min(blockBytes - messageBlockIndex, length);
        std::memcpy(messageBlock.data() + messageBlockIndex, bytes, taken);
        messageBlockIndex += taken;
        bytes += taken;
        length -= taken;
        if (messageBlockIndex == blockBytes) {
            nettle_sha1_compress(digest.data(), messageBlock.data());
            messageBlockIndex = 0;
        }
    }
}

void SHA1::PadMessage() {
    constexpr std::size_t lengthPosition = blockBytes - 8;
    messageBlock[messageBlockIndex++] = 0x80;
    if (messageBlockIndex > lengthPosition) {
        std::fill(messageBlock.data() + messageBlockIndex, messageBlock.data() + blockBytes, std::uint8_t{0});
        nettle_sha1_compress(digest.data(), messageBlock.data());
        messageBlockIndex = 0;
    }
    std::fill(messageBlock.data() + messageBlockIndex, messageBlock.data() + lengthPosition, std::uint8_t{0});
    for (std::size_t i = 0; i < 4; ++i) {
        messageBlock[lengthPosition + i] = static_cast<std::uint8_t>(lengthHigh >> (24 - 8 * i));
        messageBlock[lengthPosition + 4 + i] = static_cast<std::uint8_t>(lengthLow >> (24 - 8 * i));
    }
    nettle_sha1_compress(digest.data(), messageBlock.data());
    wipeValue(messageBlock);
    messageBlockIndex = 0;
}

bool SHA1::Result(unsigned int* words) {
    if (corrupted || words == nullptr) {
        return false;
    }
    if (!computed) {
        PadMessage();
        computed = true;
    }
    std::copy(digest.begin(), digest.end(), words);
    return true;
}

SHA1& SHA1::operator<<(const char* text) {
    if (text != nullptr) {
        Input(text, std::strlen(text));
    }
    return *this;
}

} // namespace torka
