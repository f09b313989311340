// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/CSSM/CSSMTypes.h"
#include "ZANUtils/CSSM/CryptoContext.h"

#include <memory>
#include <span>

// Calls to the cryptographic service provider: one call per operation. Returns CSSM_OK or the provider's
// error.
//
// Only success changes out-parameters, except that staged calls append to `out` as they proceed. Make a
// staged call once for each piece, with `final` for the last. `context` is null before the first piece,
// belongs to the caller between pieces, and is null again after the last piece or an error. The key must
// outlive the context.

namespace torka {

using Bytes = std::span<const std::uint8_t>;

CSSM_RETURN cdsaCspAttach(CSSM_CSP_HANDLE& csp);
CSSM_RETURN cdsaCspDetach(CSSM_CSP_HANDLE& csp);

inline constexpr unsigned cdsaDeriveIterations = 1000;
// Derives a session key from a password: PBKDF2 (RFC 8018) with HMAC-SHA-1, key label "tempKey".
CSSM_RETURN cdsaDeriveKey(const CSSM_CSP_HANDLE& csp, Bytes password, Bytes salt,
                          CSSM_ALGORITHMS keyAlgorithm, std::uint32_t keySizeInBits, CSSM_KEY& key,
                          unsigned iterations = cdsaDeriveIterations);
// Supports only RSA; returns CSSMERR_CSP_INVALID_ALGORITHM otherwise.
CSSM_RETURN cdsaGenerateKeyPair(const CSSM_CSP_HANDLE& csp, CSSM_ALGORITHMS algorithm,
                                std::uint32_t keySizeInBits, CSSM_KEY& publicKey, CSSM_KEY& privateKey);
// Empty `parametersIn` selects a known group of that size. `parametersOut` may be null; else it gets the
// parameters for the other side.
CSSM_RETURN cdsaDhGenerateKeyPair(const CSSM_CSP_HANDLE& csp, std::uint32_t keySizeInBits, Bytes parametersIn,
                                  CSSM_KEY& publicKey, CSSM_KEY& privateKey, SecureBuffer* parametersOut);
// The derived key is the first part of the shared secret.
CSSM_RETURN cdsaDhKeyExchange(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& myPrivateKey, Bytes theirPublicKey,
                              CSSM_ALGORITHMS derivedAlgorithm, std::uint32_t derivedSizeInBits,
                              CSSM_KEY& derivedKey);
// Wipes the key and empties it.
CSSM_RETURN cdsaFreeKey(const CSSM_CSP_HANDLE& csp, CSSM_KEY& key);

CSSM_RETURN cdsaEncrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes plainText,
                        SecureBuffer& cipherText);
CSSM_RETURN cdsaDecrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes cipherText,
                        SecureBuffer& plainText);
CSSM_RETURN cdsaStagedEncrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes piece, bool final,
                              SecureBuffer& out, CSSM_CC_HANDLE& context);
CSSM_RETURN cdsaStagedDecrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes piece, bool final,
                              SecureBuffer& out, CSSM_CC_HANDLE& context);

// The running digest of a staged digest, signature or verification.
class DigestContext;
struct DigestContextDeleter {
    void operator()(DigestContext* context) const;
};
using DigestHandle = std::unique_ptr<DigestContext, DigestContextDeleter>;

// Supports CSSM_ALGID_SHA1 and CSSM_ALGID_MD5.
CSSM_RETURN cdsaDigest(const CSSM_CSP_HANDLE& csp, CSSM_ALGORITHMS algorithm, Bytes data,
                       SecureBuffer& digest);
CSSM_RETURN cdsaStagedDigest(const CSSM_CSP_HANDLE& csp, CSSM_ALGORITHMS algorithm, Bytes piece, bool final,
                             SecureBuffer& digest, DigestHandle& context);
// Supports CSSM_ALGID_SHA1WithRSA and CSSM_ALGID_MD5WithRSA: signatures of PKCS #1 version 1.5.
CSSM_RETURN cdsaSign(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& privateKey, CSSM_ALGORITHMS algorithm,
                     Bytes data, SecureBuffer& signature);
CSSM_RETURN cdsaStagedSign(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& privateKey, CSSM_ALGORITHMS algorithm,
                           Bytes piece, bool final, SecureBuffer& signature, DigestHandle& context);
// Returns CSSMERR_CSP_VERIFY_FAILED when the signature does not match data and key.
CSSM_RETURN cdsaVerify(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& publicKey, CSSM_ALGORITHMS algorithm,
                       Bytes data, Bytes signature);
// Reads `signature` only with the final piece.
CSSM_RETURN cdsaStagedVerify(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& publicKey, CSSM_ALGORITHMS algorithm,
                             Bytes piece, bool final, Bytes signature, DigestHandle& context);

} // namespace torka
