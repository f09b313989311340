#pragma once

#include "ZANUtils/CSSM/CSSMTypes.h"

#include <nettle/rsa.h>

namespace torka {

inline constexpr std::uint32_t rsaSmallestBits = 1024;
inline constexpr std::uint32_t rsaLargestBits = 4096;

// An RSA key in hogweed's form, made from the DER in a CSSM_KEY; wipes itself.
class RsaKey {
public:
    RsaKey();
    RsaKey(const RsaKey&) = delete;
    RsaKey& operator=(const RsaKey&) = delete;
    ~RsaKey();

    // A key of this class; CSSM_OK or why it cannot be had.
    CSSM_RETURN Read(const CSSM_KEY& key, CSSM_KEYCLASS keyClass);
    // A new pair, written as DER.
    CSSM_RETURN Generate(std::uint32_t sizeInBits, CSSM_KEY& publicOut, CSSM_KEY& privateOut);

    rsa_public_key publicKey;
    rsa_private_key privateKey;
};

} // namespace torka
