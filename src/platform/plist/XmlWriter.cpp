// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/XmlWriter.h"

#include "platform/TextEncoding.h"
#include "platform/plist/LibraryForms.h"
#include "platform/plist/PlainForm.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

namespace torka::platform {

namespace {

// Counts the bytes of a list.
class Counter {
public:
    void Put(std::string_view text) { count += text.size(); }
    void Put(char /*c*/) { ++count; }
    std::size_t Count() const { return count; }

private:
    std::size_t count = 0;
};

// Writes them. REQUIRES: room for as many as the Counter has counted.
class Filler {
public:
    explicit Filler(std::uint8_t* room)
        : place(room) {}
    void Put(std::string_view text) {
        std::memcpy(place, text.data(), text.size());
        place += text.size();
    }
    void Put(char c) { *place++ = static_cast<std::uint8_t>(c); }

private:
    std::uint8_t* place;
};

// Each function returns false for what a list cannot hold.
template <typename Sink>
class Writer {
public:
    explicit Writer(Sink& output)
        : sink(output) {}

    bool PutValue(const CFObject* object, int depth);

private:
    // `depth` begins with 1; the outermost value is not indented.
    void PutTabs(int depth) {
        for (int i = 1; i < depth; ++i) {
            sink.Put('\t');
        }
    }
    bool PutElement(std::string_view begin, std::string_view end, const CFString& text, int depth) {
        PutTabs(depth);
        sink.Put(begin);
        if (!PutText(text.units)) {
            return false;
        }
        sink.Put(end);
        return true;
    }
    bool PutText(std::u16string_view units);
    void PutCharacter(char32_t c);
    bool PutNumber(const CFNumber& number);
    void PutData(const std::vector<std::uint8_t>& bytes, int depth);
    bool PutArray(const CFArray& array, int depth);
    bool PutDictionary(const CFDictionary& dictionary, int depth);

    Sink& sink;
    std::size_t values = 0;
};

template <typename Sink>
void Writer<Sink>::PutCharacter(char32_t c) {
    const auto last6 = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (c < 0x80) {
        sink.Put(static_cast<char>(c));
        return;
    }
    if (c < 0x800) {
        sink.Put(static_cast<char>(0xC0 | (c >> 6)));
    } else if (c < 0x10000) {
        sink.Put(static_cast<char>(0xE0 | (c >> 12)));
        sink.Put(last6(c >> 6));
    } else {
        sink.Put(static_cast<char>(0xF0 | (c >> 18)));
        sink.Put(last6(c >> 12));
        sink.Put(last6(c >> 6));
    }
    sink.Put(last6(c));
}

template <typename Sink>
bool Writer<Sink>::PutText(std::u16string_view units) {
    for (std::size_t i = 0; i < units.size();) {
        const char32_t c = units[i] < 0x80 ? units[i++] : nextCodePoint(units, i);
        switch (c) {
        case U'<':
            sink.Put("&lt;");
            break;
        case U'>':
            sink.Put("&gt;");
            break;
        case U'&':
            sink.Put("&amp;");
            break;
        case U'\r':
            sink.Put("&#13;");
            break;
        default:
            if ((c < 0x20 && c != U'\t' && c != U'\n') || (c >= 0xD800 && c < 0xE000) || c == 0xFFFE ||
                c == 0xFFFF) {
                return false;
            }
            PutCharacter(c);
        }
    }
    return true;
}

template <typename Sink>
bool Writer<Sink>::PutNumber(const CFNumber& number) {
    if (number.isReal) {
        if (!std::isfinite(number.real)) {
            return false;
        }
        sink.Put("<real>");
        sink.Put(libraryReal(number.real));
        sink.Put("</real>");
        return true;
    }
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), number.integer).ptr;
    sink.Put("<integer>");
    sink.Put({digits.data(), static_cast<std::size_t>(end - digits.data())});
    sink.Put("</integer>");
    return true;
}

