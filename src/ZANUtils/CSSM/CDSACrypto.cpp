// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/CSSM/CDSACrypto.h"

#include "ZANUtils/CSSM/DiffieHellman.h"
#include "ZANUtils/CSSM/RsaKey.h"

#include <nettle/pbkdf2.h>
#include <utility>

namespace torka {

namespace {

constexpr std::uint32_t largestSessionKeyBits = 2048; // the maximum key size of RC4

bool isSessionKeySize(std::uint32_t bits) {
    return bits > 0 && bits % 8 == 0 && bits <= largestSessionKeyBits;
}

CSSM_RETURN stagedCrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes piece, bool encrypt,
                        bool final, SecureBuffer& out, CSSM_CC_HANDLE& context) {
    CSSM_RETURN result = csp ? CSSM_OK : CSSMERR_CSP_INVALID_CSP_HANDLE;
    if (result == CSSM_OK && !context) {
        result = genCryptHandle(csp, key, context);
        if (result == CSSM_OK) {
            result = startEngine(*context, encrypt);
        }
    }
    if (result == CSSM_OK) {
        result = context->engine->Update(piece, out);
    }
    if (result == CSSM_OK && final) {
        result = context->engine->Finish(out);
    }
    if (result != CSSM_OK || final) {
        context.reset();
    }
    return result;
}

CSSM_RETURN cryptWhole(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes in, bool encrypt,
                       SecureBuffer& out) {
    SecureBuffer made;
    CSSM_CC_HANDLE context;
    const CSSM_RETURN result = stagedCrypt(csp, key, in, encrypt, true, made, context);
    if (result == CSSM_OK) {
        out = std::move(made);
    }
    return result;
}

} // namespace

CSSM_RETURN cdsaCspAttach(CSSM_CSP_HANDLE& csp) {
    csp = std::make_shared<const CSSM_CSP>(CSSM_CSP{installedFieldKeys()});
    return CSSM_OK;
}

CSSM_RETURN cdsaCspDetach(CSSM_CSP_HANDLE& csp) {
    if (!csp) {
        return CSSMERR_CSP_INVALID_CSP_HANDLE;
    }
    csp.reset();
    return CSSM_OK;
}

CSSM_RETURN cdsaDeriveKey(const CSSM_CSP_HANDLE& csp, Bytes password, Bytes salt,
                          CSSM_ALGORITHMS keyAlgorithm, std::uint32_t keySizeInBits, CSSM_KEY& key,
                          unsigned iterations) {
    if (!csp) {
        return CSSMERR_CSP_INVALID_CSP_HANDLE;
    }
    if (!isSessionKeySize(keySizeInBits)) {
        return CSSMERR_CSP_UNSUPPORTED_KEY_SIZE;
    }
    if (iterations == 0) {
        return CSSMERR_CSP_INVALID_ATTR_ALG_PARAMS;
    }
    SecureBuffer data(keySizeInBits / 8);
    pbkdf2_hmac_sha1(password.size(), password.data(), iterations, salt.size(), salt.data(), data.size(),
                     data.data());
    key = {keyAlgorithm, CSSM_KEYCLASS::sessionKey, keySizeInBits, "tempKey", std::move(data), {}};
    return CSSM_OK;
}

CSSM_RETURN cdsaGenerateKeyPair(const CSSM_CSP_HANDLE& csp, CSSM_ALGORITHMS algorithm,
                                std::uint32_t keySizeInBits, CSSM_KEY& publicKey, CSSM_KEY& privateKey) {
    if (!csp) {
        return CSSMERR_CSP_INVALID_CSP_HANDLE;
    }
    if (algorithm != CSSM_ALGID_RSA) {
        return CSSMERR_CSP_INVALID_ALGORITHM;
    }
    return RsaKey().Generate(keySizeInBits, publicKey, privateKey);
}

CSSM_RETURN cdsaDhGenerateKeyPair(const CSSM_CSP_HANDLE& csp, std::uint32_t keySizeInBits, Bytes parametersIn,
                                  CSSM_KEY& publicKey, CSSM_KEY& privateKey, SecureBuffer* parametersOut) {
    if (!csp) {
        return CSSMERR_CSP_INVALID_CSP_HANDLE;
    }
    const CSSM_RETURN result = dhGenerateKeyPair(keySizeInBits, parametersIn, publicKey, privateKey);
    if (result == CSSM_OK && parametersOut != nullptr) {
        *parametersOut = publicKey.parameters;
    }
    return result;
}

CSSM_RETURN cdsaDhKeyExchange(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& myPrivateKey, Bytes theirPublicKey,
                              CSSM_ALGORITHMS derivedAlgorithm, std::uint32_t derivedSizeInBits,
                              CSSM_KEY& derivedKey) {
    if (!csp) {
        return CSSMERR_CSP_INVALID_CSP_HANDLE;
    }
    SecureBuffer secret;
    if (const CSSM_RETURN result = dhSharedSecret(myPrivateKey, theirPublicKey, secret); result != CSSM_OK) {
        return result;
    }
    if (!isSessionKeySize(derivedSizeInBits) || derivedSizeInBits / 8 > secret.size()) {
        return CSSMERR_CSP_UNSUPPORTED_KEY_SIZE;
    }
    SecureBuffer data(secret.begin(), secret.begin() + derivedSizeInBits / 8);
    derivedKey = {derivedAlgorithm, CSSM_KEYCLASS::sessionKey, derivedSizeInBits, {}, std::move(data), {}};
    return CSSM_OK;
}

CSSM_RETURN cdsaFreeKey(const CSSM_CSP_HANDLE& csp, CSSM_KEY& key) {
    key = CSSM_KEY(); // wiped with or without a session
    return csp ? CSSM_OK : CSSMERR_CSP_INVALID_CSP_HANDLE;
}

CSSM_RETURN cdsaEncrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes plainText,
                        SecureBuffer& cipherText) {
    return cryptWhole(csp, key, plainText, true, cipherText);
}

CSSM_RETURN cdsaDecrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes cipherText,
                        SecureBuffer& plainText) {
    return cryptWhole(csp, key, cipherText, false, plainText);
}

CSSM_RETURN cdsaStagedEncrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes piece, bool final,
                              SecureBuffer& out, CSSM_CC_HANDLE& context) {
    return stagedCrypt(csp, key, piece, true, final, out, context);
}

CSSM_RETURN cdsaStagedDecrypt(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, Bytes piece, bool final,
                              SecureBuffer& out, CSSM_CC_HANDLE& context) {
    return stagedCrypt(csp, key, piece, false, final, out, context);
}

} // namespace torka
