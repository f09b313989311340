// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "platform/Log.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>

// Constraint lines, the custom page size and special options.

namespace torka {

namespace {

constexpr DelimiterSet blanks(" \t");

// Returns the next text between blanks; empty at the end of the line.
std::string_view takeText(PPDStream& line) {
    line.SkipWhiteSpace();
    return line.TakeToken(blanks, true);
}

// Removes the next text between blanks from a line without line end and of at most 255 characters.
std::string_view takeWord(std::string_view& line) {
    const char* first = line.data();
    const char* const end = first + line.size();
    while (first != end && (*first == ' ' || *first == '\t')) {
        ++first;
    }
    const char* const last = blanks.FindEnd({first, static_cast<std::size_t>(end - first)});
    line = {last, static_cast<std::size_t>(end - last)};
    return {first, static_cast<std::size_t>(last - first)};
}

// Returns the first words between blanks; behind the last word, empty ones. REQUIRES: as takeWord.
std::array<std::string_view, 5> firstWords(std::string_view line) {
    std::array<std::string_view, 5> words;
    if (line.size() < 16 || line.size() > 64) {
        for (std::string_view& word : words) {
            word = takeWord(line);
        }
        return words;
    }
    // Bit i tells that byte i belongs to a word.
    std::uint64_t inside = ~blanks.Ends(line) & (~std::uint64_t{0} >> (64 - line.size()));
    for (std::size_t i = 0; i < words.size() && inside != 0; ++i) {
        const auto first = static_cast<std::size_t>(std::countr_zero(inside));
        words[i] = {line.data() + first, static_cast<std::size_t>(std::countr_one(inside >> first))};
        inside &= inside + (std::uint64_t{1} << first); // the carry clears the word
    }
    return words;
}

// Returns the number after the marker, 0 when there is none.
long templateLineCount(std::string_view text) {
    long count = 0;
    std::from_chars(text.data(), text.data() + text.size(), count);
    return count;
}

// Reads a length in points. Returns false for anything but a finite number that is not negative.
bool readPoints(std::string_view text, float& points) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), points);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(points) &&
           points >= 0.0F;
}

} // namespace

// KEY1 [OPTION1] KEY2 [OPTION2]; a second text that begins with "*" is the second keyword.
void ZANPPD::ParseConstraint(PPDStream& line, bool isRequirement) {
    const auto [key1, second, third, fourth, fifth] = firstWords(line.Remaining());
    const bool hasOption1 = !second.starts_with('*');
    const std::string_view option1 = hasOption1 ? second : std::string_view();
    const std::string_view key2 = hasOption1 ? third : second;
    if (key2.empty()) {
        Report(PPDErr_BadConstraint, key1, Line());
        return;
    }
    const std::string_view option2 = hasOption1 ? fourth : third;
    constraints->Add(key1, option1, key2, option2, isRequirement);
    if (lint) {
        lint->ConstraintLine(Line(), key1, option1, key2, option2, isRequirement);
        if (const std::string_view behind = hasOption1 ? fifth : fourth; !behind.empty()) {
            lint->Note(PPDLintKind::textBehindConstraint, Line(), key1, behind);
        }
    }
}

// Reads "Width: 1 points MINIMUM MAXIMUM", and the same for "Height: 2". The first line makes the control,
// with both sizes at their minimum. Each line sets its two bounds.
void ZANPPD::ParseCustomPrintSize(PPDStream& line) {
    static constexpr const char* keyword = "*CustomPrintSize";
    if (lint) {
        lint->CustomSizeLine(Line());
    }
    const std::string_view dimension = TakeWord(line);
    TakeWord(line); // the order of the parameters
    const std::string_view unit = takeText(line);
    float minimum = 0.0F;
    float maximum = 0.0F;
    const bool isWidth = dimension == "Width";
    const bool isRead = readPoints(takeText(line), minimum) && readPoints(takeText(line), maximum);
    if ((!isWidth && dimension != "Height") || !isRead || minimum > maximum) {
        Note(PPDLintKind::badCustomSize, Line(), keyword, dimension);
        return;
    }
    if (unit != "points") {
        Note(PPDLintKind::unitNotPoints, Line(), keyword, unit);
    }
    if (!customSize) {
        ControlDefinition definition;
        definition.keyword = keyword;
        definition.constraints = constraints.get();
        // This control belongs to no group by definition, even when other orphans are not accepted.
        customSize = new PPDXCustomPageSizeControl(definition, CustomPageSizeBounds());
        controls->Add(customSize);
    }
    if (isWidth) {
        customSize->SetMinWidth(minimum);
        customSize->SetMaxWidth(maximum);
        customSize->SetWidth(minimum);
    } else {
        customSize->SetMinHeight(minimum);
        customSize->SetMaxHeight(maximum);
        customSize->SetHeight(minimum);
    }
}

void ZANPPD::ParseSpecialOption(PPDStream& line) {
    const std::string keyword(TakeWord(line));
    std::array<char, kLineCapacity> value{};
    RestOfLine(line, value.data());
    if (lint) {
        lint->CheckSpecialOption(Line(), keyword, value.data());
    }
    if (keyword == "*DMT_Injection") {
        if (std::string_view(value.data()) == "True") {
            SkipTemplateBlock();
        }
    } else if (!keyword.empty()) {
        if (lint && controls->FindSpecialOption(keyword.c_str(), true) != nullptr) {
            lint->Note(PPDLintKind::specialOptionTwice, Line(), keyword);
        }
        ControlDefinition definition;
        definition.keyword = keyword.c_str();
        definition.localName = Localized(keyword, keyword, Line());
        definition.constraints = constraints.get();
        controls->Add(new PPDXSpecialOption(definition, value.data()));
    }
}

// Skips a management template in its packed form, which this parser does not support.
void ZANPPD::SkipTemplateBlock() {
    static constexpr std::string_view marker = "*DMT_X0000: ";
    std::string_view first;
    if (!ReadNonEmptyLine(first)) {
        myNSLogC("ZANPPD::ParseSpecialOption '*DMT_X0000: ' not found");
        return;
    }
    const std::size_t place = first.find(marker);
    if (place == std::string_view::npos) {
        PushBackLine();
        myNSLogC("ZANPPD::ParseSpecialOption '*DMT_X0000: ' not found");
        return;
    }
    for (long left = templateLineCount(first.substr(place + marker.size())); left > 0; --left) {
        std::string_view packed;
        if (!ReadNonEmptyLine(packed)) {
            break;
        }
        if (lint) {
            lint->LineInTemplate(Line(), packed);
        }
    }
    constexpr int unpackingFailed = -3; // zlib's Z_DATA_ERROR
    myNSLogC("ZANPPD::ParseSpecialOption QVdeflate failure, result %d", unpackingFailed);
}

} // namespace torka
