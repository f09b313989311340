// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/NoteFields.h"

#include <charconv>

namespace torka::filter {

namespace {

bool isPlain(char c) { return c > ' ' && c < 0x7f && c != '%'; }

std::optional<std::string_view> nextField(std::string_view& line) {
    const std::size_t end = line.find(' ');
    if (end == std::string_view::npos || !line.starts_with('=')) {
        return std::nullopt;
    }
    const std::string_view field = line.substr(1, end - 1);
    line.remove_prefix(end + 1);
    return field;
}

std::optional<std::string> decoded(std::optional<std::string_view> field) {
    if (!field) {
        return std::nullopt;
    }
    std::string text;
    for (std::size_t i = 0; i < field->size(); ++i) {
        if ((*field)[i] != '%') {
            text += (*field)[i];
            continue;
        }
        unsigned value = 0;
        const char* digits = field->data() + i + 1;
        if (i + 2 >= field->size() || std::from_chars(digits, digits + 2, value, 16).ptr != digits + 2) {
            return std::nullopt;
        }
        text += static_cast<char>(value);
        i += 2;
    }
    return text;
}

} // namespace

void appendField(std::string& line, std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    line += '=';
    for (const char c : text) {
        if (isPlain(c)) {
            line += c;
        } else {
            const auto value = static_cast<unsigned char>(c);
            line.append({'%', digits[value >> 4U], digits[value & 15U]});
        }
    }
    line += ' ';
}

std::optional<std::string> takeField(std::string_view& line) {
    std::optional<std::string> field = decoded(nextField(line));
    if (!field) {
        line = {};
    }
    return field;
}

} // namespace torka::filter
