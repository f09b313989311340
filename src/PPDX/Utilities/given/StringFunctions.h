// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

// Small functions over C strings and length-prefixed strings (a length byte, then up to 255 bytes). Numbers
// are written in the C locale. Null arguments give null, 0 or no effect.

namespace torka {

// Cuts the text to 255 bytes; `dst` holds 256. Returns `dst`.
unsigned char* ctoPStr(const char* src, unsigned char* dst);
// `dst` holds 256 bytes. Returns `dst`.
char* ptoCStr(const unsigned char* src, char* dst);

inline constexpr std::size_t kNumberCapacity = 64; // maximum of bytes that num2String and float2String write
// As printf's "%d".
void num2String(int number, char* dst);
// As printf's "%9.4f".
void float2String(char* dst, float number);
// The integer at the start of a text in the system's encoding; 0 when the text is invalid in that encoding.
std::int32_t string2Number(const char* text);

// Removes the bytes from `from` up to but not including `to`, at most to the end. Removes nothing when `from`
// lies beyond the end or `to` is not greater than `from`. Returns the new length.
std::size_t deleteCharRangeInStr(char* text, std::uint16_t from, std::uint16_t to);
// The first occurrence of `character`, or null.
char* findChar(char* text, char character);
const char* findChar(const char* text, char character);
// A string of `count` times `character`, from malloc; the caller frees it. Null when memory runs out.
char* newInitalizedCString(std::size_t count, char character);
// 0 when the text holds more than `maxDigits` consecutive decimal digits, else 1.
int validateRangeValues(const char* text, int maxDigits);
// The decimal number at the start of a wide text, clamped to the range of int.
int wtoi(const wchar_t* text);

// A copy of `src`, from malloc, with every `what` replaced by `with`. Occurrences that a replacement creates
// together with its surroundings are replaced, too. When `with` contains `what`, only the occurrences in
// `src` are replaced. An empty `what` is not replaced. Null when an argument is null or memory runs out. Also
// null when replacements keep creating occurrences: when they have inserted kReplaceLimit bytes more than one
// replacement of each occurrence can.
inline constexpr std::size_t kReplaceLimit = 1'000'000;
char* _replace(const char* src, const char* what, const char* with);

} // namespace torka
