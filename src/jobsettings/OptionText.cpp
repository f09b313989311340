// SPDX-License-Identifier: Apache-2.0
#include "jobsettings/OptionText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace torka {

namespace {

constexpr std::string_view customPrefix = "custom.";

char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Removes a unit from the end of the text and returns its points; 1 without one, nothing for another word.
std::optional<double> takeUnit(std::string_view& text) {
    struct Unit {
        std::string_view name;
        double points;
    };
    constexpr double inch = 72.0;
    static constexpr std::array<Unit, 7> units{{{"", 1.0},
                                                {"pt", 1.0},
                                                {"in", inch},
                                                {"ft", 12 * inch},
                                                {"cm", inch / 2.54},
                                                {"mm", inch / 25.4},
                                                {"m", inch / 0.0254}}};
    const std::size_t digit = text.find_last_of("0123456789.");
    const std::string_view word = text.substr(digit == std::string_view::npos ? 0 : digit + 1);
    const auto* const unit =
        std::ranges::find_if(units, [word](const Unit& each) { return isSameAscii(each.name, word); });
    if (unit == units.end()) {
        return std::nullopt;
    }
    text.remove_suffix(word.size());
    return unit->points;
}

} // namespace

std::string lowerCaseAscii(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), lowerCase);
    return lower;
}

bool isSameAscii(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, lowerCase, lowerCase);
}

std::optional<bool> truthOf(std::string_view text) {
    constexpr std::array<std::string_view, 4> truths{"true", "on", "yes", "1"};
    constexpr std::array<std::string_view, 4> untruths{"false", "off", "no", "0"};
    const auto holds = [text](const auto& words) {
        return std::ranges::any_of(words, [text](std::string_view word) { return isSameAscii(word, text); });
    };
    if (holds(truths)) {
        return true;
    }
    return holds(untruths) ? std::optional(false) : std::nullopt;
}

std::optional<double> numberOf(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size() && std::isfinite(number);
    return isWhole ? std::optional(number) : std::nullopt;
}

std::optional<OptionSize> sizeOf(std::string_view text) {
    if (isSameAscii(text.substr(0, customPrefix.size()), customPrefix)) {
        text.remove_prefix(customPrefix.size());
    }
    const std::optional<double> unit = takeUnit(text);
    const std::size_t middle = text.find_first_of("xX ");
    if (!unit || middle == std::string_view::npos) {
        return std::nullopt;
    }
    const std::optional<double> width = numberOf(text.substr(0, middle));
    const std::optional<double> height = numberOf(text.substr(middle + 1));
    if (!width || !height || *width <= 0 || *height <= 0) {
        return std::nullopt;
    }
    return OptionSize{*width * *unit, *height * *unit};
}

} // namespace torka
