// SPDX-License-Identifier: Apache-2.0
#include "StringUtils.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace torka {

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

// Returns the text for from_chars: without leading white space and a plus sign.
std::string_view numberText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
}

std::errc readInteger(std::string_view text, std::int64_t& value) {
    text = numberText(text);
    value = 0;
    return std::from_chars(text.data(), text.data() + text.size(), value).ec;
}

template <typename Real>
Real readReal(std::string_view text) {
    text = numberText(text);
    Real value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && std::isfinite(value) ? value : Real{0};
}

} // namespace

std::string_view trimBlanks(std::string_view text) {
    const auto isBlank = [](char each) { return each == ' ' || each == '\t'; };
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string_view unquoted(std::string_view text) {
    text = trimBlanks(text);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        text = text.substr(1, text.size() - 2);
    }
    return text;
}

std::int64_t integerValue(std::string_view text) {
    std::int64_t value = 0;
    if (readInteger(text, value) == std::errc::result_out_of_range) {
        using Limits = std::numeric_limits<std::int64_t>;
        return numberText(text).front() == '-' ? Limits::min() : Limits::max();
    }
    return value;
}

bool integerOverflows(std::string_view text) {
    std::int64_t value = 0;
    return readInteger(text, value) == std::errc::result_out_of_range;
}

float floatValue(std::string_view text) { return readReal<float>(text); }

double realValue(std::string_view text) { return readReal<double>(text); }

} // namespace torka
