// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/CSSM/DiffieHellman.h"

#include "ZANUtils/CSSM/BigNumber.h"

#include <nettle/asn1.h>

namespace torka {

namespace {

constexpr unsigned smallestBits = 1024;
constexpr unsigned largestBits = 4096;
constexpr unsigned long standardGenerator = 2;

// RFC 3526, sections 2 and 3.
constexpr const char* group5Prime =
    "FFFFFFFFFFFFFFFFC90FDAA22168C234C4C6628B80DC1CD129024E088A67CC74020BBEA63B139B22514A08798E3404DD"
    "EF9519B3CD3A431B302B0A6DF25F14374FE1356D6D51C245E485B576625E7EC6F44C42E9A637ED6B0BFF5CB6F406B7ED"
    "EE386BFB5A899FA5AE9F24117C4B1FE649286651ECE45B3DC2007CB8A163BF0598DA48361C55D39A69163FA8FD24CF5F"
    "83655D23DCA3AD961C62F356208552BB9ED529077096966D670C354E4ABC9804F1746C08CA237327FFFFFFFFFFFFFFFF";
constexpr const char* group14Prime =
    "FFFFFFFFFFFFFFFFC90FDAA22168C234C4C6628B80DC1CD129024E088A67CC74020BBEA63B139B22514A08798E3404DD"
    "EF9519B3CD3A431B302B0A6DF25F14374FE1356D6D51C245E485B576625E7EC6F44C42E9A637ED6B0BFF5CB6F406B7ED"
    "EE386BFB5A899FA5AE9F24117C4B1FE649286651ECE45B3DC2007CB8A163BF0598DA48361C55D39A69163FA8FD24CF5F"
    "83655D23DCA3AD961C62F356208552BB9ED529077096966D670C354E4ABC9804F1746C08CA18217C32905E462E36CE3B"
    "E39E772C180E86039B2783A2EC07A28FB5C55DF06F4C52C9DE2BCBF6955817183995497CEA956AE515D2261898FA0510"
    "15728E5A8AACAA68FFFFFFFFFFFFFFFF";

struct Group {
    BigNumber prime;
    BigNumber generator;

    std::size_t Bits() const { return mpz_sizeinbase(prime.value, 2); }
    std::size_t Bytes() const { return (Bits() + 7) / 8; }
    // Accepts 2 to prime - 2. Excludes 1 and prime - 1, whose powers anyone can guess.
    bool Holds(const mpz_t element) const {
        BigNumber last;
        mpz_sub_ui(last.value, prime.value, 2);
        return mpz_cmp_ui(element, 2) >= 0 && mpz_cmp(element, last.value) <= 0;
    }
};

// DHParameter ::= SEQUENCE { prime INTEGER, base INTEGER, privateValueLength INTEGER OPTIONAL }
bool readParameters(std::span<const std::uint8_t> der, Group& group) {
    constexpr int primeTests = 32;
    asn1_der_iterator outer;
    asn1_der_iterator inner;
    if (asn1_der_iterator_first(&outer, der.size(), der.data()) != ASN1_ITERATOR_CONSTRUCTED ||
        outer.type != ASN1_SEQUENCE ||
        asn1_der_decode_constructed(&outer, &inner) != ASN1_ITERATOR_PRIMITIVE ||
        inner.type != ASN1_INTEGER ||
        nettle_asn1_der_get_bignum(&inner, group.prime.value, largestBits) == 0 ||
        asn1_der_iterator_next(&inner) != ASN1_ITERATOR_PRIMITIVE || inner.type != ASN1_INTEGER ||
        nettle_asn1_der_get_bignum(&inner, group.generator.value, largestBits) == 0) {
        return false;
    }
    return mpz_sgn(group.prime.value) > 0 && group.Bits() >= smallestBits && group.Bits() <= largestBits &&
           group.Holds(group.generator.value) && mpz_probab_prime_p(group.prime.value, primeTests) != 0;
}

SecureBuffer writeParameters(const Group& group) {
    SecureBuffer content = derInteger(group.prime.value);
    const SecureBuffer generator = derInteger(group.generator.value);
    content.insert(content.end(), generator.begin(), generator.end());
    return derSequence(content);
}

} // namespace

CSSM_RETURN dhGenerateKeyPair(std::uint32_t sizeInBits, std::span<const std::uint8_t> parametersIn,
                              CSSM_KEY& publicOut, CSSM_KEY& privateOut) {
    Group group;
    if (!parametersIn.empty()) {
        if (!readParameters(parametersIn, group)) {
            return CSSMERR_CSP_INVALID_ATTR_ALG_PARAMS;
        }
    } else if (sizeInBits == 1536 || sizeInBits == 2048) {
        mpz_set_str(group.prime.value, sizeInBits == 1536 ? group5Prime : group14Prime, 16);
        mpz_set_ui(group.generator.value, standardGenerator);
    } else {
        return CSSMERR_CSP_UNSUPPORTED_KEY_SIZE;
    }
    BigNumber range; // exponents from 2 to prime - 2
    BigNumber exponent;
    mpz_sub_ui(range.value, group.prime.value, 3);
    nettle_mpz_random(exponent.value, nullptr, cspRandomBytes, range.value);
    mpz_add_ui(exponent.value, exponent.value, 2);
    BigNumber publicValue;
    mpz_powm_sec(publicValue.value, group.generator.value, exponent.value, group.prime.value);

    const auto bits = static_cast<std::uint32_t>(group.Bits());
    const SecureBuffer parameters = writeParameters(group);
    publicOut = {CSSM_ALGID_DH, CSSM_KEYCLASS::publicKey, bits, {}, publicValue.Bytes(group.Bytes()),
                 parameters};
    privateOut = {CSSM_ALGID_DH, CSSM_KEYCLASS::privateKey, bits, {}, exponent.Bytes(group.Bytes()),
                  parameters};
    return CSSM_OK;
}

CSSM_RETURN dhSharedSecret(const CSSM_KEY& privateKey, std::span<const std::uint8_t> theirPublic,
                           SecureBuffer& secret) {
    Group group;
    if (privateKey.algorithm != CSSM_ALGID_DH || privateKey.keyClass != CSSM_KEYCLASS::privateKey) {
        return CSSMERR_CSP_INVALID_KEY_CLASS;
    }
    if (!readParameters(privateKey.parameters, group)) {
        return CSSMERR_CSP_INVALID_ATTR_ALG_PARAMS;
    }
    const BigNumber exponent(privateKey.data);
    if (mpz_sgn(exponent.value) <= 0 || privateKey.data.size() > group.Bytes()) {
        return CSSMERR_CSP_INVALID_KEY;
    }
    if (theirPublic.size() > group.Bytes()) {
        return CSSMERR_CSP_INVALID_DATA;
    }
    const BigNumber theirs(theirPublic);
    if (!group.Holds(theirs.value)) {
        return CSSMERR_CSP_INVALID_DATA;
    }
    BigNumber shared;
    mpz_powm_sec(shared.value, theirs.value, exponent.value, group.prime.value);
    secret = shared.Bytes(group.Bytes());
    return CSSM_OK;
}

} // namespace torka
