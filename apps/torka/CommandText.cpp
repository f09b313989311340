// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/CommandText.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

namespace torka::tool {

namespace {

constexpr std::size_t lineWidth = 79;
constexpr std::size_t maximumColumn = 30; // of the descriptions; a longer name stands on a line of its own

// Writes `text` in lines that begin at column `indent`. The first line is already `at` columns long.
void addWrapped(std::string& out, std::string_view text, std::size_t indent, std::size_t at) {
    out.append(at < indent ? indent - at : 0, ' ');
    std::size_t column = std::max(at, indent);
    bool isFirst = true;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(text.size(), word.size() + 1));
        if (!isFirst && column + 1 + word.size() > lineWidth) {
            out += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!isFirst) {
            out += ' ';
            ++column;
        }
        out += word;
        column += word.size();
        isFirst = false;
    }
    out += '\n';
}

class HelpFormat final : public CLI::FormatterBase {
public:
    HelpFormat(const CLI::App& command, CommandText given)
        : owner(&command)
        , text(std::move(given)) {}

    std::string make_help(const CLI::App* command, std::string /*name*/, CLI::AppFormatMode) const override;

    // Differs from the command that is formatted when this format is inherited.
    const CLI::App* owner;
    CommandText text;
};

struct Row {
    std::string left;
    std::string right;
};

void addTable(std::string& out, const char* title, const std::vector<Row>& rows, std::size_t column) {
    if (rows.empty()) {
        return;
    }
    out += std::string("\n") + title + ":\n";
    for (const Row& row : rows) {
        std::string line = "  " + row.left;
        if (line.size() + 2 > column) {
            out += line + "\n";
            line.clear();
        }
        out += line;
        addWrapped(out, row.right, column, line.size());
    }
}

std::size_t columnOf(const std::vector<const std::vector<Row>*>& tables) {
    std::size_t column = 0;
    for (const std::vector<Row>* rows : tables) {
        for (const Row& row : *rows) {
            const std::size_t width = row.left.size() + 4;
            column = width <= maximumColumn ? std::max(column, width) : column;
        }
    }
    return column == 0 ? maximumColumn : column;
}

std::string HelpFormat::make_help(const CLI::App* command, std::string /*name*/, CLI::AppFormatMode) const {
    std::vector<Row> arguments;
    std::vector<Row> options;
    std::vector<Row> commands;
    for (const OptionText& option : optionsOf(*command)) {
        (option.IsPositional() ? arguments : options).push_back({option.Left(), option.description});
    }
    for (const CLI::App* inner : commandsOf(*command)) {
        commands.push_back({inner->get_name(), inner->get_description()});
    }
    const std::size_t column = columnOf({&arguments, &options, &commands});
    std::string out;
    addWrapped(out, command->get_description(), 0, 0);
    const std::string usage = "Usage: " + fullName(*command);
    out += "\n" + usage;
    addWrapped(out, synopsis(*command), usage.size() + 1, usage.size());
    addTable(out, "Commands", commands, column);
    addTable(out, "Arguments", arguments, column);
    addTable(out, "Options", options, column);
    const CommandText& own = textOf(*command);
    if (!own.examples.empty()) {
        out += own.examples.size() == 1 ? "\nExample:\n" : "\nExamples:\n";
        for (const std::string& example : own.examples) {
            out += "  " + example + "\n";
        }
    }
    out += '\n';
    const std::string status = "Exit status:";
    out += status;
    addWrapped(out, exitStatus(*command) + ".", status.size() + 1, status.size());
    return out;
}

// The words of a check on a value: "1 to 4" for "INT in [1 - 4]", "a|b" for "{a,b}"; "" for others.
std::string boundsOf(std::string_view type) {
    const std::size_t open = type.find(" in [");
    const std::size_t middle = type.find(" - ", open);
    if (open == std::string_view::npos || middle == std::string_view::npos || !type.ends_with(']')) {
        return {};
    }
    const std::size_t first = open + 5;
    return std::string(type.substr(first, middle - first)) + " to " +
           std::string(type.substr(middle + 3, type.size() - middle - 4));
}

std::string wordsOf(std::string_view type) {
    const std::size_t open = type.find('{');
    if (open == std::string_view::npos || !type.ends_with('}')) {
        return {};
    }
    std::string words(type.substr(open + 1, type.size() - open - 2));
    std::ranges::replace(words, ',', '|');
    return words;
}

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

std::string valueOf(const CLI::Option& option) {
    if (!option.get_option_text().empty()) {
        return option.get_option_text();
    }
    if (option.get_items_expected_max() == 0) { // a flag
        return {};
    }
    const std::string type = option.get_type_name();
    if (std::string words = wordsOf(type); !words.empty()) {
        return words;
    }
    if (option.get_positional()) {
        return option.get_name(true, false);
    }
    const bool isNumber = type.starts_with("INT") || type.starts_with("UINT") || type.starts_with("FLOAT");
    return isNumber || option.get_lnames().empty() ? "N" : upper(option.get_lnames().front());
}

