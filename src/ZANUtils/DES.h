// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <nettle/des.h>

namespace torka {

inline constexpr short EN0 = 0; // encipher
inline constexpr short DE1 = 1; // decipher

// Single DES (FIPS 46-3), one block at a time, with the classic key-schedule interface.
//
// Holds one schedule of 32 words in the order of its direction and wipes it at its end. The rounds are
// nettle's. Ignores the parity bits of keys and accepts weak keys. Does nothing with a null pointer.
class DES {
public:
    static constexpr int keySize = 8;
    static constexpr int blockBytes = 8;
    static constexpr int scheduleWords = 32;

    DES() = default;
    DES(const DES&) = delete;
    DES& operator=(const DES&) = delete;
    ~DES();

    // Makes the schedule of an 8-byte key for EN0 or DE1. Any other mode changes nothing.
    void deskey(const std::uint8_t* key, short mode);
    // Transforms 8 bytes with the current schedule; `in` and `out` may be the same.
    void des(const std::uint8_t* in, std::uint8_t* out) const;

    // Given interface; no caller here
    // Loads a schedule that cpkey has copied.
    void usekey(const std::uint32_t* from);
    void cpkey(std::uint32_t* into) const;

private:
    des_ctx schedule{};
};

} // namespace torka
