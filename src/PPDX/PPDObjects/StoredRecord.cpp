// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/StoredRecord.h"

#include "PPDX/PPDObjects/NumberText.h"
#include "platform/TextEncoding.h"

#include <algorithm>

namespace torka {

namespace {

// XML cannot hold the other control characters, and changes a carriage return to a line feed.
bool isPlain(std::string_view bytes) {
    const bool hasControl = std::ranges::any_of(bytes, [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F;
    });
    return !hasControl && decodeText(bytes, kCFStringEncodingUTF8).has_value();
}

int hexValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

std::optional<std::string> fromHex(std::string_view digits) {
    if (digits.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = hexValue(digits[i]);
        const int low = hexValue(digits[i + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(high * 16 + low));
    }
    return bytes;
}

} // namespace

StoredRecord::StoredRecord(Settings& store, std::string_view prefix, int index)
    : settings(store)
    , start(std::string(prefix) + std::to_string(index) + '.') {}

std::string StoredRecord::Key(std::string_view field) const { return start + std::string(field); }

void StoredRecord::SetText(std::string_view field, std::string_view bytes) {
    std::string stored;
    if (isPlain(bytes)) {
        stored = "=";
        stored += bytes;
    } else {
        stored = "#";
        appendHex(bytes, stored);
    }
    settings.Set(Key(field), stored);
}

void StoredRecord::SetText(std::string_view field, const char* text) {
    if (text) {
        SetText(field, std::string_view(text));
    }
}

void StoredRecord::SetInteger(std::string_view field, std::int64_t value) {
    settings.SetInteger(Key(field), value);
}

void StoredRecord::SetReal(std::string_view field, double value) { settings.SetReal(Key(field), value); }

std::optional<std::string> StoredRecord::Text(std::string_view field) const {
    const std::optional<std::string> stored = settings.Get(Key(field));
    if (!stored || stored->empty()) {
        return std::nullopt;
    }
    const std::string_view content = std::string_view(*stored).substr(1);
    switch (stored->front()) {
    case '=':
        return std::string(content);
    case '#':
        return fromHex(content);
    default:
        return std::nullopt;
    }
}

std::int64_t StoredRecord::Integer(std::string_view field, std::int64_t otherwise) const {
    return settings.GetInteger(Key(field)).value_or(otherwise);
}

int StoredRecord::Index(std::string_view field) const {
    const std::int64_t value = Integer(field);
    return value >= 0 && value <= 1'000'000'000 ? static_cast<int>(value) : 0;
}

float StoredRecord::Real(std::string_view field) const {
    return nearestFloat(settings.GetReal(Key(field)).value_or(0));
}

} // namespace torka
