#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <nettle/aes.h>

namespace torka {

// AES (FIPS 197) with a 32-byte key in cipher-block chaining (SP 800-38A), as the controller deciphers it.
//
// The block cipher is nettle's. Keeps its own schedules and chain and wipes them when it goes; the schedule
// for decryption is made when the first block is deciphered. Calls with a missing pointer, without a key or
// with a length that is not whole blocks do nothing. `in` and `out` may be the same memory, but may not
// overlap otherwise.
class AES256CBC {
public:
    static constexpr int keySize = 32;
    static constexpr int blockBytes = 16;

    AES256CBC() {
    } // the schedules are not filled with zeros first: that would take a good part of a note's time
    AES256CBC(const AES256CBC&) = delete;
    AES256CBC& operator=(const AES256CBC&) = delete;
    ~AES256CBC();

    // Takes a key of 32 bytes and a chain (initial vector) of 16. Does nothing for other sizes.
    void MakeKey(const std::uint8_t* key, const std::uint8_t* newChain, int newKeyLength = keySize,
                 int newBlockSize = blockBytes);
    bool HasKey() const { return keyMade; }
    // Starts a new message: the running chain is the initial vector again.
    void ResetChain() { chain = initialChain; }

    // Cipher-block chaining; the chain is carried on from call to call. `n` is a multiple of 16.
    void Encrypt(const std::uint8_t* in, std::uint8_t* out, std::size_t n);
    void Decrypt(const std::uint8_t* in, std::uint8_t* out, std::size_t n);
    // One block of the chain.
    void EncryptBlock(const std::uint8_t* in, std::uint8_t* out) { Encrypt(in, out, blockBytes); }
    void DecryptBlock(const std::uint8_t* in, std::uint8_t* out) { Decrypt(in, out, blockBytes); }
    // The bare transform of one block; the chain is neither used nor changed.
    void DefEncryptBlock(const std::uint8_t* in, std::uint8_t* out) const;
    void DefDecryptBlock(const std::uint8_t* in, std::uint8_t* out);

    // Enciphers a NUL-terminated text with its terminator. With n the bytes so far and r = n mod 16, 16 - r
    // bytes of the value 15 - r follow: one less than their count, and a whole block of 0x0F after full
    // blocks. The first *outLength bytes of `out` are zeroed and *outLength becomes n + 16 - r. Where that is
    // more than `out` was said to hold, `out` gets the first bytes of it and nothing is written beyond.
    void DoAES256Encrypt(const std::uint8_t* key, const std::uint8_t* iv, const char* text, std::uint8_t* out,
                         int* outLength);
    // Zeroes *outLength bytes of `out`, deciphers `length` bytes and sets *outLength to `length`; the padding
    // stays. A length that is negative or not whole blocks deciphers nothing and sets *outLength to 0. The
    // bound of `out` is kept as above.
    void DoAES256Decrypt(const std::uint8_t* key, const std::uint8_t* iv, const std::uint8_t* in, int length,
                         std::uint8_t* out, int* outLength);

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
