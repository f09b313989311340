// SPDX-License-Identifier: Apache-2.0
#include "platform/CoreFoundation.h"

#include "platform/SecretMemory.h"
#include "platform/TextCase.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace torka::platform {

namespace {

std::size_t skipBlanks(std::u16string_view text) {
    std::size_t position = 0;
    while (position < text.size() && isWhiteSpace(text[position])) {
        ++position;
    }
    return position;
}

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Whether a decimal number outside the range of double is too large, and not too small.
bool isLarge(std::string_view number) {
    const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, mark);
    std::int64_t exponent = 0;
    const bool signedUp = mark + 1 < number.size() && number[mark + 1] == '+';
    const std::string_view power = number.substr(std::min(mark + (signedUp ? 2 : 1), number.size()));
    if (std::from_chars(power.data(), power.data() + power.size(), exponent).ec ==
        std::errc::result_out_of_range) {
        return power.front() != '-';
    }
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_of("123456789");
    const auto magnitude = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    return exponent > -magnitude;
}

// Whether a real equals this integer exactly. The largest integers round to 2^63, which is no 64-bit integer.
bool denotes(double real, std::int64_t integer) {
    return real < 9223372036854775808.0 && static_cast<double>(integer) == real &&
           CFNumber::heldInteger(real) == integer;
}

int compareFolded(std::u16string_view left, std::u16string_view right) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < left.size() && j < right.size()) {
        char32_t a = nextCodePoint(left, i);
        char32_t b = nextCodePoint(right, j);
        if (a != b) {
            a = foldCase(a);
            b = foldCase(b);
            if (a != b) {
                return a < b ? -1 : 1;
            }
        }
    }
    if (i < left.size()) {
        return 1;
    }
    return j < right.size() ? -1 : 0;
}

} // namespace

CFString::~CFString() { wipeText(units); }

CFData::~CFData() { wipeText(bytes); }

CFObject::~CFObject() = default;

// Strings

CFStringRef CFStringCreateWithBytes(const char* bytes, CFIndex length, CFStringEncoding encoding) {
    if (length < 0 || (!bytes && length > 0)) {
        return nullptr;
    }
    auto units = decodeText({bytes, static_cast<std::size_t>(length)}, encoding);
    return units ? std::make_shared<const CFString>(std::move(*units)) : nullptr;
}

CFStringRef CFStringCreateWithCString(const char* text, CFStringEncoding encoding) {
    return text ? CFStringCreateWithBytes(text, static_cast<CFIndex>(std::strlen(text)), encoding) : nullptr;
}

CFStringRef CFStringCreateWithCharacters(std::u16string_view units) {
    return std::make_shared<const CFString>(std::u16string(units));
}

CFIndex CFStringGetLength(const CFStringRef& text) {
    return text ? static_cast<CFIndex>(text->units.size()) : 0;
}

UniChar CFStringGetCharacterAtIndex(const CFStringRef& text, CFIndex index) {
    return index >= 0 && index < CFStringGetLength(text) ? text->units[static_cast<std::size_t>(index)]
                                                         : u'\0';
}

bool CFStringGetCString(const CFStringRef& text, char* buffer, CFIndex size, CFStringEncoding encoding) {
    if (!buffer || size <= 0) {
        return false;
    }
    buffer[0] = '\0';
    if (!text) {
        return false;
    }
    const auto bytes = encodeText(text->units, encoding);
    if (!bytes || bytes->size() >= static_cast<std::size_t>(size)) {
        return false;
    }
    std::memcpy(buffer, bytes->c_str(), bytes->size() + 1);
    return true;
}

CFStringRef CFStringCreateWithSubstring(const CFStringRef& text, CFIndex location, CFIndex length) {
    const CFIndex whole = CFStringGetLength(text);
    if (!text || location < 0 || length < 0 || location > whole || length > whole - location) {
        return nullptr;
    }
    return CFStringCreateWithCharacters(
        std::u16string_view(text->units)
            .substr(static_cast<std::size_t>(location), static_cast<std::size_t>(length)));
}

std::int32_t CFStringGetIntValue(const CFStringRef& text) {
    if (!text) {
        return 0;
    }
    const std::u16string_view units = text->units;
    std::size_t position = skipBlanks(units);
    bool negative = false;
    if (position < units.size() && (units[position] == u'-' || units[position] == u'+')) {
        negative = units[position] == u'-';
        ++position;
    }
    constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    for (; position < units.size() && isDigit(units[position]); ++position) {
        value = std::min(value * 10 + (units[position] - u'0'), largest + 1);
    }
    return static_cast<std::int32_t>(negative ? -value : std::min(value, largest));
}

