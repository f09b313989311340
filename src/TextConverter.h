#pragma once

#include "PPDX/Utilities/CString.h"
#include "platform/CoreFoundation.h"
#include "platform/TextEncoding.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

// Texts of a printer description between the bytes of its "*LanguageEncoding" and CFStrings.

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
    // ValidConverter() is false when the encoding is unknown; the language version is kept with a known one
    // only.
    TextConverter(CFStringEncoding encoding, const char* version);
    // Of a description; null counts as one that says nothing.
    explicit TextConverter(const DescriptionLanguage* description);
    TextConverter(const TextConverter&) = delete;
    TextConverter& operator=(const TextConverter&) = delete;
    virtual ~TextConverter();

    // The number for a value of "*LanguageEncoding" (exact); kCFStringEncodingUnknown for any other and for
    // null.
    static CFStringEncoding LanguageStringToEncoding(const char* name);

    static CFStringEncoding GetPPDEncoding(const DescriptionLanguage* description);
    // The encoding of narrow text in the system, read at construction.
    CFStringEncoding GetCurrentEncoding() const { return currentEncoding; }
    // The encoding that the calls into C-string buffers write.
    CFStringEncoding GetOutputEncoding() const { return currentEncoding; }
    bool ValidConverter() const { return ppdEncoding != kCFStringEncodingUnknown && status == 0; }
    const char* LanguageVersion() const { return languageVersion; }

    // Decodes the hexadecimal substrings of at most `limit` bytes of `text` and converts the result. Never
    // null: null gives "", want of memory "Out Of Memory". Bytes that are no text of their encoding become
    // U+FFFD, but for ISO Latin 2, ISO Latin 5 and Shift-JIS, where the whole byte string is taken for UTF-16
    // units in native order.
    CFStringRef ConvertToCFString(const char* text, long limit);
    CFStringRef ConvertToCFString(std::string_view text);

    // The string in the system's encoding; "Translation Error" when it does not convert or does not fit.
    // Always terminated within `size` bytes. Returns whether it converted.
    static bool CFStringToCstring(const CFStringRef& string, char* buffer, long size);

    // The two conversions one after the other.
    bool Convert(const char* text, char* buffer, long size);
    bool ppdStringConvert(CString& text);
    bool convertText(const char* text, long length, char* buffer, long size);
    // Forgets the converter made last; the next conversion makes its own.
    void resetOutputHandle();

    // Hexadecimal substrings (PPD format 4.3, "translation strings"): each run of digits between "<" and ">"
    // becomes the bytes that its digit pairs denote. White space (blank, tab, CR, LF) between digits is
    // passed over. From the first "<" on that has no ">", holds another character or an odd number of digits,
    // the rest is copied as it is. `out` holds at least in.size() bytes; no terminator is written. Returns
    // the number of bytes written.
    static std::size_t DehexBufferFill(std::string_view in, char* out);
    // The value of a hexadecimal digit, -1 for any other character.
    static int toShort(char digit);
    // The digit at or after `position`, white space passed over, and the position behind it; 0 at the end of
    // `run`.
    static char nextHexChar(std::string_view run, std::size_t& position);

private:
    std::u16string ToUnicode(std::string_view bytes);

    CFStringEncoding ppdEncoding = kCFStringEncodingUnknown;
    CFStringEncoding currentEncoding = kCFStringEncodingUTF8;
    CFStringEncoding toUnicodeEncoding = kCFStringEncodingUnknown; // the source encoding that was used last
    int status = 0;
    CString languageVersion;
};

// The names of languages whose job-note texts may come as hexadecimal substrings.
class HexLanguageExceptions {
public:
    HexLanguageExceptions();
    virtual ~HexLanguageExceptions();
    // Exact, case-sensitive.
    bool IsException(std::string_view language) const { return names.contains(language); }

private:
    std::set<std::string, std::less<>> names;
};

} // namespace torka
