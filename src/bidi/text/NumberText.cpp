// SPDX-License-Identifier: Apache-2.0
#include "bidi/text/NumberText.h"

#include <array>
#include <charconv>

namespace torka {

namespace {

constexpr int precision = 6;

std::string numberText(double value, std::chars_format format) {
    std::array<char, 512> text{}; // the largest double has 309 digits before the point
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, format, precision).ptr;
    return {text.data(), end};
}

} // namespace

std::string streamText(float value) {
    return numberText(static_cast<double>(value), std::chars_format::general);
}

std::string fixedText(double value) { return numberText(value, std::chars_format::fixed); }

} // namespace torka