// Base 64 in lines of 76 columns with tabs of eight, indented as the element is, but by eight tabs at most.
template <typename Sink>
void Writer<Sink>::PutData(const std::vector<std::uint8_t>& bytes, int depth) {
    static constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr int maximumTabs = 8;
    const int tabs = std::min(depth - 1, maximumTabs);
    const std::size_t lineBytes = (76 - static_cast<std::size_t>(tabs) * 8) / 4 * 3;
    sink.Put("<data>\n");
    for (std::size_t line = 0; line < bytes.size(); line += lineBytes) {
        PutTabs(tabs + 1);
        const std::size_t lineEnd = std::min(line + lineBytes, bytes.size());
        for (std::size_t at = line; at < lineEnd; at += 3) {
            const std::size_t held = std::min<std::size_t>(lineEnd - at, 3);
            const std::uint32_t group = static_cast<std::uint32_t>(bytes[at]) << 16 |
                                        (held > 1 ? static_cast<std::uint32_t>(bytes[at + 1]) << 8 : 0U) |
                                        (held > 2 ? static_cast<std::uint32_t>(bytes[at + 2]) : 0U);
            for (unsigned i = 0; i < 4; ++i) {
                sink.Put(i <= held ? alphabet[group >> (18 - 6 * i) & 0x3F] : '=');
            }
        }
        sink.Put('\n');
    }
    PutTabs(depth);
    sink.Put("</data>");
}

template <typename Sink>
bool Writer<Sink>::PutArray(const CFArray& array, int depth) {
    if (array.values.empty()) {
        sink.Put("<array/>");
        return true;
    }
    sink.Put("<array>\n");
    for (const CFTypeRef& value : array.values) {
        if (!PutValue(value.get(), depth + 1)) {
            return false;
        }
    }
    PutTabs(depth);
    sink.Put("</array>");
    return true;
}

template <typename Sink>
bool Writer<Sink>::PutDictionary(const CFDictionary& dictionary, int depth) {
    if (dictionary.Pairs().empty()) {
        sink.Put("<dict/>");
        return true;
    }
    sink.Put("<dict>\n");
    for (const auto& [key, value] : dictionary.Pairs()) {
        if (!PutElement("<key>", "</key>\n", *key, depth + 1) || !PutValue(value.get(), depth + 1)) {
            return false;
        }
    }
    PutTabs(depth);
    sink.Put("</dict>");
    return true;
}

template <typename Sink>
bool Writer<Sink>::PutValue(const CFObject* object, int depth) {
    if (object == nullptr || ++values > maximumPropertyListValues) {
        return false;
    }
    bool isWritten = true;
    const CFTypeID type = object->TypeID();
    if (type == CFTypeID::string) {
        return PutElement("<string>", "</string>\n", *static_cast<const CFString*>(object), depth);
    }
    PutTabs(depth);
    switch (type) {
    case CFTypeID::number:
        isWritten = PutNumber(*static_cast<const CFNumber*>(object));
        break;
    case CFTypeID::boolean:
        sink.Put(static_cast<const CFBoolean*>(object)->value ? "<true/>" : "<false/>");
        break;
    case CFTypeID::data:
        PutData(static_cast<const CFData*>(object)->bytes, depth);
        break;
    case CFTypeID::array:
        isWritten =
            depth <= maximumPropertyListDepth && PutArray(*static_cast<const CFArray*>(object), depth);
        break;
    case CFTypeID::dictionary:
        isWritten = depth <= maximumPropertyListDepth &&
                    PutDictionary(*static_cast<const CFDictionary*>(object), depth);
        break;
    case CFTypeID::string:
    case CFTypeID::url:
        isWritten = false;
        break;
    }
    sink.Put('\n');
    return isWritten;
}

} // namespace

std::optional<std::vector<std::uint8_t>> writeXml(const CFTypeRef& list) {
    const auto& [prolog, epilog] = libraryFrame();
    Counter counter;
    if (!Writer<Counter>(counter).PutValue(list.get(), 1)) {
        return std::nullopt;
    }
    // One vector of the final size: a vector that grows would leave copies of secrets behind.
    std::vector<std::uint8_t> bytes(prolog.size() + counter.Count() + epilog.size());
    Filler filler(bytes.data());
    filler.Put(prolog);
    Writer<Filler>(filler).PutValue(list.get(), 1);
    filler.Put(epilog);
    return bytes;
}

} // namespace torka::platform
