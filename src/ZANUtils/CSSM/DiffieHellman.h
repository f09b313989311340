// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/CSSM/CSSMTypes.h"

#include <span>

namespace torka {

// Makes a Diffie-Hellman pair. Without `parametersIn` (PKCS #3 DHParameter, DER) uses a group of RFC 3526
// with 1536 or 2048 bits. Parameters from outside must have an odd prime of 1024 to 4096 bits and a generator
// from 2 to prime - 2.
CSSM_RETURN dhGenerateKeyPair(std::uint32_t sizeInBits, std::span<const std::uint8_t> parametersIn,
                              CSSM_KEY& publicOut, CSSM_KEY& privateOut);

// Computes the shared secret, as long as the prime, from our private key and their public value.
CSSM_RETURN dhSharedSecret(const CSSM_KEY& privateKey, std::span<const std::uint8_t> theirPublic,
                           SecureBuffer& secret);

} // namespace torka
