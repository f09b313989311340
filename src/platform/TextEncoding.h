// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Text encodings with the numbers of the Text Encoding Conversion Manager, and conversion between them and
// UTF-16.
//
// Shift_JIS (2561) writes the yen sign as 0x5C, which it reads as the backslash. In Mac Japanese (1) 0x5C is
// the yen sign, 0x80 the backslash, 0xA0 the no-break space, 0xFD to 0xFF the copyright and trade mark signs
// and the ellipsis. UTF-16 is read in the order of its byte-order mark, or
// without a mark in this machine's order. It is written in this machine's order. Non-lossy ASCII writes a
// backslash as "\\", U+0080 to U+00FF as "\NNN" (octal), and other units as "\uXXXX".

namespace torka::platform {

inline constexpr CFStringEncoding kCFStringEncodingMacRoman = 0;
inline constexpr CFStringEncoding kCFStringEncodingMacJapanese = 1;
inline constexpr CFStringEncoding kCFStringEncodingMacCentralEurRoman = 29;
inline constexpr CFStringEncoding kCFStringEncodingMacTurkish = 35;
inline constexpr CFStringEncoding kCFStringEncodingUTF16 = 0x0100;
inline constexpr CFStringEncoding kCFStringEncodingISOLatin1 = 0x0201;     // 513
inline constexpr CFStringEncoding kCFStringEncodingISOLatin2 = 0x0202;     // 514
inline constexpr CFStringEncoding kCFStringEncodingISOLatin5 = 0x0209;     // 521, ISO 8859-9
inline constexpr CFStringEncoding kCFStringEncodingWindowsLatin1 = 0x0500; // 1280
inline constexpr CFStringEncoding kCFStringEncodingASCII = 0x0600;
inline constexpr CFStringEncoding kCFStringEncodingGB_18030_2000 = 0x0632;
inline constexpr CFStringEncoding kCFStringEncodingShiftJIS = 0x0A01;      // 2561
inline constexpr CFStringEncoding kCFStringEncodingNonLossyASCII = 0x0BFF; // 7-bit with \uXXXX escapes
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
inline constexpr CFStringEncoding kCFStringEncodingUnknown = 65535;

// The number of an encoding from its parts. Base 256 is Unicode, and its format 2 is UTF-8. A base alone is
// its own number.
CFStringEncoding CreateTextEncoding(CFStringEncoding base, CFStringEncoding variant, CFStringEncoding format);
// The encoding of the classic system that covers an encoding's characters best. Returns a Unicode encoding
// unchanged, so that text in UTF-8 is still read as UTF-8.
CFStringEncoding CFStringGetMostCompatibleMacStringEncoding(CFStringEncoding encoding);
// The system's encoding of narrow text (platform::System defines it; UTF-8 on Linux).
CFStringEncoding CFStringGetSystemEncoding();

bool isKnownEncoding(CFStringEncoding encoding);

// nullopt when the bytes are invalid in that encoding or the encoding is unknown.
std::optional<std::u16string> decodeText(std::string_view bytes, CFStringEncoding encoding);
// As decodeText, but invalid bytes become U+FFFD. nullopt only for an unknown encoding.
std::optional<std::u16string> decodeTextLossy(std::string_view bytes, CFStringEncoding encoding);
// nullopt when the encoding lacks a character or is unknown.
std::optional<std::string> encodeText(std::u16string_view text, CFStringEncoding encoding);

// Unpaired surrogates become U+FFFD.
std::string utf8FromUtf16(std::u16string_view units);

// Returns the character at `position` and moves `position` behind it. Returns an unpaired surrogate
// unchanged. REQUIRES: position < units.size().
char32_t nextCodePoint(std::u16string_view units, std::size_t& position);

// Convert between UTF-16 and wide text (32-bit units, as in the two-way records and the module interface).
// Values above U+10FFFF and unpaired surrogates become U+FFFD.
std::u16string utf16FromWide(std::wstring_view wide);
std::wstring wideFromUtf16(std::u16string_view units);
std::string utf8FromWide(std::wstring_view wide);
std::wstring wideFromUtf8(std::string_view utf8);

} // namespace torka::platform