double CFStringGetDoubleValue(const CFStringRef& text) {
    if (!text) {
        return 0.0;
    }
    const std::u16string_view units = text->units;
    std::size_t position = skipBlanks(units);
    // Passes only a decimal number to from_chars, which would also read "inf" and "nan".
    std::string number;
    if (position < units.size() && (units[position] == u'-' || units[position] == u'+')) {
        if (units[position] == u'-') {
            number += '-';
        }
        ++position;
    }
    if (position >= units.size() || !(isDigit(units[position]) || units[position] == u'.')) {
        return 0.0;
    }
    for (; position < units.size(); ++position) {
        const char16_t unit = units[position];
        if (!isDigit(unit) && unit != u'.' && unit != u'e' && unit != u'E' && unit != u'-' && unit != u'+') {
            break;
        }
        number += static_cast<char>(unit);
    }
    double value = 0.0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        if (!isLarge({number.data(), static_cast<std::size_t>(result.ptr - number.data())})) {
            return 0.0;
        }
        constexpr double largest = std::numeric_limits<double>::max();
        return number.front() == '-' ? -largest : largest;
    }
    return result.ec == std::errc() ? value : 0.0;
}

int CFStringCompare(const CFStringRef& left, const CFStringRef& right, unsigned flags) {
    if (!left || !right) {
        return static_cast<int>(left != nullptr) - static_cast<int>(right != nullptr);
    }
    if ((flags & kCFCompareCaseInsensitive) != 0) {
        return compareFolded(left->units, right->units);
    }
    const int order = left->units.compare(right->units);
    return (order > 0) - (order < 0);
}

bool CFStringHasPrefix(const CFStringRef& text, std::u16string_view prefix) {
    return text && text->units.starts_with(prefix);
}

bool CFStringHasSuffix(const CFStringRef& text, std::u16string_view suffix) {
    return text && text->units.ends_with(suffix);
}

CFStringRef cfString(std::string_view utf8) {
    auto units = decodeTextLossy(utf8, kCFStringEncodingUTF8);
    return std::make_shared<const CFString>(units ? std::move(*units) : std::u16string());
}

std::string utf8Text(const CFStringRef& text) { return text ? utf8FromUtf16(text->units) : std::string(); }

// Numbers and data

CFNumber::CFNumber(double number)
    : isReal(true)
    , integer(heldInteger(number))
    , real(number) {}

std::int64_t CFNumber::heldInteger(double number) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(number)) {
        return 0;
    }
    if (number >= limit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (number < -limit) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return static_cast<std::int64_t>(number);
}

CFNumberRef CFNumberCreate(std::int32_t value) {
    return std::make_shared<const CFNumber>(static_cast<std::int64_t>(value));
}

CFNumberRef CFNumberCreate(std::int64_t value) { return std::make_shared<const CFNumber>(value); }

CFNumberRef CFNumberCreate(double value) { return std::make_shared<const CFNumber>(value); }

bool CFNumberGetValue(const CFNumberRef& number, std::int32_t& out) {
    std::int64_t wide = 0;
    const bool exact = CFNumberGetValue(number, wide);
    if (!number) {
        return false;
    }
    constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    out = static_cast<std::int32_t>(std::clamp(wide, least, most));
    return exact && out == wide;
}

bool CFNumberGetValue(const CFNumberRef& number, std::int64_t& out) {
    if (!number) {
        return false;
    }
    out = number->integer;
    return !number->isReal || denotes(number->real, number->integer);
}

bool CFNumberGetValue(const CFNumberRef& number, double& out) {
    if (!number) {
        return false;
    }
    out = number->real;
    return number->isReal || denotes(number->real, number->integer);
}

CFBooleanRef CFBooleanCreate(bool value) {
    static const CFBooleanRef states[] = {std::make_shared<const CFBoolean>(false),
                                          std::make_shared<const CFBoolean>(true)};
    return states[value ? 1 : 0];
}

bool CFBooleanGetValue(const CFBooleanRef& value) { return value && value->value; }

CFDataRef CFDataCreate(const void* bytes, std::size_t length) {
    if (!bytes) {
        return length == 0 ? std::make_shared<const CFData>(std::vector<std::uint8_t>()) : nullptr;
    }
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    return std::make_shared<const CFData>(std::vector<std::uint8_t>(first, first + length));
}

