// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/CSSM/BigNumber.h"

namespace torka {

namespace {

SecureBuffer derObject(std::uint8_t tag, std::span<const std::uint8_t> content) {
    SecureBuffer encoded{tag};
    const std::size_t length = content.size();
    if (length < 0x80) {
        encoded.push_back(static_cast<std::uint8_t>(length));
    } else {
        int lengthBytes = 1;
        while (lengthBytes < 8 && (length >> (8 * lengthBytes)) != 0) {
            ++lengthBytes;
        }
        encoded.push_back(static_cast<std::uint8_t>(0x80 | lengthBytes));
        for (int i = lengthBytes - 1; i >= 0; --i) {
            encoded.push_back(static_cast<std::uint8_t>(length >> (8 * i)));
        }
    }
    encoded.insert(encoded.end(), content.begin(), content.end());
    return encoded;
}

} // namespace

SecureBuffer derInteger(const mpz_t number) {
    // The signed size includes the leading zero that keeps the number positive.
    SecureBuffer bytes(nettle_mpz_sizeinbase_256_s(number));
    nettle_mpz_get_str_256(bytes.size(), bytes.data(), number);
    constexpr std::uint8_t integerTag = 0x02;
    return derObject(integerTag, bytes);
}

SecureBuffer derSequence(std::span<const std::uint8_t> content) {
    constexpr std::uint8_t sequenceTag = 0x30;
    return derObject(sequenceTag, content);
}

} // namespace torka
