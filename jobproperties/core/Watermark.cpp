// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/Watermark.h"

#include "jobproperties/core/Text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace torka::jobproperties {

namespace {

int leadingNumber(std::string_view field, int least, int most) {
    field = trimmed(field);
    if (field.starts_with('+')) {
        field.remove_prefix(1);
    }
    int number = 0;
    const auto result = std::from_chars(field.data(), field.data() + field.size(), number);
    if (result.ec == std::errc::result_out_of_range) {
        number = field.starts_with('-') ? least : most;
    }
    return std::clamp(number, least, most);
}

// Limits of every number field.
constexpr int least = -std::numeric_limits<int>::max();
constexpr int most = std::numeric_limits<int>::max();

std::string fontName(std::string_view name) {
    std::string allowed;
    for (const char character : trimmed(name)) {
        if (character > ' ' && character < 0x7F &&
            std::string_view("()<>[]{}/%\\,`").find(character) == std::string_view::npos) {
            allowed += character;
        }
    }
    return allowed.empty() ? "Helvetica" : allowed;
}

} // namespace

Watermark Watermark::FromDefinition(std::string_view definition) {
    std::array<std::string_view, 14> fields;
    for (std::string_view& field : fields) {
        const std::size_t comma = definition.find(',');
        field = definition.substr(0, comma);
        definition = comma == std::string_view::npos ? std::string_view() : definition.substr(comma + 1);
    }
    Watermark watermark;
    watermark.clear = leadingNumber(fields[0], least, most) != 0;
    watermark.right = leadingNumber(fields[1], least, most);
    watermark.up = leadingNumber(fields[2], least, most);
    for (std::size_t i = 0; i < 3; ++i) {
        watermark.color[i] = leadingNumber(fields[3 + i], 0, 255);
    }
    watermark.unused = {std::string(fields[6]), std::string(fields[8]), std::string(fields[10]),
                        std::string(fields[11])};
    watermark.firstPageOnly = fields[7] == "1";
    watermark.angle = leadingNumber(fields[9], least, most);
    watermark.size = leadingNumber(fields[12], least, most);
    watermark.font = std::string(trimmed(fields[13]));
    watermark.text = std::string(definition);
    return watermark;
}

std::string Watermark::Definition() const {
    const auto field = [](const std::string& handedOn) {
        return handedOn.empty() ? std::string("0") : handedOn;
    };
    std::string definition = clear ? "1" : "0";
    for (const int number : {right, up, color[0], color[1], color[2]}) {
        definition += "," + std::to_string(number);
    }
    definition += "," + field(unused[0]) + (firstPageOnly ? ",1," : ",0,") + field(unused[1]);
    definition += "," + std::to_string(angle) + "," + field(unused[2]) + "," + field(unused[3]);
    definition += "," + std::to_string(size) + "," + fontName(font) + ",";
    std::string line = text;
    std::replace_if(
        line.begin(), line.end(), [](char character) { return character == '\n' || character == '\r'; }, ' ');
    return definition + line;
}

} // namespace torka::jobproperties
