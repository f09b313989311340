// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <nettle/aes.h>

namespace torka {

// AES (FIPS 197) with a 32-byte key in cipher-block chaining (SP 800-38A), as the controller deciphers it.
//
// The block cipher is nettle's. The object keeps its own schedules and chain and wipes them at its end. It
// makes the decryption schedule for the first deciphered block. Calls do nothing with a null pointer, without
// a key, or with a length that is not a multiple of the block size. `in` and `out` may be the same memory but
// must not overlap otherwise.
class AES256CBC {
public:
    static constexpr int keySize = 32;
    static constexpr int blockBytes = 16;

    AES256CBC() {} // does not zero the schedules: that would take a good part of a note's time
    AES256CBC(const AES256CBC&) = delete;
    AES256CBC& operator=(const AES256CBC&) = delete;
    ~AES256CBC();

    // Sets a key of 32 bytes and a chain (initial vector) of 16. Does nothing for other sizes.
    void MakeKey(const std::uint8_t* key, const std::uint8_t* newChain, int newKeyLength = keySize,
                 int newBlockSize = blockBytes);

    // Process `n` bytes, a multiple of 16, in cipher-block chaining. The chain continues from call to call.
    void Encrypt(const std::uint8_t* in, std::uint8_t* out, std::size_t n);
    void Decrypt(const std::uint8_t* in, std::uint8_t* out, std::size_t n);

    // Enciphers a NUL-terminated text with its terminator. Let n be the number of bytes and r = n mod 16. The
    // padding is 16 - r bytes of the value 15 - r: one less than their count, and a whole block of 0x0F after
    // full blocks. Zeroes the first *outLength bytes of `out` and sets *outLength to n + 16 - r. When that
    // exceeds the size of `out`, `out` gets only the bytes that fit.
    void DoAES256Encrypt(const std::uint8_t* key, const std::uint8_t* iv, const char* text, std::uint8_t* out,
                         int* outLength);
    // Zeroes *outLength bytes of `out`, deciphers `length` bytes and sets *outLength to `length`; keeps the
    // padding. A length that is negative or not a multiple of 16 deciphers nothing and sets *outLength to 0.
    // `out` gets only the bytes that fit.
    void DoAES256Decrypt(const std::uint8_t* key, const std::uint8_t* iv, const std::uint8_t* in, int length,
                         std::uint8_t* out, int* outLength);

    // Given interface; no caller here
    // Process one block of the chain.
    void EncryptBlock(const std::uint8_t* in, std::uint8_t* out) { Encrypt(in, out, blockBytes); }
    void DecryptBlock(const std::uint8_t* in, std::uint8_t* out) { Decrypt(in, out, blockBytes); }
    // Transform one block without using or changing the chain.
    void DefEncryptBlock(const std::uint8_t* in, std::uint8_t* out) const;
    void DefDecryptBlock(const std::uint8_t* in, std::uint8_t* out);

    // For the tests; no caller here
    bool HasKey() const { return keyMade; }
    // Starts a new message: resets the chain to the initial vector.
    void ResetChain() { chain = initialChain; }

private:
    void MakeDecryptionSchedule();

    aes256_ctx encryptionSchedule; // valid when keyMade
    aes256_ctx decryptionSchedule; // valid when decryptionMade
    int rounds = 0;
    int keyLength = 0;
    int blockSize = 0;
    bool keyMade = false;
    bool decryptionMade = false;
    std::array<std::uint8_t, blockBytes> initialChain{};
    std::array<std::uint8_t, blockBytes> chain{};
};

} // namespace torka
