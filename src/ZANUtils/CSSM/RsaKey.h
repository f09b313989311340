// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/CSSM/CSSMTypes.h"

#include <nettle/rsa.h>

namespace torka {

inline constexpr std::uint32_t rsaSmallestBits = 1024;
inline constexpr std::uint32_t rsaLargestBits = 4096;

// An RSA key in hogweed's form, read from the DER in a CSSM_KEY. Wipes itself.
class RsaKey {
public:
    RsaKey();
    RsaKey(const RsaKey&) = delete;
    RsaKey& operator=(const RsaKey&) = delete;
    ~RsaKey();

    // Reads a key of this class. Returns CSSM_OK or the reason of a failure.
    CSSM_RETURN Read(const CSSM_KEY& key, CSSM_KEYCLASS keyClass);
    // Makes a new pair and writes it as DER.
    CSSM_RETURN Generate(std::uint32_t sizeInBits, CSSM_KEY& publicOut, CSSM_KEY& privateOut);

    rsa_public_key publicKey;
    rsa_private_key privateKey;
};

} // namespace torka
