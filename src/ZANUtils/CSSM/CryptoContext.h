// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/CSSM/CSSMTypes.h"

#include <array>
#include <memory>
#include <span>

namespace torka {

// Runs one operation of a context piece by piece. Appends results to `out`.
class CryptoEngine {
public:
    CryptoEngine() = default;
    CryptoEngine(const CryptoEngine&) = delete;
    CryptoEngine& operator=(const CryptoEngine&) = delete;
    virtual ~CryptoEngine() = default;
    virtual CSSM_RETURN Update(std::span<const std::uint8_t> in, SecureBuffer& out) = 0;
    virtual CSSM_RETURN Finish(SecureBuffer& out) = 0;
};

// A cryptographic context: the parameters for the use of a key. Refers to the key, which must outlive it.
struct CSSM_CONTEXT {
    const CSSM_KEY* key = nullptr;
    CSSM_ENCRYPT_MODE mode = CSSM_ENCRYPT_MODE::none;
    CSSM_PADDING padding = CSSM_PADDING::none;
    bool isAsymmetric = false;
    std::array<std::uint8_t, FieldKeys::vectorBytes>
        initialVector{};                  // uses as many of its bytes as a block has
    std::unique_ptr<CryptoEngine> engine; // exists while an operation runs
};
using CSSM_CC_HANDLE = std::unique_ptr<CSSM_CONTEXT>;

// Selects the context by the key's algorithm. AES: cipher-block chaining, PKCS #7 padding and the fixed
// initial vector of the provider's field keys. DES, triple DES, RC2 and RC5: the same with PKCS #5 padding.
// RC4 and ASC: no mode and no padding. RSA: an asymmetric context. Returns CSSMERR_CSP_INVALID_ALGORITHM for
// any other algorithm, and CSSMERR_CSP_MISSING_ATTR_INIT_VECTOR for a chaining mode without field keys.
CSSM_RETURN genCryptHandle(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, CSSM_CC_HANDLE& context);

// Starts the context's engine. Returns CSSMERR_CSP_FUNCTION_NOT_IMPLEMENTED for RC5 and ASC, which have a
// context but no engine.
CSSM_RETURN startEngine(CSSM_CONTEXT& context, bool encrypt);

} // namespace torka
