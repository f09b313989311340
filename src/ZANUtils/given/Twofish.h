// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <nettle/twofish.h>

namespace torka {

// Directions, modes and results of the cipher interface of the AES competition (NIST, 1998), to which Twofish
// was submitted.
inline constexpr std::uint8_t DIR_ENCRYPT = 0;
inline constexpr std::uint8_t DIR_DECRYPT = 1;
inline constexpr std::uint8_t MODE_ECB = 1;
inline constexpr std::uint8_t MODE_CBC = 2;
inline constexpr int BAD_KEY_DIR = -1;
inline constexpr int BAD_KEY_MAT = -2;
inline constexpr int BAD_KEY_INSTANCE = -3;
inline constexpr int BAD_CIPHER_MODE = -4;
inline constexpr int BAD_CIPHER_STATE = -5;
inline constexpr int BAD_INPUT_LEN = -6;
inline constexpr int BAD_PARAMS = -7;
inline constexpr int BAD_IV_MAT = -8;

// Twofish (Schneier and others, 1998) with keys of 128, 192 and 256 bits.
//
// The block cipher is nettle's. The caller owns the instances; they wipe themselves. Calls return 1 (or a
// number of bits) for success and otherwise one of the negative results above.
class Twofish {
public:
    static constexpr int blockBits = 128;
    static constexpr int maximumKeyBits = 256;

    struct KeyInstance {
        std::uint8_t direction = DIR_ENCRYPT;
        int keyLen = 0;                       // bits; 0 until makeKey
        std::array<std::uint32_t, 8> key32{}; // raw key, first byte in the lowest bits of the first word
        twofish_ctx subKeys{};                // made from key32 by reKey

        KeyInstance() = default;
        KeyInstance(const KeyInstance&) = delete;
        KeyInstance& operator=(const KeyInstance&) = delete;
        ~KeyInstance();
    };
    struct CipherInstance {
        std::uint8_t mode = 0;               // 0 until cipherInit
        std::array<std::uint32_t, 4> iv32{}; // running chain of MODE_CBC, laid out as key32
    };

    // `keyMaterial` is keyLen / 4 hexadecimal digits. With null, the caller fills the key words and calls
    // reKey.
    static int makeKey(KeyInstance* key, std::uint8_t direction, int keyLen, const char* keyMaterial);
    // Makes the sub-keys again after a change of key32.
    static int reKey(KeyInstance* key);
    // `iv` is 32 hexadecimal digits, or null for a chain of zeros. MODE_ECB ignores it.
    static int cipherInit(CipherInstance* cipher, std::uint8_t mode, const char* iv);
    // Process `inputLen` bits, a multiple of 128. Return the number of bits written. `input` and `outBuffer`
    // may be the same. The called function sets the direction; the key's own direction is not checked.
    static int blockEncrypt(CipherInstance* cipher, const KeyInstance* key, const std::uint8_t* input,
                            int inputLen, std::uint8_t* outBuffer);
    static int blockDecrypt(CipherInstance* cipher, const KeyInstance* key, const std::uint8_t* input,
                            int inputLen, std::uint8_t* outBuffer);
    // Reads `bits` / 4 hexadecimal digits into words (the first two digits are the lowest byte of the first
    // word) and copies the digits to `copy`, which is large enough or null. Returns 0, or BAD_KEY_MAT at a
    // character that is not a digit.
    static int ParseHexDword(int bits, const char* text, std::uint32_t* words, char* copy);

    // Processes `length` bytes in electronic codebook mode with a 32-byte key. Returns 0, or -1 when the
    // length is not a multiple of 16, a pointer is null or the engine fails.
    static int RunCipher(bool decrypt, const std::uint8_t* key32, const std::uint8_t* in, int length,
                         std::uint8_t* out);
};

} // namespace torka
