// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/FieldKeys.h"
#include "platform/Result.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Enciphers a protected job note into the hexadecimal text that the controller deciphers, and deciphers it.

namespace torka {

enum class NoteAlgorithm { des, aes };

// Maximum length of the cipher text in a note; longer text is cut there.
inline constexpr std::size_t noteHexSize = 256;

// Writes two upper-case hexadecimal digits for each byte, the high half first, without a terminator.
// REQUIRES: `out` holds two characters for each byte.
void toHex(const std::uint8_t* bytes, std::size_t length, char* out);

// Returns the length in bytes of the cipher text of a note of `textLength` bytes, before it is cut.
std::size_t noteCipherLength(std::size_t textLength, NoteAlgorithm algorithm);

// Enciphers a text with the key and vector that `specialKey` (the value of "*UseSpecialKey") selects. Returns
// at most noteHexSize digits. AES is AES256CBC::DoAES256Encrypt. DES enciphers each block of 8 bytes
// separately. The text, without terminator, is padded with 1 to 8 bytes that each hold their count.
std::string encipherNote(const FieldKeys& keys, std::string_view specialKey, NoteAlgorithm algorithm,
                         const char* text);

// Deciphers a note's hexadecimal digits, of either case. Fails when the digits are not a cipher text of this
// key and algorithm. From a cipher text that was cut, returns the part that it holds.
Result<std::string> decipherNote(const FieldKeys& keys, std::string_view specialKey, NoteAlgorithm algorithm,
                                 std::string_view hex);

} // namespace torka
