// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace torka {

// SHA-1 (FIPS 180) of bytes in pieces. The block compression is nettle's.
//
// After the result is taken, input marks the digest as corrupted until Reset. More than 2^64 - 1 bits do the
// same. Result returns false for a corrupted digest. Empty input never changes anything.
class SHA1 {
public:
    SHA1() { Reset(); }
    ~SHA1();
    SHA1(const SHA1&) = default;
    SHA1& operator=(const SHA1&) = default;

    void Reset();
    void Input(const std::uint8_t* bytes, std::size_t length);
    void Input(const char* bytes, std::size_t length) {
        Input(reinterpret_cast<const std::uint8_t*>(bytes), length);
    }
    void Input(std::uint8_t byte) { Input(&byte, 1); }
    void Input(char character) { Input(&character, 1); }
    // Pads and finishes once; later calls return the same words. Returns false, with nothing written, when
    // corrupted.
    bool Result(unsigned int* words);

    // Adds a text without its terminator; null adds nothing.
    SHA1& operator<<(const char* text);
    SHA1& operator<<(const std::uint8_t* text) { return *this << reinterpret_cast<const char*>(text); }
    SHA1& operator<<(char character) {
        Input(character);
        return *this;
    }
    SHA1& operator<<(std::uint8_t byte) {
        Input(byte);
        return *this;
    }

protected:
    static constexpr std::size_t blockBytes = 64;

    void PadMessage();

    std::array<std::uint32_t, 5> digest{};
    std::uint32_t lengthLow = 0; // bits of the message, low and high word
    std::uint32_t lengthHigh = 0;
    std::array<std::uint8_t, blockBytes> messageBlock{};
    std::size_t messageBlockIndex = 0; // bytes waiting in messageBlock
    bool computed = false;
    bool corrupted = false;
};

} // namespace torka