std::string namesOf(const std::set<CLI::Option*>& options) {
    std::string names;
    for (const CLI::Option* option : options) {
        names += (names.empty() ? "" : ", ") + option->get_name();
    }
    return names;
}

std::string descriptionOf(const CLI::Option& option) {
    std::string text = option.get_description();
    const auto add = [&text](const std::string& more) { text += text.empty() ? more : "; " + more; };
    if (const std::string bounds = boundsOf(option.get_type_name()); !bounds.empty()) {
        add(bounds);
    }
    if (!option.get_default_str().empty()) {
        add("default " + option.get_default_str());
    }
    if (!option.get_needs().empty()) {
        add("needs " + namesOf(option.get_needs()));
    }
    if (!option.get_excludes().empty()) {
        add("not with " + namesOf(option.get_excludes()));
    }
    return text;
}

// An option group is a nameless command; calls `visit` for the options of `command` and those of its groups.
template <typename Visit>
void forEachOption(const CLI::App& command, const Visit& visit) {
    const bool isGroup = command.get_name().empty();
    for (const CLI::Option* option : command.get_options({})) {
        // A group inherits a copy of --help.
        if (!option->get_group().empty() && !(isGroup && option == command.get_help_ptr())) {
            visit(*option);
        }
    }
    for (const CLI::App* group : command.get_subcommands({})) {
        if (group->get_name().empty()) {
            forEachOption(*group, visit);
        }
    }
}

std::string usageOf(const OptionText& option) {
    const std::string text = option.Short() + (option.IsPositional() && option.isRepeated ? " ..." : "");
    return option.isRequired ? text : "[" + text + "]";
}

} // namespace

void describe(CLI::App& command, CommandText text) {
    command.formatter(std::make_shared<HelpFormat>(command, std::move(text)));
}

const CommandText& textOf(const CLI::App& command) {
    static const CommandText none;
    const auto format = std::dynamic_pointer_cast<HelpFormat>(command.get_formatter());
    return format && format->owner == &command ? format->text : none;
}

std::vector<std::string> OptionText::Names() const {
    std::vector<std::string> list;
    for (std::size_t at = 0; at < names.size();) {
        const std::size_t end = std::min(names.find(", ", at), names.size());
        list.push_back(names.substr(at, end - at));
        at = end + 2;
    }
    return list;
}

std::string OptionText::Short() const {
    const std::string name = names.substr(0, names.find(", "));
    return name + (name.empty() || value.empty() ? "" : " ") + value;
}

std::string OptionText::Left() const {
    return names + (names.empty() || value.empty() ? "" : " ") + value + (isRepeated ? " ..." : "");
}

OptionText optionText(const CLI::Option& option) {
    OptionText text;
    for (const std::string& name : option.get_snames()) {
        text.names += (text.names.empty() ? "-" : ", -") + name;
    }
    for (const std::string& name : option.get_lnames()) {
        text.names += (text.names.empty() ? "--" : ", --") + name;
    }
    text.value = valueOf(option);
    text.description = descriptionOf(option);
    text.isRequired = option.get_required();
    text.isRepeated = option.get_items_expected_max() > 1;
    return text;
}

std::vector<OptionText> optionsOf(const CLI::App& command) {
    std::vector<OptionText> options;
    forEachOption(command, [&options](const CLI::Option& option) { options.push_back(optionText(option)); });
    std::stable_partition(options.begin(), options.end(),
                          [](const OptionText& option) { return option.IsPositional(); });
    return options;
}

std::vector<const CLI::App*> commandsOf(const CLI::App& command) {
    return command.get_subcommands(
        [](const CLI::App* inner) { return !inner->get_name().empty() && !inner->get_group().empty(); });
}

std::string fullName(const CLI::App& command) {
    const CLI::App* parent = command.get_parent();
    return parent == nullptr ? command.get_name() : fullName(*parent) + " " + command.get_name();
}

std::string synopsis(const CLI::App& command) {
    if (!commandsOf(command).empty()) {
        return "COMMAND ...";
    }
    std::string text;
    for (const CLI::App* group : command.get_subcommands({})) {
        if (!group->get_name().empty() || group->get_require_option_min() == 0) {
            continue;
        }
        std::string choices;
        for (const OptionText& option : optionsOf(*group)) {
            choices += (choices.empty() ? "" : " | ") + option.Short();
        }
        text += " (" + choices + ")";
    }
    std::string arguments;
    for (const CLI::Option* option : command.get_options({})) {
        const OptionText one = optionText(*option);
        if (one.IsPositional() ? !option->get_group().empty() : one.isRequired) {
            (one.IsPositional() ? arguments : text) += " " + usageOf(one);
        }
    }
    return (text + " [OPTION ...]" + arguments).substr(1);
}

std::string exitStatus(const CLI::App& command) {
    const std::vector<const CLI::App*> inner = commandsOf(command);
    const bool hasFindings = !inner.empty() || !textOf(command).findings.empty();
    const std::string findings = inner.empty() ? "when " + textOf(command).findings : "findings";
    return "0 success" + (hasFindings ? ", 1 " + findings : std::string()) + ", 2 unusable input";
}

} // namespace torka::tool
