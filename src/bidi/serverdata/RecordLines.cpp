// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/RecordLines.h"

#include <algorithm>
#include <limits>

namespace torka {

bool isProperWideText(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t unit) {
        const auto point = static_cast<char32_t>(unit);
        return point != 0 && point <= 0x10FFFF && (point < 0xD800 || point > 0xDFFF);
    });
}

std::optional<std::int32_t> wholeNumber(std::wstring_view text) {
    const bool isNegative = text.starts_with(L'-');
    text.remove_prefix(isNegative ? 1 : 0);
    if (text.empty()) {
        return std::nullopt;
    }
    const std::int64_t most = std::int64_t{std::numeric_limits<std::int32_t>::max()} + (isNegative ? 1 : 0);
    std::int64_t value = 0;
    for (const wchar_t digit : text) {
        if (digit < L'0' || digit > L'9') {
            return std::nullopt;
        }
        value = value * 10 + (digit - L'0');
        if (value > most) {
            return std::nullopt;
        }
    }
    return static_cast<std::int32_t>(isNegative ? -value : value);
}

std::optional<std::wstring_view> RecordLines::Next() {
    if (rest.empty()) {
        return std::nullopt;
    }
    const std::size_t end = rest.find(L'\n');
    ended = end != std::wstring_view::npos;
    const std::wstring_view line = rest.substr(0, end);
    rest.remove_prefix(ended ? end + 1 : rest.size());
    ++number;
    return line;
}

std::optional<std::size_t> RecordLines::NextCount(std::wstring_view prefix) {
    const std::optional<std::wstring_view> line = Next();
    if (!line || !line->starts_with(prefix)) {
        return std::nullopt;
    }
    const std::optional<std::int32_t> count = wholeNumber(line->substr(prefix.size()));
    if (!count || *count < 0 || static_cast<std::size_t>(*count) > rest.size()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(*count);
}

bool LineFields::Next(std::wstring_view& field) {
    if (finished) {
        return false;
    }
    const std::size_t end = rest.find(separator);
    field = rest.substr(0, end);
    finished = end == std::wstring_view::npos;
    rest.remove_prefix(finished ? rest.size() : end + 1);
    return true;
}

bool LineFields::Next(std::int32_t& number) {
    std::wstring_view field;
    const std::optional<std::int32_t> value = Next(field) ? wholeNumber(field) : std::nullopt;
    number = value.value_or(0);
    return value.has_value();
}

std::optional<std::wstring_view> valueBeforeKey(std::wstring_view text, std::wstring_view key) {
    const std::size_t place = text.find(key);
    if (key.empty() || place == std::wstring_view::npos || key.find(L'\n') != std::wstring_view::npos) {
        return std::nullopt;
    }
    const std::size_t before = place == 0 ? std::wstring_view::npos : text.rfind(L'\n', place - 1);
    const std::size_t begin = before == std::wstring_view::npos ? 0 : before + 1;
    const std::wstring_view line = text.substr(begin, text.find(L'\n', place) - begin);
    for (std::size_t colon = line.find(L':'); colon != std::wstring_view::npos;
         colon = line.find(L':', colon + 1)) {
        if (line.substr(colon + 1).starts_with(key)) {
            return line.substr(0, line.find(L':'));
        }
    }
    return std::nullopt;
}

} // namespace torka
