// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/SecureBuffer.h"

#include <gmp.h>
#include <nettle/bignum.h>
#include <span>

namespace torka {

// Wipes the digits of a number; the number stays valid.
inline void wipeNumber(mpz_t number) {
    const std::size_t limbs = mpz_size(number);
    if (limbs > 0) {
        wipe(mpz_limbs_modify(number, static_cast<mp_size_t>(limbs)), limbs * sizeof(mp_limb_t));
        mpz_limbs_finish(number, 0);
    }
}

// A gmp number that wipes itself.
class BigNumber {
public:
    BigNumber() { mpz_init(value); }
    explicit BigNumber(std::span<const std::uint8_t> bigEndian) {
        nettle_mpz_init_set_str_256_u(value, bigEndian.size(), bigEndian.data());
    }
    BigNumber(const BigNumber&) = delete;
    BigNumber& operator=(const BigNumber&) = delete;
    ~BigNumber() {
        wipeNumber(value);
        mpz_clear(value);
    }

    // Returns the number with the most significant byte first, padded to `length`. REQUIRES: the number fits.
    SecureBuffer Bytes(std::size_t length) const {
        SecureBuffer bytes(length);
        nettle_mpz_get_str_256(length, bytes.data(), value);
        return bytes;
    }

    mpz_t value;
};

// Encode in DER (X.690): the INTEGER of a number that is not negative, and a SEQUENCE around encoded content.
SecureBuffer derInteger(const mpz_t number);
SecureBuffer derSequence(std::span<const std::uint8_t> content);

} // namespace torka
