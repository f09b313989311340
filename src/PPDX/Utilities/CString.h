// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <cstddef>
#include <string_view>

// A heap string of bytes that distinguishes an unset text (null) from an empty one.
//
// Owns its buffer, which comes from malloc. No call throws: when memory runs out, the string becomes unset.
// Not thread-safe.

namespace torka {

class CString {
public:
    CString() = default;
    CString(const char* text) { SetBuffer(text); } // null leaves it unset
    CString(const CString& other) { SetBuffer(other.buffer); }
    CString(CString&& other) noexcept;
    virtual ~CString() { ClearBuffer(); }

    // Drops the buffer without freeing it.
    void Initialize();
    // Does nothing for the current buffer itself. A text inside the current buffer is allowed.
    void SetBuffer(const char* text);
    void SetBuffer(std::string_view text); // cut at its first NUL
    void ClearBuffer();

    CString& operator=(const CString& other);
    CString& operator=(CString&& other) noexcept;
    CString& operator=(const char* text);
    // Converts to the encoding of `narrowTextEncoding` (ModelState.h). Null, and a text with a character that
    // the encoding lacks, give "".
    CString& operator=(const CFStringRef& text);

    // False when either side is null.
    bool operator==(const char* text) const;

    operator const char*() const { return buffer; }
    const char* Buffer() const { return buffer; }
    std::size_t Size() const { return length; }
    bool Empty() const { return buffer == nullptr || buffer[0] == '\0'; }

    // Given interface; no caller here
    // Converts as operator=(CFStringRef) does. Size() then counts UTF-16 units until the text changes.
    CString(const CFStringRef& text);
    // Appends in place and returns the string itself.
    CString& operator+(const char* text);
    // Replaces the first occurrence.
    void Replace(const CString& what, const CString& with);
    // Removes at most `count` bytes from `at`, a position in this buffer.
    void Remove(char* at, std::size_t count);
    // Does nothing on an unset string, for an empty text, or for a position outside this buffer.
    void Insert(char* at, const char* text);
    // An unset right-hand side equals everything.
    bool operator==(const CString& other) const;
    // Compares with the text in UTF-8.
    bool operator==(const CFStringRef& text) const;
    // Ignores the case of ASCII letters. False when either side is null.
    bool Contains(const char* text) const;

private:
    bool Holds(const char* position) const;
    void Append(const char* text);

    char* buffer = nullptr;
    std::size_t length = 0; // bytes before the terminator; units after the constructor from a CFString
};

} // namespace torka
