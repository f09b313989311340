// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/Script.h"

#include "jobproperties/core/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>

namespace torka::jobproperties {

namespace {

constexpr std::size_t maximumScriptBytes = std::size_t{16} << 20;

// The words of a command: 'w' is a word, 'n' a whole number, 'r' the rest of the line.
struct Command {
    std::string_view name;
    std::string_view words;
};

constexpr std::array<Command, 21> commands{
    {{"begin-fail", ""},     {"not-ready", "w"},      {"report", "r"},           {"set", "wr"},
     {"force", "wr"},        {"remove", "r"},         {"preset", "r"},           {"restore", ""},
     {"watermark add", "r"}, {"watermark set", "nr"}, {"watermark remove", "n"}, {"watermark select", "n"},
     {"print", "w"},         {"result", "n"},         {"open-fail", ""},         {"get-fail", ""},
     {"return-null", ""},    {"return-count", "n"},   {"overlong", "wn"},        {"garbage", ""},
     {"end-fail", ""}}};

// Takes the character of "\u{HEX}" after its first two characters.
std::optional<std::string> takeUnicode(std::string_view& text) {
    const std::size_t close = text.find('}');
    std::uint32_t number = 0;
    if (!text.starts_with('{') || close == std::string_view::npos) {
        return std::nullopt;
    }
    const auto read = std::from_chars(text.data() + 1, text.data() + close, number, 16);
    if (read.ec != std::errc() || read.ptr != text.data() + close || number == 0) {
        return std::nullopt;
    }
    text.remove_prefix(close + 1);
    const std::array<wchar_t, 2> wide{static_cast<wchar_t>(number), L'\0'};
    return fromWide(wide.data());
}

// Takes a word in double quotes after its first quote. Returns null when it is not closed or has an unknown
// escape.
std::optional<std::string> takeQuoted(std::string_view& text) {
    std::string word;
    while (!text.empty()) {
        const char character = text.front();
        text.remove_prefix(1);
        if (character == '"') {
            return word;
        }
        if (character != '\\') {
            word += character;
            continue;
        }
        if (text.empty()) {
            return std::nullopt;
        }
        const char escaped = text.front();
        text.remove_prefix(1);
        if (escaped == 'u') {
            const auto unicode = takeUnicode(text);
            if (!unicode) {
                return std::nullopt;
            }
            word += *unicode;
            continue;
        }
        const std::size_t known = std::string_view("nt\"\\").find(escaped);
        if (known == std::string_view::npos) {
            return std::nullopt;
        }
        word += "\n\t\"\\"[known];
    }
    return std::nullopt;
}

std::optional<std::string> takeWord(std::string_view& text, bool isRest) {
    text = trimmed(text);
    if (text.starts_with('"')) {
        text.remove_prefix(1);
        auto word = takeQuoted(text);
        return word && !text.empty() && text.front() != ' ' && text.front() != '\t' ? std::nullopt : word;
    }
    const std::size_t end = isRest ? text.size() : std::min(text.find_first_of(" \t"), text.size());
    std::string word(text.substr(0, end));
    text.remove_prefix(end);
    return word;
}

const Command* commandOf(std::string_view& text) {
    const Command* found = nullptr;
    for (const Command& command : commands) {
        const std::string_view name = command.name;
        if (text.starts_with(name) &&
            (text.size() == name.size() || text[name.size()] == ' ' || text[name.size()] == '\t')) {
            found = &command;
        }
    }
    if (found != nullptr) {
        text.remove_prefix(found->name.size());
    }
    return found;
}

// Returns what is wrong with the line; empty for a valid line.
std::string readLine(std::string_view text, ScriptLine& line) {
    const Command* command = commandOf(text);
    if (command == nullptr) {
        return "unknown command";
    }
    line.command = std::string(command->name);
    for (const char kind : command->words) {
        const auto word = takeWord(text, kind == 'r');
        if (!word) {
            return "a word in quotes is not closed or holds an unknown escape";
        }
        if (word->empty() && trimmed(text).empty() && kind != 'r') {
            return "a word is missing";
        }
        if (kind == 'n' && !wholeNumber(*word)) {
            return "\"" + *word + "\" is no whole number";
        }
        line.words.push_back(*word);
    }
    if (!trimmed(text).empty()) {
        return "there is more than " + line.command + " takes";
    }
    return {};
}

} // namespace

Script Script::FromText(std::string_view text) {
    Script script;
    std::size_t number = 0;
    for (const std::string_view raw : split(text.substr(0, maximumScriptBytes), '\n')) {
        ++number;
        const std::string_view trimmedLine = trimmed(raw);
        if (trimmedLine.empty() || trimmedLine.starts_with('#')) {
            continue;
        }
        ScriptLine line;
        line.number = number;
        const std::string error = readLine(trimmedLine, line);
        if (!error.empty()) {
            script.error = "line " + std::to_string(number) + ": " + error;
            return script;
        }
        script.lines.push_back(std::move(line));
    }
    return script;
}

Script Script::FromFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        Script script;
        script.error = "the file cannot be read";
        return script;
    }
    return FromText(std::string(std::istreambuf_iterator<char>(file), {}));
}

const ScriptLine* Script::Find(std::string_view command) const {
    const auto found = std::find_if(lines.rbegin(), lines.rend(),
                                    [&](const ScriptLine& line) { return line.command == command; });
    return found == lines.rend() ? nullptr : &*found;
}

} // namespace torka::jobproperties
