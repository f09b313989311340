// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Converts between the module's own UTF-8 texts and others: wide texts of the pane, and printer descriptions
// in their encodings. Reads and writes numbers in the C locale.

namespace torka::jobproperties {

// Longer texts are cut. No text of a print setting comes near this maximum.
inline constexpr std::size_t maximumTextLength = std::size_t{1} << 22;

// Null is an empty text. Surrogates and values above U+10FFFF become U+FFFD. Reads up to the terminating
// null, at most maximumTextLength characters.
std::string fromWide(const wchar_t* text);
// Bytes that are not UTF-8 become U+FFFD.
std::wstring toWide(std::string_view utf8);

// Returns bytes of unknown origin as UTF-8. Invalid bytes become U+FFFD.
std::string cleanUtf8(std::string_view bytes);

// Decodes texts of a printer description from one encoding (the value of *LanguageEncoding). An unknown
// encoding counts as UTF-8. Reuse the object: finding a converter takes longer than using it.
class TextDecoder {
public:
    explicit TextDecoder(std::string_view encoding);
    TextDecoder(const TextDecoder&) = delete;
    TextDecoder& operator=(const TextDecoder&) = delete;
    ~TextDecoder();

    // Bytes that cannot be decoded become U+FFFD.
    std::string ToUtf8(std::string_view bytes) const;

private:
    void* converter = nullptr; // of iconv; null: UTF-8
};

std::string_view trimmed(std::string_view text);
std::vector<std::string_view> split(std::string_view text, char separator);

// Return null unless the whole text is a number.
std::optional<double> decimalNumber(std::string_view text);
std::optional<long> wholeNumber(std::string_view text);
// Returns the shortest text that reads back as the number, without an exponent.
std::string decimalText(double number);

} // namespace torka::jobproperties
