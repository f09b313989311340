// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

// The Core Foundation values that the system uses, under the names of their calls.
//
// Handles are shared pointers to immutable objects. Null means an absent value, a copy is cheap, and nothing
// is released by hand. Strings hold UTF-16 units; every length and position counts these. Unless stated
// otherwise, calls accept null handles and return 0, false or null for them. Several threads may read a
// value. Strings and data may be secret: they are wiped when the last handle goes.

namespace torka::platform {

using CFIndex = std::int64_t;
using CFStringEncoding = std::uint32_t;
using OSStatus = std::int32_t;
inline constexpr OSStatus noErr = 0;
using UniChar = char16_t;

enum class CFTypeID { string, number, boolean, data, array, dictionary, url };

class CFObject {
public:
    CFObject() = default;
    CFObject(const CFObject&) = delete;
    CFObject& operator=(const CFObject&) = delete;
    virtual ~CFObject();
    virtual CFTypeID TypeID() const = 0;
};

class CFString;
class CFNumber;
class CFBoolean;
class CFData;
class CFArray;
class CFDictionary;
class CFURL;

using CFTypeRef = std::shared_ptr<const CFObject>;
using CFPropertyListRef = CFTypeRef;
using CFStringRef = std::shared_ptr<const CFString>;
using CFNumberRef = std::shared_ptr<const CFNumber>;
using CFBooleanRef = std::shared_ptr<const CFBoolean>;
using CFDataRef = std::shared_ptr<const CFData>;
using CFArrayRef = std::shared_ptr<const CFArray>;
using CFDictionaryRef = std::shared_ptr<const CFDictionary>;
using CFURLRef = std::shared_ptr<const CFURL>;

class CFString final : public CFObject {
public:
    static constexpr CFTypeID typeID = CFTypeID::string;
    explicit CFString(std::u16string text)
        : units(std::move(text)) {}
    ~CFString() override;
    CFTypeID TypeID() const override { return typeID; }

    std::u16string units; // immutable, because handles point to const objects
};

class CFNumber final : public CFObject {
public:
    static constexpr CFTypeID typeID = CFTypeID::number;
    explicit CFNumber(std::int64_t number)
        : integer(number)
        , real(static_cast<double>(number)) {}
    explicit CFNumber(double number);
    CFTypeID TypeID() const override { return typeID; }
    // The integral part of a real, clamped to the range of the type; 0 for "not a number".
    static std::int64_t heldInteger(double number);

    const bool isReal = false;
    const std::int64_t integer; // heldInteger() for a real
    const double real;
};

class CFBoolean final : public CFObject {
public:
    static constexpr CFTypeID typeID = CFTypeID::boolean;
    explicit CFBoolean(bool state)
        : value(state) {}
    CFTypeID TypeID() const override { return typeID; }

    const bool value;
};

class CFData final : public CFObject {
public:
    static constexpr CFTypeID typeID = CFTypeID::data;
    explicit CFData(std::vector<std::uint8_t> content)
        : bytes(std::move(content)) {}
    ~CFData() override;
    CFTypeID TypeID() const override { return typeID; }

    std::vector<std::uint8_t> bytes; // immutable, because handles point to const objects
};

// Elements are never null.
class CFArray final : public CFObject {
public:
    static constexpr CFTypeID typeID = CFTypeID::array;
    explicit CFArray(std::vector<CFTypeRef> elements);
    CFTypeID TypeID() const override { return typeID; }

    const std::vector<CFTypeRef> values;
};

// Pairs in the given order. A repeated key replaces the earlier value and keeps its position.
class CFDictionary final : public CFObject {
public:
    static constexpr CFTypeID typeID = CFTypeID::dictionary;
    using Pair = std::pair<CFStringRef, CFTypeRef>;
    explicit CFDictionary(const std::vector<Pair>& content);
    CFTypeID TypeID() const override { return typeID; }
    CFTypeRef Find(std::u16string_view key) const;

    const std::vector<Pair>& Pairs() const { return pairs; }

private:
    std::vector<Pair> pairs;
    std::unordered_map<std::u16string_view, std::size_t> positions; // views into the keys of `pairs`
};

// An absolute URL as UTF-8 text.
class CFURL final : public CFObject {
public:
    static constexpr CFTypeID typeID = CFTypeID::url;
    explicit CFURL(std::string url)
        : text(std::move(url)) {}
    CFTypeID TypeID() const override { return typeID; }

