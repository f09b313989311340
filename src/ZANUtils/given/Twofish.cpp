// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/given/Twofish.h"

#include "ZANUtils/SecureBuffer.h"

#include <algorithm>
#include <nettle/cbc.h>

namespace torka {

namespace {

constexpr int success = 1;
constexpr std::size_t blockBytes = Twofish::blockBits / 8;
static_assert(blockBytes == TWOFISH_BLOCK_SIZE);

// Returns the value of a hexadecimal digit, -1 for any other character.
int hexDigit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

template <std::size_t Count>
std::array<std::uint8_t, Count * 4> bytesOf(const std::array<std::uint32_t, Count>& words) {
    std::array<std::uint8_t, Count * 4> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(words[i / 4] >> (8 * (i % 4)));
    }
    return bytes;
}

template <std::size_t Count>
void toWords(const std::uint8_t* bytes, std::array<std::uint32_t, Count>& words) {
    words.fill(0);
    for (std::size_t i = 0; i < Count * 4; ++i) {
        words[i / 4] |= static_cast<std::uint32_t>(bytes[i]) << (8 * (i % 4));
    }
}

void encryptBlocks(const void* context, std::size_t length, std::uint8_t* out, const std::uint8_t* in) {
    twofish_encrypt(static_cast<const twofish_ctx*>(context), length, out, in);
}

void decryptBlocks(const void* context, std::size_t length, std::uint8_t* out, const std::uint8_t* in) {
    twofish_decrypt(static_cast<const twofish_ctx*>(context), length, out, in);
}

int checkCall(const Twofish::CipherInstance* cipher, const Twofish::KeyInstance* key,
              const std::uint8_t* input, int inputLen, const std::uint8_t* output) {
    if (cipher == nullptr || (cipher->mode != MODE_ECB && cipher->mode != MODE_CBC)) {
        return BAD_CIPHER_STATE;
    }
    if (key == nullptr || key->keyLen == 0) {
        return BAD_KEY_INSTANCE;
    }
    if (inputLen < 0 || inputLen % Twofish::blockBits != 0) {
        return BAD_INPUT_LEN;
    }
    return inputLen > 0 && (input == nullptr || output == nullptr) ? BAD_PARAMS : success;
}

} // namespace

Twofish::KeyInstance::~KeyInstance() {
    wipeValue(key32);
    wipeValue(subKeys);
}

int Twofish::ParseHexDword(int bits, const char* text, std::uint32_t* words, char* copy) {
    if (text == nullptr || words == nullptr || bits < 0) {
        return BAD_KEY_MAT;
    }
    const int digits = bits / 4;
    std::fill_n(words, (bits + 31) / 32, 0U);
    for (int i = 0; i < digits; ++i) {
        const int value = hexDigit(text[i]); // a terminator is not a digit: reading stops there
        if (value < 0) {
            return BAD_KEY_MAT;
        }
        // The high digit of each byte comes first.
        words[i / 8] |= static_cast<std::uint32_t>(value) << (4 * ((i ^ 1) % 8));
        if (copy != nullptr) {
            copy[i] = text[i];
        }
    }
    return 0;
}

int Twofish::makeKey(KeyInstance* key, std::uint8_t direction, int keyLen, const char* keyMaterial) {
    if (key == nullptr) {
        return BAD_KEY_INSTANCE;
    }
    if (direction != DIR_ENCRYPT && direction != DIR_DECRYPT) {
        return BAD_KEY_DIR;
    }
    if (keyLen != 128 && keyLen != 192 && keyLen != 256) {
        return BAD_KEY_MAT;
    }
    key->direction = direction;
    key->keyLen = 0;
    key->key32.fill(0);
    if (keyMaterial != nullptr) {
        if (const int result = ParseHexDword(keyLen, keyMaterial, key->key32.data(), nullptr); result != 0) {
            return result;
        }
    }
    key->keyLen = keyLen;
    return keyMaterial != nullptr ? reKey(key) : success;
}

int Twofish::reKey(KeyInstance* key) {
    if (key == nullptr || key->keyLen <= 0 || key->keyLen > maximumKeyBits) {
        return BAD_KEY_INSTANCE;
    }
    auto bytes = bytesOf(key->key32);
    const WipeGuard guard(bytes);
    twofish_set_key(&key->subKeys, static_cast<std::size_t>(key->keyLen / 8), bytes.data());
    return success;
}

int Twofish::cipherInit(CipherInstance* cipher, std::uint8_t mode, const char* iv) {
    if (cipher == nullptr) {
        return BAD_PARAMS;
    }
    if (mode != MODE_ECB && mode != MODE_CBC) {
        return BAD_CIPHER_MODE;
    }
    cipher->iv32.fill(0);
    if (mode == MODE_CBC && iv != nullptr &&
        ParseHexDword(blockBits, iv, cipher->iv32.data(), nullptr) != 0) {
        return BAD_IV_MAT;
    }
    cipher->mode = mode;
    return success;
}

int Twofish::blockEncrypt(CipherInstance* cipher, const KeyInstance* key, const std::uint8_t* input,
                          int inputLen, std::uint8_t* outBuffer) {
    if (const int result = checkCall(cipher, key, input, inputLen, outBuffer); result != success) {
        return result;
    }
    const auto length = static_cast<std::size_t>(inputLen) / 8;
    if (cipher->mode == MODE_CBC) {
        auto chain = bytesOf(cipher->iv32);
        cbc_encrypt(&key->subKeys, encryptBlocks, blockBytes, chain.data(), length, outBuffer, input);
        toWords(chain.data(), cipher->iv32);
    } else {
        twofish_encrypt(&key->subKeys, length, outBuffer, input);
    }
    return inputLen;
}

int Twofish::blockDecrypt(CipherInstance* cipher, const KeyInstance* key, const std::uint8_t* input,
                          int inputLen, std::uint8_t* outBuffer) {
    if (const int result = checkCall(cipher, key, input, inputLen, outBuffer); result != success) {
        return result;
    }
    const auto length = static_cast<std::size_t>(inputLen) / 8;
    if (cipher->mode == MODE_CBC) {
        auto chain = bytesOf(cipher->iv32);
        cbc_decrypt(&key->subKeys, decryptBlocks, blockBytes, chain.data(), length, outBuffer, input);
        toWords(chain.data(), cipher->iv32);
    } else {
        twofish_decrypt(&key->subKeys, length, outBuffer, input);
    }
    return inputLen;
}

int Twofish::RunCipher(bool decrypt, const std::uint8_t* key32, const std::uint8_t* in, int length,
                       std::uint8_t* out) {
    constexpr int bytesPerBlock = blockBits / 8;
    if (length < 0 || length % bytesPerBlock != 0 || key32 == nullptr || in == nullptr || out == nullptr) {
        return -1;
    }
    KeyInstance key;
    if (makeKey(&key, decrypt ? DIR_DECRYPT : DIR_ENCRYPT, maximumKeyBits, nullptr) != success) {
        return -1;
    }
    toWords(key32, key.key32);
    CipherInstance cipher;
    if (reKey(&key) != success || cipherInit(&cipher, MODE_ECB, nullptr) != success) {
        return -1;
    }
    // The engine counts bits in an int, so long inputs are processed in pieces.
    constexpr int piece = 1 << 20;
    for (int done = 0; done < length; done += piece) {
        const int bits = std::min(piece, length - done) * 8;
        const int written = decrypt ? blockDecrypt(&cipher, &key, in + done, bits, out + done)
                                    : blockEncrypt(&cipher, &key, in + done, bits, out + done);
        if (written != bits) {
            return -1;
        }
    }
    return 0;
}

} // namespace torka
