// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/Utilities/CString.h"
#include "platform/CoreFoundation.h"
#include "platform/TextEncoding.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

// Converts texts of a printer description between the bytes of its "*LanguageEncoding" and CFStrings.

namespace torka {

// What a description says of the encoding of its texts; null until it is read. PPDX is one.
class DescriptionLanguage {
public:
    virtual const CString* LanguageVersion() const = 0;
    virtual const CString* LanguageEncoding() const = 0;

protected:
    ~DescriptionLanguage() = default;
};

// One converter per description, owned by its PPDX. Not thread-safe.
class TextConverter {
public:
    // ValidConverter() is false for an unknown encoding. The language version is stored only with a known
    // one.
    TextConverter(CFStringEncoding encoding, const char* version);
    // Uses the encoding of a description; null counts as a description without one.
    explicit TextConverter(const DescriptionLanguage* description);
    TextConverter(const TextConverter&) = delete;
    TextConverter& operator=(const TextConverter&) = delete;
    virtual ~TextConverter();

    // Returns the encoding for a value of "*LanguageEncoding", compared exactly. Returns
    // kCFStringEncodingUnknown for any other value and for null.
    static CFStringEncoding LanguageStringToEncoding(const char* name);

    static CFStringEncoding GetPPDEncoding(const DescriptionLanguage* description);

    // Decodes the hexadecimal substrings of `text` and converts the result. Never returns null: a lack of
    // memory gives "Out Of Memory". Invalid bytes become U+FFFD. In ISO Latin 2, ISO Latin 5 and Shift-JIS,
    // invalid bytes make the whole byte string read as UTF-16 units in native order.
    CFStringRef ConvertToCFString(std::string_view text);

    // Writes the string in the system's encoding; "Translation Error" when it cannot be converted or does not
    // fit. Always terminates it within `size` bytes. Returns whether it was converted.
    static bool CFStringToCstring(const CFStringRef& string, char* buffer, long size);

    // Decodes hexadecimal substrings (PPD format 4.3, "translation strings"): each run of digits between "<"
    // and ">" becomes the bytes of its digit pairs. Skips white space (blank, tab, CR, LF) between digits.
    // Copies the rest of the text unchanged from the first "<" that has no ">", or whose run holds another
    // character or an odd number of digits. `out` holds at least in.size() bytes; no terminator is written.
    // Returns the number of bytes written.
    static std::size_t DehexBufferFill(std::string_view in, char* out);
    // Returns the value of a hexadecimal digit, -1 for any other character.
    static int toShort(char digit);
    // Returns the digit at or after `position`, skipping white space, and moves `position` behind it. Returns
    // 0 at the end of `run`.
    static char nextHexChar(std::string_view run, std::size_t& position);

    // Given interface; no caller here
    // The encoding of narrow text in the system, read by the constructor.
    CFStringEncoding GetCurrentEncoding() const { return currentEncoding; }
    // The encoding of the C strings that the conversions write.
    CFStringEncoding GetOutputEncoding() const { return currentEncoding; }
    bool ValidConverter() const { return ppdEncoding != kCFStringEncodingUnknown && status == 0; }
    // The same for the first `limit` bytes; null gives "".
    CFStringRef ConvertToCFString(const char* text, long limit);
    // These apply both conversions.
    bool Convert(const char* text, char* buffer, long size);
    bool ppdStringConvert(CString& text);
    bool convertText(const char* text, long length, char* buffer, long size);
    // Discards the last converter; the next conversion makes its own.
    void resetOutputHandle();

    // For the tests; no caller here
    const char* LanguageVersion() const { return languageVersion; }

private:
    std::u16string ToUnicode(std::string_view bytes);

    CFStringEncoding ppdEncoding = kCFStringEncodingUnknown;
    CFStringEncoding currentEncoding = kCFStringEncodingUTF8;
    CFStringEncoding toUnicodeEncoding = kCFStringEncodingUnknown; // the last source encoding used
    int status = 0;
    CString languageVersion;
};

// The names of languages whose job-note texts may contain hexadecimal substrings.
class HexLanguageExceptions {
public:
    // Given interface; no caller here
    HexLanguageExceptions();
    virtual ~HexLanguageExceptions();
    // Compares exactly, with letter case.
    bool IsException(std::string_view language) const { return names.contains(language); }

private:
    std::set<std::string, std::less<>> names;
};

} // namespace torka
