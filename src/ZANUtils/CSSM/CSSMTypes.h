// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/FieldKeys.h"
#include "ZANUtils/SecureBuffer.h"

#include <cstdint>
#include <memory>
#include <string>

// The cryptographic service provider: algorithm identifiers and result codes of the Common Security Services
// Manager (The Open Group, C914), the provider's session and its keys. nettle, hogweed and gmp do the work.

namespace torka {

using CSSM_RETURN = std::int32_t;
using CSSM_ALGORITHMS = std::uint32_t;

inline constexpr CSSM_ALGORITHMS CSSM_ALGID_NONE = 0;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_DH = 2;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_MD5 = 7;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_SHA1 = 8;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_DES = 14;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_3DES_3KEY_EDE = 17;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_RC2 = 23;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_RC5 = 24;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_RC4 = 25;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_RSA = 42;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_MD5WithRSA = 44;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_SHA1WithRSA = 51;
// The platform's own algorithms, numbered from the start of its range.
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_VENDOR_DEFINED = 0x80000000;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_AES = CSSM_ALGID_VENDOR_DEFINED + 1;
inline constexpr CSSM_ALGORITHMS CSSM_ALGID_ASC = CSSM_ALGID_VENDOR_DEFINED + 7;

inline constexpr CSSM_RETURN CSSM_OK = 0;
inline constexpr CSSM_RETURN CSSM_CSP_BASE_ERROR = -0x7FFF0000 + 0x800;
inline constexpr CSSM_RETURN CSSMERR_CSP_INTERNAL_ERROR = CSSM_CSP_BASE_ERROR + 1;
inline constexpr CSSM_RETURN CSSMERR_CSP_INVALID_CSP_HANDLE = CSSM_CSP_BASE_ERROR + 2;
inline constexpr CSSM_RETURN CSSMERR_CSP_FUNCTION_NOT_IMPLEMENTED = CSSM_CSP_BASE_ERROR + 7;
inline constexpr CSSM_RETURN CSSM_CSP_PRIVATE_ERROR = CSSM_CSP_BASE_ERROR + 0x100;
inline constexpr CSSM_RETURN CSSMERR_CSP_INPUT_LENGTH_ERROR = CSSM_CSP_PRIVATE_ERROR + 1;
inline constexpr CSSM_RETURN CSSMERR_CSP_INVALID_KEY = CSSM_CSP_PRIVATE_ERROR + 16;
inline constexpr CSSM_RETURN CSSMERR_CSP_INVALID_KEY_CLASS = CSSM_CSP_PRIVATE_ERROR + 18;
inline constexpr CSSM_RETURN CSSMERR_CSP_ALGID_MISMATCH = CSSM_CSP_PRIVATE_ERROR + 19;
inline constexpr CSSM_RETURN CSSMERR_CSP_UNSUPPORTED_KEY_SIZE = CSSM_CSP_PRIVATE_ERROR + 24;
inline constexpr CSSM_RETURN CSSMERR_CSP_INVALID_ALGORITHM = CSSM_CSP_PRIVATE_ERROR + 65;
inline constexpr CSSM_RETURN CSSMERR_CSP_MISSING_ATTR_KEY = CSSM_CSP_PRIVATE_ERROR + 73;
inline constexpr CSSM_RETURN CSSMERR_CSP_MISSING_ATTR_INIT_VECTOR = CSSM_CSP_PRIVATE_ERROR + 75;
inline constexpr CSSM_RETURN CSSMERR_CSP_INVALID_ATTR_ALG_PARAMS = CSSM_CSP_PRIVATE_ERROR + 94;
inline constexpr CSSM_RETURN CSSMERR_CSP_INVALID_DATA = CSSM_CSP_PRIVATE_ERROR + 112;
inline constexpr CSSM_RETURN CSSMERR_CSP_VERIFY_FAILED = CSSM_CSP_PRIVATE_ERROR + 114;
inline constexpr CSSM_RETURN CSSMERR_CSP_INVALID_SIGNATURE = CSSM_CSP_PRIVATE_ERROR + 115;

enum class CSSM_KEYCLASS { none, publicKey, privateKey, sessionKey };
enum class CSSM_ENCRYPT_MODE { none, cbcPadIV8 }; // cipher-block chaining with padding and an initial vector
enum class CSSM_PADDING { none, pkcs1, pkcs5, pkcs7 };

// A key in plain; wiped by cdsaFreeKey or at its end.
//
// `data` depends on the algorithm: the raw bytes of a session key; RSAPublicKey or RSAPrivateKey (PKCS #1,
// DER); or the public value or exponent of Diffie-Hellman, most significant byte first, with DHParameter
// (PKCS #3, DER) in `parameters`.
struct CSSM_KEY {
    CSSM_ALGORITHMS algorithm = CSSM_ALGID_NONE;
    CSSM_KEYCLASS keyClass = CSSM_KEYCLASS::none;
    std::uint32_t sizeInBits = 0;
    std::string label;
    SecureBuffer data;
    SecureBuffer parameters;
};

// One attachment to the provider. Keeps the field keys that were installed when it was made.
struct CSSM_CSP {
    std::shared_ptr<const FieldKeys> fieldKeys;
};
using CSSM_CSP_HANDLE = std::shared_ptr<const CSSM_CSP>;

// Returns the name of a result code, or its number.
std::string cssmErrorString(CSSM_RETURN code);
// Prints "LABEL: NAME" to the standard error stream.
void cssmPerror(const char* label, CSSM_RETURN code);

// Gets random bytes from the operating system, with nettle's function type; `context` is not used.
void cspRandomBytes(void* context, std::size_t length, std::uint8_t* out);

} // namespace torka
