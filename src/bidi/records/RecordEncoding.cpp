// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/RecordEncoding.h"

#include <cstring>

namespace torka {

ChunkName::ChunkName(std::string_view recordName)
    : nameLength(recordName.size())
    , usable(!recordName.empty() && recordName.size() <= maximumRecordName &&
             recordName.find_first_of("\r\n") == std::string_view::npos) {
    text.reserve(maximumChunkName);
    if (usable) {
        text = recordName;
        SetNumber(0);
    }
}

// Writes at least four lower-case hexadecimal digits.
bool ChunkName::SetNumber(std::size_t number) {
    std::size_t digits = 4;
    while (digits < 2 * sizeof number && number >> (4 * digits) != 0) {
        ++digits;
    }
    if (nameLength + digits > maximumChunkName) {
        return false;
    }
    text.resize(nameLength + digits);
    for (std::size_t i = text.size(); i > nameLength; number >>= 4) {
        text[--i] = "0123456789abcdef"[number & 0xFU];
    }
    return true;
}

std::wstring wideFromPayload(std::string_view payload) {
    std::wstring text(payload.size() / sizeof(wchar_t), L'\0');
    if (!text.empty()) {
        std::memcpy(text.data(), payload.data(), text.size() * sizeof(wchar_t));
    }
    return text;
}

std::string_view payloadFromWide(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

} // namespace torka
