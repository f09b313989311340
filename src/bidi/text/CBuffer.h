// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace torka {

// Builds a record's text piece by piece. Narrow text is UTF-8.
class CBuffer {
public:
    void AddString(std::wstring_view piece);
    void AddInt(int value);
    const std::wstring& GetStringData() const { return text; }

    // Given interface; no caller here
    void AddCString(std::string_view piece);
    void AddFloat(float value);
    std::string GetCStrData() const;

private:
    std::wstring text;
};

} // namespace torka
