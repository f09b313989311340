// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/given/StringFunctions.h"

#include "platform/TextEncoding.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace torka {

namespace {

constexpr std::size_t pascalCapacity = 255;

char* mallocedCopy(std::string_view text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy != nullptr) {
        std::copy(text.begin(), text.end(), copy);
        copy[text.size()] = '\0';
    }
    return copy;
}

// Also replaces occurrences that it creates: after a replacement, the scan continues within the replacement
// and the text before it. False when the inserted bytes exceed the limit.
bool replaceRepeatedly(std::string& text, std::string_view what, std::string_view with) {
    const std::size_t limit = kReplaceLimit + text.size() / what.size() * with.size();
    std::size_t written = 0;
    std::string done;
    std::string rest(text.rbegin(), text.rend()); // reversed: its last byte is the next one
    while (!rest.empty()) {
        done.push_back(rest.back());
        rest.pop_back();
        if (done.ends_with(what)) {
            written += with.size();
            if (written > limit) {
                return false;
            }
            done.resize(done.size() - what.size());
            rest.append(with.rbegin(), with.rend());
        }
    }
    text = std::move(done);
    return true;
}

void replaceOnce(std::string& text, std::string_view what, std::string_view with) {
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = 0; (at = text.find(what, from)) != std::string::npos; from = at + what.size()) {
        result.append(text, from, at - from).append(with);
    }
    text = result.append(text, from);
}

} // namespace

unsigned char* ctoPStr(const char* src, unsigned char* dst) {
    if (dst != nullptr) {
        const std::size_t length = src != nullptr ? strnlen(src, pascalCapacity) : 0;
        std::copy_n(src, length, dst + 1);
        dst[0] = static_cast<unsigned char>(length);
    }
    return dst;
}

char* ptoCStr(const unsigned char* src, char* dst) {
    if (dst != nullptr) {
        const std::size_t length = src != nullptr ? src[0] : 0;
        std::copy_n(length > 0 ? src + 1 : nullptr, length, dst);
        dst[length] = '\0';
    }
    return dst;
}

void num2String(int number, char* dst) {
    if (dst != nullptr) {
        *std::to_chars(dst, dst + kNumberCapacity - 1, number).ptr = '\0';
    }
}

void float2String(char* dst, float number) {
    if (dst == nullptr) {
        return;
    }
    constexpr std::size_t width = 9;
    char digits[kNumberCapacity];
    const double value = static_cast<double>(number);
    const char* const end =
        std::to_chars(digits, digits + kNumberCapacity - 1, value, std::chars_format::fixed, 4).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    char* place = std::fill_n(dst, length < width ? width - length : 0, ' ');
    place = std::copy_n(digits, length, place);
    *place = '\0';
}

std::int32_t string2Number(const char* text) {
    const CFStringRef string =
        text != nullptr ? CFStringCreateWithCString(text, CFStringGetSystemEncoding()) : nullptr;
    return CFStringGetIntValue(string);
}

std::size_t deleteCharRangeInStr(char* text, std::uint16_t from, std::uint16_t to) {
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    const std::size_t end = std::min<std::size_t>(to, length);
    if (from >= end) {
        return length;
    }
    std::memmove(text + from, text + end, length - end + 1);
    return length - (end - from);
}

char* findChar(char* text, char character) {
    return text != nullptr ? std::strchr(text, character) : nullptr;
}

const char* findChar(const char* text, char character) {
    return text != nullptr ? std::strchr(text, character) : nullptr;
}

char* newInitalizedCString(std::size_t count, char character) {
    if (count == std::numeric_limits<std::size_t>::max()) {
        return nullptr;
    }
    auto* const text = static_cast<char*>(std::malloc(count + 1));
    if (text != nullptr) {
        *std::fill_n(text, count, character) = '\0';
    }
    return text;
}

int validateRangeValues(const char* text, int maxDigits) {
    int run = 0;
    for (; text != nullptr && *text != '\0'; ++text) {
        run = *text >= '0' && *text <= '9' ? run + 1 : 0;
        if (run > maxDigits) {
            return 0;
        }
    }
    return 1;
}

int wtoi(const wchar_t* text) {
    if (text == nullptr) {
        return 0;
    }
    while (*text == L' ' || (*text >= L'\t' && *text <= L'\r')) {
        ++text;
    }
    const bool isNegative = *text == L'-';
    text += isNegative || *text == L'+' ? 1 : 0;
    long long value = 0;
    for (; *text >= L'0' && *text <= L'9'; ++text) {
        value = std::min<long long>(value * 10 + (*text - L'0'), 1LL + INT_MAX);
    }
    return static_cast<int>(isNegative ? -value : std::min<long long>(value, INT_MAX));
}

char* _replace(const char* src, const char* what, const char* with) {
    if (src == nullptr || what == nullptr || with == nullptr) {
        return nullptr;
    }
    try {
        std::string text(src);
        if (*what == '\0') {
            return mallocedCopy(text);
        }
        if (std::strstr(with, what) != nullptr) {
            replaceOnce(text, what, with);
        } else if (!replaceRepeatedly(text, what, with)) {
            return nullptr;
        }
        return mallocedCopy(text);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace torka
