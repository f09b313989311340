// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/CSSM/BigNumber.h"
#include "ZANUtils/CSSM/CDSACrypto.h"
#include "ZANUtils/CSSM/RsaKey.h"

#include <nettle/nettle-meta.h>
#include <utility>

namespace torka {

// A digest and its signature algorithm.
struct DigestAlgorithm {
    CSSM_ALGORITHMS digest;
    CSSM_ALGORITHMS signature;
    const nettle_hash& hash;
    int (*sign)(const rsa_public_key*, const rsa_private_key*, void*, nettle_random_func*,
                const std::uint8_t*, mpz_t);
    int (*verify)(const rsa_public_key*, const std::uint8_t*, const mpz_t);
};

namespace {

const DigestAlgorithm algorithms[] = {
    {CSSM_ALGID_SHA1, CSSM_ALGID_SHA1WithRSA, nettle_sha1, rsa_sha1_sign_digest_tr, rsa_sha1_verify_digest},
    {CSSM_ALGID_MD5, CSSM_ALGID_MD5WithRSA, nettle_md5, rsa_md5_sign_digest_tr, rsa_md5_verify_digest},
};

const DigestAlgorithm* findAlgorithm(CSSM_ALGORITHMS wanted, CSSM_ALGORITHMS DigestAlgorithm::*field) {
    for (const DigestAlgorithm& algorithm : algorithms) {
        if (algorithm.*field == wanted) {
            return &algorithm;
        }
    }
    return nullptr;
}

} // namespace

class DigestContext {
public:
    explicit DigestContext(const DigestAlgorithm& chosen)
        : algorithm(chosen)
        , state(chosen.hash.context_size) {
        algorithm.hash.init(state.data());
    }

    void Update(Bytes piece) { algorithm.hash.update(state.data(), piece.size(), piece.data()); }
    SecureBuffer Finish() {
        SecureBuffer digest(algorithm.hash.digest_size);
        algorithm.hash.digest(state.data(), digest.size(), digest.data());
        return digest;
    }

    const DigestAlgorithm& algorithm;

private:
    SecureBuffer state;
};

void DigestContextDeleter::operator()(DigestContext* context) const { delete context; }

namespace {

// Adds a piece to the context. Creates the context for the first piece.
CSSM_RETURN addPiece(const CSSM_CSP_HANDLE& csp, CSSM_ALGORITHMS wanted,
                     CSSM_ALGORITHMS DigestAlgorithm::*field, Bytes piece, DigestHandle& context) {
    if (!csp) {
        context.reset();
        return CSSMERR_CSP_INVALID_CSP_HANDLE;
    }
    if (!context) {
        const DigestAlgorithm* algorithm = findAlgorithm(wanted, field);
        if (algorithm == nullptr) {
            return CSSMERR_CSP_INVALID_ALGORITHM;
        }
        context.reset(new DigestContext(*algorithm));
    }
    context->Update(piece);
    return CSSM_OK;
}

} // namespace

CSSM_RETURN cdsaStagedDigest(const CSSM_CSP_HANDLE& csp, CSSM_ALGORITHMS algorithm, Bytes piece, bool final,
                             SecureBuffer& digest, DigestHandle& context) {
    const CSSM_RETURN result = addPiece(csp, algorithm, &DigestAlgorithm::digest, piece, context);
    if (result == CSSM_OK && final) {
        digest = context->Finish();
        context.reset();
    }
    return result;
}

CSSM_RETURN cdsaDigest(const CSSM_CSP_HANDLE& csp, CSSM_ALGORITHMS algorithm, Bytes data,
                       SecureBuffer& digest) {
    DigestHandle context;
    return cdsaStagedDigest(csp, algorithm, data, true, digest, context);
}

CSSM_RETURN cdsaStagedSign(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& privateKey, CSSM_ALGORITHMS algorithm,
                           Bytes piece, bool final, SecureBuffer& signature, DigestHandle& context) {
    CSSM_RETURN result = addPiece(csp, algorithm, &DigestAlgorithm::signature, piece, context);
    if (result != CSSM_OK || !final) {
        return result;
    }
    const DigestHandle finished = std::move(context);
    RsaKey key;
    result = key.Read(privateKey, CSSM_KEYCLASS::privateKey);
    if (result != CSSM_OK) {
        return result;
    }
    BigNumber number;
    if (finished->algorithm.sign(&key.publicKey, &key.privateKey, nullptr, cspRandomBytes,
                                 finished->Finish().data(), number.value) == 0) {
        return CSSMERR_CSP_INVALID_KEY; // too small for the digest, or inconsistent
    }
    signature = number.Bytes(key.publicKey.size);
    return CSSM_OK;
}

CSSM_RETURN cdsaSign(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& privateKey, CSSM_ALGORITHMS algorithm,
                     Bytes data, SecureBuffer& signature) {
    DigestHandle context;
    return cdsaStagedSign(csp, privateKey, algorithm, data, true, signature, context);
}

CSSM_RETURN cdsaStagedVerify(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& publicKey, CSSM_ALGORITHMS algorithm,
                             Bytes piece, bool final, Bytes signature, DigestHandle& context) {
    CSSM_RETURN result = addPiece(csp, algorithm, &DigestAlgorithm::signature, piece, context);
    if (result != CSSM_OK || !final) {
        return result;
    }
    const DigestHandle finished = std::move(context);
    RsaKey key;
    result = key.Read(publicKey, CSSM_KEYCLASS::publicKey);
    if (result != CSSM_OK) {
        return result;
    }
    if (signature.size() != key.publicKey.size) {
        return CSSMERR_CSP_INVALID_SIGNATURE;
    }
    const BigNumber number(signature);
    return finished->algorithm.verify(&key.publicKey, finished->Finish().data(), number.value) != 0
               ? CSSM_OK
               : CSSMERR_CSP_VERIFY_FAILED;
}

CSSM_RETURN cdsaVerify(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& publicKey, CSSM_ALGORITHMS algorithm,
                       Bytes data, Bytes signature) {
    DigestHandle context;
    return cdsaStagedVerify(csp, publicKey, algorithm, data, true, signature, context);
}

} // namespace torka
