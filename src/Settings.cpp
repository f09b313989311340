// SPDX-License-Identifier: Apache-2.0
#include "Settings.h"

#include <charconv>
#include <system_error>
#include <vector>

namespace torka {

namespace {

template <typename Number>
std::string textOf(Number value) {
    char digits[64];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

template <typename Number>
std::optional<Number> numberOf(const std::optional<std::string>& text) {
    Number value{};
    if (!text) {
        return std::nullopt;
    }
    const char* const end = text->data() + text->size();
    const auto result = std::from_chars(text->data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

} // namespace

Settings::Settings(const CFDictionaryRef& stored) {
    if (!stored) {
        return;
    }
    for (const auto& [key, value] : stored->Pairs()) {
        if (const CFStringRef text = cfCast<CFString>(value)) {
            values[utf8Text(key)] = utf8Text(text);
        }
    }
}

void Settings::Set(std::string_view key, std::string_view value) { values[std::string(key)] = value; }

void Settings::SetInteger(std::string_view key, std::int64_t value) { Set(key, textOf(value)); }

void Settings::SetReal(std::string_view key, double value) { Set(key, textOf(value)); }

void Settings::Remove(std::string_view key) {
    if (const auto place = values.find(key); place != values.end()) {
        values.erase(place);
    }
}

std::optional<std::string> Settings::Get(std::string_view key) const {
    const auto place = values.find(key);
    return place != values.end() ? std::optional(place->second) : std::nullopt;
}

std::optional<std::int64_t> Settings::GetInteger(std::string_view key) const {
    return numberOf<std::int64_t>(Get(key));
}

std::optional<double> Settings::GetReal(std::string_view key) const { return numberOf<double>(Get(key)); }

CFDictionaryRef Settings::CopyAsDictionary() const {
    std::vector<CFDictionary::Pair> pairs;
    for (const auto& [key, value] : values) {
        pairs.emplace_back(cfString(key), cfString(value));
    }
    return CFDictionaryCreate(pairs);
}

} // namespace torka
