// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/CString.h"

#include "PPDX/Utilities/MemoryShortage.h"
#include "PPDX/Utilities/ModelState.h"
#include "platform/SecretMemory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace torka {

std::uint64_t gMemoryShortages = 0;

namespace {

struct Freer {
    void operator()(char* block) const { std::free(block); }
};
using Block = std::unique_ptr<char, Freer>;

Block newBlock(std::size_t size) {
    Block block(static_cast<char*>(std::malloc(size)));
    gMemoryShortages += block ? 0U : 1U;
    return block;
}

char lowerAscii(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte; }

} // namespace

CString::CString(CString&& other) noexcept
    : buffer(other.buffer)
    , length(other.length) {
    other.Initialize();
}

CString::CString(const CFStringRef& text) {
    *this = text;
    if (buffer != nullptr) {
        length = static_cast<std::size_t>(CFStringGetLength(text));
    }
}

void CString::Initialize() {
    buffer = nullptr;
    length = 0;
}

void CString::SetBuffer(const char* text) {
    if (text == nullptr) {
        ClearBuffer();
    } else if (text != buffer) {
        SetBuffer(std::string_view(text));
    }
}

void CString::SetBuffer(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    Block copy = newBlock(text.size() + 1);
    if (copy) {
        std::copy(text.begin(), text.end(), copy.get());
        copy.get()[text.size()] = '\0';
    }
    ClearBuffer();
    length = copy ? text.size() : 0;
    buffer = copy.release();
}

void CString::ClearBuffer() {
    if (buffer != nullptr) {
        platform::wipe(buffer, std::strlen(buffer)); // the text may be a secret note
    }
    std::free(buffer);
    Initialize();
}

CString& CString::operator=(const CString& other) {
    if (this != &other) {
        SetBuffer(other.buffer);
    }
    return *this;
}

CString& CString::operator=(CString&& other) noexcept {
    if (this != &other) {
        ClearBuffer();
        std::swap(buffer, other.buffer);
        std::swap(length, other.length);
    }
    return *this;
}

CString& CString::operator=(const char* text) {
    SetBuffer(text);
    return *this;
}

CString& CString::operator=(const CFStringRef& text) {
    const CFIndex capacity = 6 * CFStringGetLength(text) + 1;
    Block converted = text ? newBlock(static_cast<std::size_t>(capacity)) : nullptr;
    const bool isConverted =
        converted && CFStringGetCString(text, converted.get(), capacity, narrowTextEncoding());
    SetBuffer(isConverted ? converted.get() : "");
    return *this;
}

CString& CString::operator+(const char* text) {
    Append(text);
    return *this;
}

void CString::Append(const char* text) {
    const std::size_t added = text != nullptr ? std::strlen(text) : 0;
    if (added == 0) {
        return;
    }
    const std::size_t own = buffer != nullptr ? std::strlen(buffer) : 0;
    Block joined = newBlock(own + added + 1);
    if (joined) {
        std::copy_n(buffer, own, joined.get());
        std::copy_n(text, added + 1, joined.get() + own);
    }
    ClearBuffer();
    length = joined ? own + added : 0;
    buffer = joined.release();
}

void CString::Replace(const CString& what, const CString& with) {
    char* found = buffer != nullptr && what.buffer != nullptr ? std::strstr(buffer, what.buffer) : nullptr;
    if (found == nullptr) {
        return;
    }
    const CString text(with); // `with` may be this string
    Remove(found, std::strlen(what.buffer));
    Insert(found, text.buffer);
}

bool CString::Holds(const char* position) const {
    return buffer != nullptr && !std::less<>()(position, static_cast<const char*>(buffer)) &&
           !std::less<>()(static_cast<const char*>(buffer) + std::strlen(buffer), position);
}

void CString::Remove(char* at, std::size_t count) {
    if (!Holds(at)) {
        return;
    }
    const std::size_t rest = std::strlen(at);
    count = std::min(count, rest);
    std::memmove(at, at + count, rest - count + 1);
    length = std::strlen(buffer);
}

void CString::Insert(char* at, const char* text) {
    const std::size_t added = text != nullptr ? std::strlen(text) : 0;
    if (added == 0 || !Holds(at)) {
        return;
    }
    const auto before = static_cast<std::size_t>(at - buffer);
    const std::size_t after = std::strlen(at);
    Block joined = newBlock(before + added + after + 1);
    if (joined) {
        char* place = std::copy_n(buffer, before, joined.get());
        place = std::copy_n(text, added, place);
        std::copy_n(at, after + 1, place);
    }
    ClearBuffer();
    length = joined ? before + added + after : 0;
    buffer = joined.release();
}

bool CString::operator==(const CString& other) const {
    return other.buffer == nullptr || *this == other.buffer;
}

bool CString::operator==(const char* text) const {
    return buffer != nullptr && text != nullptr && std::strcmp(buffer, text) == 0;
}

bool CString::operator==(const CFStringRef& text) const {
    const CFIndex capacity = 4 * CFStringGetLength(text) + 1;
    const std::unique_ptr<char[]> utf8(new (std::nothrow) char[static_cast<std::size_t>(capacity)]());
    if (!utf8 || buffer == nullptr) {
        return false;
    }
    CFStringGetCString(text, utf8.get(), capacity, kCFStringEncodingUTF8);
    return std::strcmp(buffer, utf8.get()) == 0;
}

bool CString::Contains(const char* text) const {
    if (buffer == nullptr || text == nullptr) {
        return false;
    }
    const std::string_view own(buffer);
    const std::string_view sought(text);
    return std::search(own.begin(), own.end(), sought.begin(), sought.end(),
                       [](char left, char right) { return lowerAscii(left) == lowerAscii(right); }) !=
               own.end() ||
           sought.empty();
}

} // namespace torka
