// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/CSSM/RsaKey.h"

#include "ZANUtils/CSSM/BigNumber.h"

#include <utility>

namespace torka {

namespace {

SecureBuffer derNumbers(std::initializer_list<const __mpz_struct*> numbers) {
    SecureBuffer content;
    for (const __mpz_struct* number : numbers) {
        const SecureBuffer encoded = derInteger(number);
        content.insert(content.end(), encoded.begin(), encoded.end());
    }
    return derSequence(content);
}

} // namespace

RsaKey::RsaKey()
    : publicKey{}
    , privateKey{} {
    rsa_public_key_init(&publicKey);
    rsa_private_key_init(&privateKey);
}

RsaKey::~RsaKey() {
    for (__mpz_struct* number :
         {privateKey.d, privateKey.p, privateKey.q, privateKey.a, privateKey.b, privateKey.c}) {
        wipeNumber(number);
    }
    rsa_private_key_clear(&privateKey);
    rsa_public_key_clear(&publicKey);
}

CSSM_RETURN RsaKey::Read(const CSSM_KEY& key, CSSM_KEYCLASS keyClass) {
    if (key.algorithm != CSSM_ALGID_RSA) {
        return CSSMERR_CSP_ALGID_MISMATCH;
    }
    if (key.keyClass != keyClass) {
        return CSSMERR_CSP_INVALID_KEY_CLASS;
    }
    const bool isPrivate = keyClass == CSSM_KEYCLASS::privateKey;
    const int read = rsa_keypair_from_der(&publicKey, isPrivate ? &privateKey : nullptr, rsaLargestBits,
                                          key.data.size(), key.data.data());
    // Even moduli are not products of two odd primes, and the power functions do not accept them.
    const bool usable = read != 0 && mpz_odd_p(publicKey.n) != 0 &&
                        (!isPrivate || (mpz_odd_p(privateKey.p) != 0 && mpz_odd_p(privateKey.q) != 0));
    return usable ? CSSM_OK : CSSMERR_CSP_INVALID_KEY;
}

CSSM_RETURN RsaKey::Generate(std::uint32_t sizeInBits, CSSM_KEY& publicOut, CSSM_KEY& privateOut) {
    if (sizeInBits < rsaSmallestBits || sizeInBits > rsaLargestBits) {
        return CSSMERR_CSP_UNSUPPORTED_KEY_SIZE;
    }
    constexpr unsigned long exponent = 65537;
    mpz_set_ui(publicKey.e, exponent);
    if (rsa_generate_keypair(&publicKey, &privateKey, nullptr, cspRandomBytes, nullptr, nullptr, sizeInBits,
                             0) == 0) {
        return CSSMERR_CSP_INTERNAL_ERROR;
    }
    const BigNumber version; // 0: two primes
    publicOut = {
        CSSM_ALGID_RSA, CSSM_KEYCLASS::publicKey, sizeInBits, {}, derNumbers({publicKey.n, publicKey.e}), {}};
    privateOut = {CSSM_ALGID_RSA,
                  CSSM_KEYCLASS::privateKey,
                  sizeInBits,
                  {},
                  derNumbers({version.value, publicKey.n, publicKey.e, privateKey.d, privateKey.p,
                              privateKey.q, privateKey.a, privateKey.b, privateKey.c}),
                  {}};
    return CSSM_OK;
}

} // namespace torka
