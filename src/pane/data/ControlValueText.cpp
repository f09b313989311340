// SPDX-License-Identifier: Apache-2.0
#include "pane/data/ControlValueText.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/NumberText.h"
#include "bidi/memory/SharedMemoryList.h"
#include "bidi/serverdata/ByteOrderMark.h"
#include "bidi/text/FieldText.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace torka {

namespace {

// Bytes. PPD 4.3 allows option keywords of at most 40.
constexpr std::size_t maximumChoiceLength = 255;

std::string textOf(const PPDXControl& control) { return utf8Text(control.CopyCurrentControlValueString()); }

std::string textOf(const PPDXPopupControl& popup) {
    if (!popup.CanSelectMultipleItems()) {
        return utf8Text(popup.CopyCurrentControlValueString());
    }
    std::string text;
    popup.ForEachItem([&text](const _PopupItem& item) {
        if (item.selected != 0) {
            text += text.empty() ? "" : ",";
            text += std::string_view(item.keyword.Buffer(), item.keyword.Size());
        }
    });
    return text;
}

std::string textOf(const PPDXFloatRangeControl& control) { return floatText(control.GetValue()); }

template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<float> decimal(std::string_view text) {
    const auto number = wholeNumber<double>(text);
    return number && std::isfinite(*number) ? std::optional(nearestFloat(*number)) : std::nullopt;
}

bool isPlain(std::string_view text) {
    return std::ranges::none_of(text, [](unsigned char c) { return c < 0x20 || c == 0x7F; });
}

bool setSeveral(PPDXPopupControl& popup, std::string_view text) {
    std::vector<std::string> chosen;
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        chosen.emplace_back(text.substr(0, comma));
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    std::vector<std::string> offered;
    popup.ForEachItem([&offered](const _PopupItem& item) {
        offered.emplace_back(item.keyword.Buffer(), item.keyword.Size());
    });
    const auto isOffered = [&](const std::string& choice) {
        return std::ranges::find(offered, choice) != offered.end();
    };
    if (!std::ranges::all_of(chosen, isOffered)) {
        return false;
    }
    for (const std::string& choice : offered) {
        if (std::ranges::find(chosen, choice) == chosen.end()) {
            popup.SetKeywordSelect(choice.c_str(), false);
        }
    }
    // The selected choice is set last: the constraint store takes the choice that is set last.
    for (const std::string& choice : chosen) {
        popup.SetKeywordSelect(choice.c_str(), true);
    }
    return true;
}

// Nobody sets a control of another kind.
bool set(PPDXControl&, const std::string&) { return false; }

bool set(PPDXPopupControl& popup, const std::string& text) {
    if (text.size() > maximumChoiceLength || !isPlain(text)) {
        return false;
    }
    if (popup.CanSelectMultipleItems()) {
        return setSeveral(popup, text);
    }
    if (text.empty()) {
        return false;
    }
    popup.SetCurrentControlWithCFString(cfString(text));
    return textOf(popup) == text;
}

bool set(PPDXBooleanControl& control, const std::string& text) {
    const CFStringRef word = cfString(text);
    for (const bool state : {true, false}) {
        if (CFStringCompare(word, cfString(state ? "True" : "False"), kCFCompareCaseInsensitive) == 0) {
            control.SetValue(state);
            return true;
        }
    }
    return false;
}

float heldTo(float points, float minimum, float maximum) {
    return maximum > minimum ? std::clamp(points, minimum, maximum) : points;
}

bool set(PPDXCustomPageSizeControl& control, const std::string& text) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    const auto width = decimal(std::string_view(text).substr(0, blank));
    const auto height = decimal(std::string_view(text).substr(std::min(blank + 1, text.size())));
    if (!width || !height || *width <= 0 || *height <= 0) {
        return false;
    }
    control.SetWidth(heldTo(*width, control.MinWidth(), control.MaxWidth()));
    control.SetHeight(heldTo(*height, control.MinHeight(), control.MaxHeight()));
    return true;
}

bool set(PPDXRangeControl& control, const std::string& text) {
    // A module may keep all numbers as decimals and write "5.000".
    const auto number = wholeNumber<double>(text);
    if (!number || !std::isfinite(*number) || std::trunc(*number) != *number) {
        return false;
    }
    constexpr double widest = std::numeric_limits<std::int32_t>::max();
    const long value = static_cast<long>(std::clamp(*number, -widest, widest));
    if (value != control.GetValue()) {
        control.SetValue(value);
    }
    return true;
}

bool set(PPDXFloatRangeControl& control, const std::string& text) {
    const auto value = decimal(text);
    if (value && *value != control.GetValue()) {
        control.SetValue(*value);
    }
    return value.has_value();
}

bool set(PPDXJobNote& note, const std::string& text) {
    note.SetCurrentControlWithCFString(cutToNote(note, text));
    return true;
}

} // namespace

std::string floatText(float value) {
    const NumberText usual(value, 3);
    if (nearestFloat(CFStringGetDoubleValue(cfString(usual.View()))) == value) {
        return std::string(usual.View());
    }
    std::array<char, 80> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed).ptr;
    return {buffer.data(), end};
}

std::string controlValueText(const PPDXControl& control) {
    return visitControl(control, [](const auto& own) { return textOf(own); });
}

bool setControlValueText(PPDXControl& control, const std::string& text) {
    return isUnchanged(text, controlValueText(control)) ||
           visitControl(control, [&text](auto& own) { return set(own, text); });
}

CFStringRef cutToNote(const PPDXJobNote& note, const std::string& text) {
    CFStringRef whole = cfString(text);
    if (note.MaxLength() <= 0 || CFStringGetLength(whole) <= note.MaxLength()) {
        return whole;
    }
    const CFStringRef start = CFStringCreateWithSubstring(whole, 0, note.MaxLength());
    return cfString(utf8Text(start)); // half of a surrogate pair at its end becomes U+FFFD
}

std::string keyThroughRecord(std::string_view key) {
    return std::string(key.substr(0, wholeCharacters(key, exchangeKeySize)));
}

bool isUnchanged(std::string_view returned, std::string_view now) {
    if (returned == now) {
        return true;
    }
    std::array<char, exchangeValueSize> field{};
    FieldWriter writer(field);
    const std::wstring wide = wideFromUtf8(now);
    const bool isMarked = wide.starts_with(wideMark);
    for (auto unit = wide.begin(); unit != wide.end() && !writer.IsFull(); ++unit) {
        if (isMarked && *unit == wideMark.front()) {
            writer.Append(markLetters);
        } else {
            writer.Append(static_cast<char32_t>(*unit));
        }
    }
    writer.Finish();
    return returned == withMarks(fieldText(field));
}

} // namespace torka
