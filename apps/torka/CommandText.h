// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

// The texts of a command: `--help`, the manual pages and the completion are all made from them.

namespace torka::tool {

// What a command says beside its options. Each text is English, in ASCII or UTF-8.
struct CommandText {
    std::vector<std::string> examples{}; // lines for a shell
    // When the status is 1, after "1 when "; "" when it never is.
    std::string findings{};
    // Paragraphs for the manual page, separated by an empty line. A paragraph that starts with "- " is an
    // item of a list, one that starts with "# " a heading.
    std::string details{};
};

// Sets the texts of a command, and our form of `--help` for it and every command added to it afterwards. The
// texts themselves are not inherited.
void describe(CLI::App& command, CommandText text);
const CommandText& textOf(const CLI::App& command);

// One option or positional argument.
//
// The name of the value decides what is completed: PPD, FILE… and LIBRARY files, FOLDER and BUNDLE folders,
// QUEUE and PRINTER queues, KEY=VALUE settings, KEY their names, a|b|c the words. It is the option's own text
// (option_text), or else derived from its type and name.
struct OptionText {
    std::string names; // "-d, --queue"; "" for a positional argument
    std::string value; // "" for a flag
    std::string description;
    bool isRequired = false;
    bool isRepeated = false;

    bool IsPositional() const { return names.empty(); }
    // Each name of its own: "-d" and "--queue".
    std::vector<std::string> Names() const;
    // The name in a synopsis: the shortest, and its value.
    std::string Short() const;
    // The left column of `--help`: all names, and the value.
    std::string Left() const;
};

OptionText optionText(const CLI::Option& option);
// All visible options and arguments, with those of option groups, in the order of their definition. The
// positional arguments come first.
std::vector<OptionText> optionsOf(const CLI::App& command);
// The visible commands below one, in the order of their definition.
std::vector<const CLI::App*> commandsOf(const CLI::App& command);
// "torka queue add".
std::string fullName(const CLI::App& command);
// What follows the name: "[OPTION ...] PPD [KEY=VALUE ...]".
std::string synopsis(const CLI::App& command);
// "0 success, 1 when …, 2 unusable input".
std::string exitStatus(const CLI::App& command);

} // namespace torka::tool
