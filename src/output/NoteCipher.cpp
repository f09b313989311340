// SPDX-License-Identifier: Apache-2.0
#include "output/NoteCipher.h"

#include "ZANUtils/AES256CBC.h"
#include "ZANUtils/DES.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace torka {

namespace {

constexpr std::size_t noteCipherBytes = noteHexSize / 2;
constexpr std::size_t desBlock = DES::blockBytes;
constexpr std::size_t aesBlock = AES256CBC::blockBytes;
static_assert(noteCipherBytes % desBlock == 0 && noteCipherBytes % aesBlock == 0);

using CipherText = std::array<std::uint8_t, noteCipherBytes>;

// Fills `out` with as much cipher text as it can hold. Returns the number of bytes.
std::size_t encipherDes(std::span<const std::uint8_t, FieldKeys::desKeyBytes> key, const char* text,
                        CipherText& out) {
    const std::size_t length = std::strlen(text);
    const std::size_t used = std::min(noteCipherLength(length, NoteAlgorithm::des), out.size());
    DES engine;
    engine.deskey(key.data(), EN0);
    for (std::size_t at = 0; at < used; at += desBlock) {
        std::array<std::uint8_t, desBlock> block;
        const WipeGuard guard(block);
        const std::size_t fromText = std::min(length - at, desBlock);
        block.fill(static_cast<std::uint8_t>(desBlock - fromText));
        std::memcpy(block.data(), text + at, fromText);
        engine.des(block.data(), out.data() + at);
    }
    return used;
}

std::size_t encipherAes(const FieldKeys& keys, std::string_view specialKey, const char* text,
                        CipherText& out) {
    AES256CBC engine;
    int length = static_cast<int>(out.size());
    engine.DoAES256Encrypt(keys.AesKey(specialKey).data(), keys.Vector(specialKey).data(), text, out.data(),
                           &length);
    return std::min(static_cast<std::size_t>(std::max(length, 0)), out.size());
}

int hexDigit(char digit) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const char upper = digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit;
    const std::size_t value = digits.find(upper);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

std::optional<SecureBuffer> fromHex(std::string_view hex) {
    SecureBuffer bytes;
    bytes.reserve(hex.size() / 2);
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        const int high = hexDigit(hex[i]);
        const int low = hexDigit(hex[i + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return hex.size() % 2 == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

// Removes the padding from a deciphered text that was not cut: `count` bytes of `value` at its end.
bool dropFilling(SecureBuffer& text, std::size_t count, std::uint8_t value) {
    if (count > text.size() || !std::all_of(text.end() - static_cast<std::ptrdiff_t>(count), text.end(),
                                            [value](std::uint8_t byte) { return byte == value; })) {
        return false;
    }
    text.resize(text.size() - count);
    return true;
}

bool dropDesFilling(SecureBuffer& text) {
    const std::uint8_t count = text.back();
    return count >= 1 && count <= desBlock && dropFilling(text, count, count);
}

bool dropAesFilling(SecureBuffer& text) {
    const std::uint8_t value = text.back();
    if (value >= aesBlock || !dropFilling(text, value + std::size_t{1}, value) || text.empty() ||
        text.back() != 0) {
        return false;
    }
    text.pop_back();
    return true;
}

} // namespace

void toHex(const std::uint8_t* bytes, std::size_t length, char* out) {
    constexpr const char* digits = "0123456789ABCDEF";
    for (std::size_t i = 0; i < length; ++i) {
        out[2 * i] = digits[bytes[i] >> 4];
        out[2 * i + 1] = digits[bytes[i] & 0x0F];
    }
}

std::size_t noteCipherLength(std::size_t textLength, NoteAlgorithm algorithm) {
    return algorithm == NoteAlgorithm::aes ? ((textLength + 1) / aesBlock + 1) * aesBlock
                                           : (textLength / desBlock + 1) * desBlock;
}

std::string encipherNote(const FieldKeys& keys, std::string_view specialKey, NoteAlgorithm algorithm,
                         const char* text) {
    CipherText cipher;
    const std::size_t used = algorithm == NoteAlgorithm::aes
                                 ? encipherAes(keys, specialKey, text, cipher)
                                 : encipherDes(keys.DesKey(specialKey), text, cipher);
    std::string hex(used * 2, '\0');
    toHex(cipher.data(), used, hex.data());
    return hex;
}

Result<std::string> decipherNote(const FieldKeys& keys, std::string_view specialKey, NoteAlgorithm algorithm,
                                 std::string_view hex) {
    const auto cipher = fromHex(hex);
    const bool isAes = algorithm == NoteAlgorithm::aes;
    const std::size_t block = isAes ? aesBlock : desBlock;
    if (!cipher || cipher->empty() || cipher->size() % block != 0 || cipher->size() > noteCipherBytes) {
        return Fault{"a note's cipher text has 1 to " + std::to_string(noteCipherBytes / block) +
                     " blocks of " + std::to_string(block * 2) + " hexadecimal digits"};
    }
    SecureBuffer text(cipher->size());
    if (isAes) {
        int length = static_cast<int>(text.size());
        AES256CBC().DoAES256Decrypt(keys.AesKey(specialKey).data(), keys.Vector(specialKey).data(),
                                    cipher->data(), length, text.data(), &length);
    } else {
        DES engine;
        engine.deskey(keys.DesKey(specialKey).data(), DE1);
        for (std::size_t at = 0; at < text.size(); at += desBlock) {
            engine.des(cipher->data() + at, text.data() + at);
        }
    }
    // A cipher text of the full size may have been cut, and then has no padding.
    if (!(isAes ? dropAesFilling(text) : dropDesFilling(text)) && cipher->size() < noteCipherBytes) {
        return Fault{"the cipher text was not made with this key and algorithm"};
    }
    return std::string(text.begin(), std::find(text.begin(), text.end(), std::uint8_t{0}));
}

} // namespace torka