    const std::string text;
};

// The value as a T, or null when it has another type: cfCast<CFString>(value).
template <typename T>
std::shared_ptr<const T> cfCast(const CFTypeRef& value) {
    return value && value->TypeID() == T::typeID ? std::static_pointer_cast<const T>(value) : nullptr;
}

// Strings. Encodings are those of TextEncoding.h.

// Null when the bytes are invalid in that encoding, or the encoding is unknown.
CFStringRef CFStringCreateWithBytes(const char* bytes, CFIndex length, CFStringEncoding encoding);
CFStringRef CFStringCreateWithCString(const char* text, CFStringEncoding encoding);
CFStringRef CFStringCreateWithCharacters(std::u16string_view units);
CFIndex CFStringGetLength(const CFStringRef& text);
// 0 outside the string.
UniChar CFStringGetCharacterAtIndex(const CFStringRef& text, CFIndex index);
// Writes the text and a terminating NUL. False, with an empty buffer, when the whole text does not fit or
// holds a character that the encoding lacks.
bool CFStringGetCString(const CFStringRef& text, char* buffer, CFIndex size, CFStringEncoding encoding);
// Null when the range does not lie within the text.
CFStringRef CFStringCreateWithSubstring(const CFStringRef& text, CFIndex location, CFIndex length);
// The decimal number behind leading white space; 0 for none. Clamped to the range of 32 bits.
std::int32_t CFStringGetIntValue(const CFStringRef& text);
// The decimal number behind leading white space in the C locale; 0.0 for none. Always finite.
double CFStringGetDoubleValue(const CFStringRef& text);

enum CFStringCompareFlags : unsigned { kCFCompareCaseInsensitive = 1 };
// Returns <0, 0 or >0. Null sorts before every string. kCFCompareCaseInsensitive uses simple case folding.
int CFStringCompare(const CFStringRef& left, const CFStringRef& right, unsigned flags = 0);
bool CFStringHasPrefix(const CFStringRef& text, std::u16string_view prefix);
bool CFStringHasSuffix(const CFStringRef& text, std::u16string_view suffix);

// Our own shorthands for UTF-8. cfString replaces invalid bytes by U+FFFD and never returns null.
CFStringRef cfString(std::string_view utf8);
// Unpaired surrogates become U+FFFD. "" for null.
std::string utf8Text(const CFStringRef& text);

// Numbers

CFNumberRef CFNumberCreate(std::int32_t value);
CFNumberRef CFNumberCreate(std::int64_t value);
CFNumberRef CFNumberCreate(double value);
// True when the number converts without loss. `out` receives the nearest value, except for a null handle.
bool CFNumberGetValue(const CFNumberRef& number, std::int32_t& out);
bool CFNumberGetValue(const CFNumberRef& number, std::int64_t& out);
bool CFNumberGetValue(const CFNumberRef& number, double& out);

CFBooleanRef CFBooleanCreate(bool value);
bool CFBooleanGetValue(const CFBooleanRef& value);

CFDataRef CFDataCreate(const void* bytes, std::size_t length);
std::span<const std::uint8_t> CFDataGetBytes(const CFDataRef& data);

// Leaves out null elements.
CFArrayRef CFArrayCreate(std::vector<CFTypeRef> values);
CFIndex CFArrayGetCount(const CFArrayRef& array);
// Null outside the array.
CFTypeRef CFArrayGetValueAtIndex(const CFArrayRef& array, CFIndex index);

// Leaves out pairs with a null key or value.
CFDictionaryRef CFDictionaryCreate(const std::vector<CFDictionary::Pair>& pairs);
CFTypeRef CFDictionaryGetValue(const CFDictionaryRef& dictionary, const CFStringRef& key);
CFTypeRef CFDictionaryGetValue(const CFDictionaryRef& dictionary, std::u16string_view key);

// URLs (RFC 3986)

// A file URL for a path. Escapes the characters that a URL must not hold.
CFURLRef CFURLCreateWithFileSystemPath(std::string_view path);
// Null when the text holds characters that a URL must not hold: white space, characters beyond ASCII, or a
// "%" that begins no escape.
CFURLRef CFURLCreateWithString(const CFStringRef& text);
CFStringRef CFURLGetString(const CFURLRef& url);
// Null when the URL has no scheme.
CFStringRef CFURLCopyScheme(const CFURLRef& url);
// The host of "scheme://[user@]host[:port]/…" with percent escapes decoded, and without the brackets of an
// IPv6 address. Null when the URL has no host.
CFStringRef CFURLCopyHostName(const CFURLRef& url);
// The path with percent escapes decoded. "" when the URL has no path or the path holds an escaped NUL.
std::string CFURLCopyFileSystemPath(const CFURLRef& url);

// The text with percent escapes decoded. Null when an escape is incomplete, or the result is invalid UTF-8 or
// holds a NUL.
CFStringRef CFURLCreateStringByReplacingPercentEscapes(const CFStringRef& text);

// A file, given by its path. Stands in for a file reference, which this system does not have.
struct FSRef {
    std::string path;
};
// False unless the URL is a file URL with a path.
bool CFURLGetFSRef(const CFURLRef& url, FSRef& file);

// Whether two values have the same type and content. Null equals only null.
bool CFEqual(const CFTypeRef& left, const CFTypeRef& right);

// For the tests; no caller here
CFIndex CFDataGetLength(const CFDataRef& data);
CFIndex CFDictionaryGetCount(const CFDictionaryRef& dictionary);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