std::span<const std::uint8_t> CFDataGetBytes(const CFDataRef& data) {
    return data ? std::span<const std::uint8_t>(data->bytes) : std::span<const std::uint8_t>();
}

CFIndex CFDataGetLength(const CFDataRef& data) { return data ? static_cast<CFIndex>(data->bytes.size()) : 0; }

// Collections

CFArray::CFArray(std::vector<CFTypeRef> elements)
    : values([&elements] {
        std::erase(elements, nullptr);
        return std::move(elements);
    }()) {}

CFArrayRef CFArrayCreate(std::vector<CFTypeRef> values) {
    return std::make_shared<const CFArray>(std::move(values));
}

CFIndex CFArrayGetCount(const CFArrayRef& array) {
    return array ? static_cast<CFIndex>(array->values.size()) : 0;
}

CFTypeRef CFArrayGetValueAtIndex(const CFArrayRef& array, CFIndex index) {
    return index >= 0 && index < CFArrayGetCount(array) ? array->values[static_cast<std::size_t>(index)]
                                                        : nullptr;
}

CFDictionary::CFDictionary(const std::vector<Pair>& content) {
    pairs.reserve(content.size());
    positions.reserve(content.size());
    for (const Pair& pair : content) {
        if (!pair.first || !pair.second) {
            continue;
        }
        const auto [place, isNew] = positions.try_emplace(pair.first->units, pairs.size());
        if (isNew) {
            pairs.push_back(pair);
        } else {
            pairs[place->second].second = pair.second;
        }
    }
}

CFTypeRef CFDictionary::Find(std::u16string_view key) const {
    const auto place = positions.find(key);
    return place == positions.end() ? nullptr : pairs[place->second].second;
}

CFDictionaryRef CFDictionaryCreate(const std::vector<CFDictionary::Pair>& pairs) {
    return std::make_shared<const CFDictionary>(pairs);
}

CFIndex CFDictionaryGetCount(const CFDictionaryRef& dictionary) {
    return dictionary ? static_cast<CFIndex>(dictionary->Pairs().size()) : 0;
}

CFTypeRef CFDictionaryGetValue(const CFDictionaryRef& dictionary, const CFStringRef& key) {
    return dictionary && key ? dictionary->Find(key->units) : nullptr;
}

CFTypeRef CFDictionaryGetValue(const CFDictionaryRef& dictionary, std::u16string_view key) {
    return dictionary ? dictionary->Find(key) : nullptr;
}

// Equality

namespace {

bool sameNumber(const CFNumber& left, const CFNumber& right) {
    if (left.isReal == right.isReal) {
        return left.isReal ? left.real == right.real : left.integer == right.integer;
    }
    return left.isReal ? denotes(left.real, right.integer) : denotes(right.real, left.integer);
}

bool sameElements(const CFArray& left, const CFArray& right) {
    return std::equal(left.values.begin(), left.values.end(), right.values.begin(), right.values.end(),
                      CFEqual);
}

bool samePairs(const CFDictionary& left, const CFDictionary& right) {
    return left.Pairs().size() == right.Pairs().size() &&
           std::all_of(left.Pairs().begin(), left.Pairs().end(), [&right](const CFDictionary::Pair& pair) {
               return CFEqual(pair.second, right.Find(pair.first->units));
           });
}

} // namespace

bool CFEqual(const CFTypeRef& left, const CFTypeRef& right) {
    if (left == right) {
        return true;
    }
    if (!left || !right || left->TypeID() != right->TypeID()) {
        return false;
    }
    switch (left->TypeID()) {
    case CFTypeID::string:
        return cfCast<CFString>(left)->units == cfCast<CFString>(right)->units;
    case CFTypeID::number:
        return sameNumber(*cfCast<CFNumber>(left), *cfCast<CFNumber>(right));
    case CFTypeID::boolean:
        return cfCast<CFBoolean>(left)->value == cfCast<CFBoolean>(right)->value;
    case CFTypeID::data:
        return cfCast<CFData>(left)->bytes == cfCast<CFData>(right)->bytes;
    case CFTypeID::array:
        return sameElements(*cfCast<CFArray>(left), *cfCast<CFArray>(right));
    case CFTypeID::dictionary:
        return samePairs(*cfCast<CFDictionary>(left), *cfCast<CFDictionary>(right));
    case CFTypeID::url:
        return cfCast<CFURL>(left)->text == cfCast<CFURL>(right)->text;
    }
    return false;
}

} // namespace torka::platform
