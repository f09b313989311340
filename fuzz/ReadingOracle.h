// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

// A slow byte-by-byte reader of descriptions. The target ppd_tokens compares the real readers with it.

namespace torka::oracle {

struct Line {
    std::string text;
    bool result = false;
    bool atEnd = false;
};

struct Cursor {
    std::string_view data;
    std::size_t at = 0;
    bool atEnd = false;

    bool Next(char& c) {
        atEnd = at == data.size();
        c = atEnd ? '\xFF' : data[at++];
        return !atEnd;
    }
};

inline Line readLine(Cursor& cursor, bool& endOfPPD) {
    Line line;
    if (endOfPPD) {
        return line;
    }
    for (char c = 0; line.text.size() < 255;) {
        if (!cursor.Next(c)) {
            line.atEnd = true;
            return line;
        }
        if (c == '\xFF') {
            return line;
        }
        if (c == '\r' || c == '\n') {
            line.result = true;
            if (line.text.rfind("*% End of PPD file", 0) == 0) {
                endOfPPD = true;
                line.text.clear();
            }
            return line;
        }
        line.text += c;
    }
    return line;
}

// All lines that a reader has to handle, as C strings.
inline std::vector<std::string> linesToHandle(std::string_view data) {
    std::vector<std::string> lines;
    Cursor cursor{data};
    for (bool endOfPPD = false; !endOfPPD;) {
        const Line line = readLine(cursor, endOfPPD);
        const std::string text(line.text.c_str());
        if (!line.atEnd || !text.empty()) {
            lines.push_back(text);
        }
        if (line.atEnd) {
            break;
        }
    }
    return lines;
}

inline std::string token(Cursor& cursor, std::string_view delimiters, bool trim) {
    std::string text;
    char c = 0;
    const auto isBlank = [](char each) { return each == ' ' || each == '\t'; };
    while (trim && cursor.at < cursor.data.size() && isBlank(cursor.data[cursor.at])) {
        ++cursor.at;
    }
    cursor.atEnd = false;
    while (text.size() < 255 && cursor.Next(c) && delimiters.find(c) == std::string_view::npos && c != '\n') {
        if (c == '\r') {
            cursor.at += cursor.data.substr(cursor.at, 1) == "\n" ? 1U : 0U;
            break;
        }
        text += c;
    }
    while (trim && !text.empty() && isBlank(text.back())) {
        text.pop_back();
    }
    return text;
}

// Whether the line is an element that ends a PostScript value although it begins with "*%".
inline bool beginsElement(const std::string& line) {
    for (const std::string keyword : {"*%ZANFlags", "*%ZANPropPage", "*%ZANGroupName", "*%ZANSubGroupName",
                                      "*%ZANParent", "*%ZANSpecialOption", "*%QVShortcut",
                                      "*%ZANUIConstraints", "*%ZANUIRequires", "*%ParamCustomPrintSize"}) {
        if (line.substr(0, keyword.size()) == keyword &&
            (line.size() == keyword.size() ||
             std::string(" \t:").find(line[keyword.size()]) != std::string::npos)) {
            return true;
        }
    }
    return false;
}

// Reads the value that begins on lines[at], and moves `at` to the value's last line.
inline std::string value(const std::vector<std::string>& lines, std::size_t& at, std::size_t capacity,
                         bool postscript) {
    std::string text;
    bool isOpen = false, ended = false;
    for (const char c : lines[at]) {
        if (c == '"') {
            ended = isOpen;
            isOpen = true;
        } else if (isOpen && !ended) {
            text += c;
        }
        if (ended) {
            break;
        }
    }
    if (!isOpen) {
        return {};
    }
    while (!ended && at + 1 < lines.size()) {
        std::string line = lines[at + 1];
        if (!line.empty() && line[0] == '*') {
            if (!postscript || line[1] != '%' || beginsElement(line)) {
                break;
            }
            line.erase(0, 2);
        } else if (line.empty()) {
            ++at;
            continue;
        }
        ++at;
        text += postscript ? "\n" : "";
        for (const char c : line) {
            ended = ended || c == '"';
            text += ended ? "" : std::string(1, c);
        }
    }
    const bool fileEnded = !ended && at + 1 == lines.size();
    const std::size_t room = capacity < (postscript ? 2U : 1U) ? 0 : capacity - (postscript ? 2 : 1);
    text.resize(std::min(text.size(), room));
    if (postscript) {
        return text.empty() || fileEnded ? "" : text + "\n";
    }
    return text;
}

} // namespace torka::oracle
