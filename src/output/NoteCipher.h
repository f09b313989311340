#pragma once

#include "ZANUtils/FieldKeys.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// How the text of a protected job note becomes the hexadecimal text that the controller deciphers, and back.

namespace torka {

enum class NoteAlgorithm { des, aes };

// The longest cipher text that a note carries; what is longer is cut there.
inline constexpr std::size_t noteHexSize = 256;

// The two upper-case hexadecimal digits of each byte, the high half first. No terminator.
// REQUIRES: `out` holds two characters for each byte.
void toHex(const std::uint8_t* bytes, std::size_t length, char* out);

// The bytes of the cipher text of a note of `textLength` bytes, before it is cut.
std::size_t noteCipherLength(std::size_t textLength, NoteAlgorithm algorithm);

// Enciphers a text with the key and vector that `specialKey` (the value of "*UseSpecialKey") chooses, as at
// most noteHexSize digits. AES is AES256CBC::DoAES256Encrypt. DES takes each block of 8 bytes by itself; the
// text, without terminator, is filled up with 1 to 8 bytes, each of their count.
std::string encipherNote(const FieldKeys& keys, std::string_view specialKey, NoteAlgorithm algorithm,
                         const char* text);

// The text of a note's hexadecimal digits (of either case). Empty, with the reason in `error`, for digits
// that are no cipher text of this key and algorithm. Of a cipher text that was cut, what there is.
std::optional<std::string> decipherNote(const FieldKeys& keys, std::string_view specialKey,
                                        NoteAlgorithm algorithm, std::string_view hex, std::string& error);

} // namespace torka
