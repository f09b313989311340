#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Text between the module, whose own texts are UTF-8, and what it meets: wide texts of the pane and printer
// descriptions in their encodings. Numbers are read and written in the C locale.

namespace torka::jobproperties {

// What is longer is cut: no text of a print setting comes near it.
inline constexpr std::size_t maximumTextLength = std::size_t{1} << 22;

// Null is an empty text. Surrogates and values above U+10FFFF become U+FFFD. Reads up to the terminating
// null, at most maximumTextLength characters.
std::string fromWide(const wchar_t* text);
// Bytes that are no UTF-8 become U+FFFD.
std::wstring toWide(std::string_view utf8);

// Bytes of unknown origin as UTF-8: what is none becomes U+FFFD.
std::string cleanUtf8(std::string_view bytes);

// Reads texts of one encoding of a printer description (value of *LanguageEncoding); an unknown one counts as
// UTF-8. Kept for as long as texts come, since finding a converter takes longer than using it.
class TextDecoder {
public:
    explicit TextDecoder(std::string_view encoding);
    TextDecoder(const TextDecoder&) = delete;
    TextDecoder& operator=(const TextDecoder&) = delete;
    ~TextDecoder();

    // What cannot be read becomes U+FFFD.
    std::string ToUtf8(std::string_view bytes) const;

private:
    void* converter = nullptr; // of iconv; null: UTF-8
};

std::string_view trimmed(std::string_view text);
std::vector<std::string_view> split(std::string_view text, char separator);

// Null unless the whole text is a number.
std::optional<double> decimalNumber(std::string_view text);
std::optional<long> wholeNumber(std::string_view text);
// The shortest text that reads back as the number, without an exponent.
std::string decimalText(double number);

} // namespace torka::jobproperties
