// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Completion.h"

#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "platform/cups/CupsQueue.h"
#include "platform/cups/FetchedPPD.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace torka::tool {

namespace {

// What precedes the last word.
struct Typed {
    const CLI::App* command = nullptr;
    std::vector<OptionText> options;           // of the command
    std::map<std::string, std::string> values; // by the name of the value: "PPD", "QUEUE"
    std::set<std::string> names;               // options
    std::set<std::string> keys;                // settings, without asterisk
    std::size_t arguments = 0;                 // positional
    std::optional<OptionText> open;            // the option whose value the last word is or may be
    bool isOnlyArguments = false;              // "--" stood
};

const OptionText* findOption(const Typed& typed, const std::string& name) {
    const auto found = std::ranges::find_if(typed.options, [&name](const OptionText& option) {
        const std::vector<std::string> names = option.Names();
        return std::ranges::find(names, name) != names.end();
    });
    return found == typed.options.end() ? nullptr : &*found;
}

// The positional argument with this number; the last one when it can be repeated.
const OptionText* argumentAt(const Typed& typed, std::size_t number) {
    const OptionText* last = nullptr;
    for (const OptionText& option : typed.options) {
        if (!option.IsPositional()) {
            continue;
        }
        last = &option;
        if (number-- == 0) {
            return last;
        }
    }
    return last != nullptr && last->isRepeated ? last : nullptr;
}

bool looksLikeOption(const std::string& word) { return word.size() > 1 && word.starts_with('-'); }

void takeValue(Typed& typed, const OptionText& option, const std::string& word) {
    typed.values.emplace(option.value, word);
    if (option.value == "KEY=VALUE" || option.value == "KEY") {
        const std::string key = word.substr(0, word.find('='));
        typed.keys.insert(key.starts_with('*') ? key.substr(1) : key);
    }
}

void takeOption(Typed& typed, const std::string& word) {
    const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
    const OptionText* option = findOption(typed, word.substr(0, equals));
    typed.open.reset();
    if (option == nullptr) {
        return;
    }
    for (const std::string& name : option->Names()) {
        typed.names.insert(name);
    }
    if (equals != std::string::npos) {
        takeValue(typed, *option, word.substr(equals + 1));
    } else if (!option->value.empty()) {
        typed.open = *option;
    }
}

void takeWord(Typed& typed, const std::string& word) {
    if (!typed.isOnlyArguments && looksLikeOption(word)) {
        typed.isOnlyArguments = word == "--";
        takeOption(typed, word);
        return;
    }
    if (typed.open) {
        takeValue(typed, *typed.open, word);
        if (!typed.open->isRepeated) {
            typed.open.reset();
        }
        return;
    }
    for (const CLI::App* inner : commandsOf(*typed.command)) {
        if (inner->get_name() == word) {
            typed = Typed{};
            typed.command = inner;
            typed.options = optionsOf(*inner);
            return;
        }
    }
    if (const OptionText* argument = argumentAt(typed, typed.arguments++)) {
        takeValue(typed, *argument, word);
    }
}

class Completer {
public:
    Completer(Typed words, std::string lastWord, const std::function<void()>& beforeAsking)
        : typed(std::move(words))
        , last(std::move(lastWord))
        , prepareAsking(beforeAsking) {}
    Completion Complete();

private:
    // Adds a candidate when it is printable and continues the last word.
    void Add(const std::string& text, const std::string& description);
    void AddOptions();
    // The values of one option. `prefix` is the part of the last word before the value.
    void AddValues(const std::string& value, const std::string& prefix);
    void AddQueues(const std::string& prefix);
    // `sign` is what follows a key: "=" or nothing.
    void AddSettings(const std::string& prefix, const std::string& sign);
    void AddChoices(PPDXControl& control, const std::string& prefix);
    void AddFiles(const std::string& prefix);
    std::string DescriptionPath();

    Typed typed;
    std::string last;
    const std::function<void()>& prepareAsking;
    platform::FetchedPPD fetched;
    Completion completion;
};

void Completer::Add(const std::string& text, const std::string& description) {
    if (text.starts_with(last) && printable(text) == text) {
        completion.candidates.push_back({text, printable(description)});
    }
}

void Completer::AddOptions() {
    for (const OptionText& option : typed.options) {
        const std::vector<std::string> names = option.Names();
        for (const std::string& name : names) {
            // A short name is offered where the option has no other.
            if (!typed.names.contains(name) && (name.starts_with("--") || names.size() == 1)) {
                Add(name, option.description);
            }
        }
    }
}

void Completer::AddQueues(const std::string& prefix) {
    prepareAsking();
    if (const auto queues = platform::listQueues()) {
        for (const platform::QueueState& queue : *queues) {
            Add(prefix + queue.name, queue.makeAndModel);
        }
    }
}

std::string Completer::DescriptionPath() {
    if (const auto ppd = typed.values.find("PPD"); ppd != typed.values.end()) {
        const char* home = ppd->second.starts_with("~/") ? std::getenv("HOME") : nullptr;
        return home == nullptr ? ppd->second : home + ppd->second.substr(1);
    }
    prepareAsking();
    const auto queue = typed.values.find("QUEUE");
    return fetched.Fetch(queue == typed.values.end() ? platform::defaultQueue() : queue->second);
}

// Lists the folder that the last word names after `prefix`.
void Completer::AddFiles(const std::string& prefix) {
    const std::filesystem::path typedPath = last.substr(std::min(prefix.size(), last.size()));
    const std::filesystem::path folder = typedPath.parent_path();
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, failure), end;
         !failure && entry != end; entry.increment(failure)) {
        std::error_code unknown;
        const bool isFolder = entry->is_directory(unknown);
        Add(prefix + (folder / entry->path().filename()).string() + (isFolder ? "/" : ""), "");
    }
}

void Completer::AddChoices(PPDXControl& control, const std::string& prefix) {
    if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control)) {
        popup->ForEachItem([&](const _PopupItem& item) {
            Add(prefix + jsonText(item.keyword.Buffer()), jsonText(item.LocalName()));
        });
    } else if (control.Type() == CNTL_TYPE::boolean) {
        Add(prefix + "True", "");
        Add(prefix + "False", "");
    }
}

void Completer::AddSettings(const std::string& prefix, const std::string& sign) {
    const std::string word = last.substr(prefix.size());
    const std::size_t equals = word.find('=');
    if (equals != std::string::npos && word.substr(equals + 1).starts_with('@')) {
        AddFiles(prefix + word.substr(0, equals + 2));
        return;
    }
    const std::string path = DescriptionPath();
    const auto description = path.empty() ? nullptr : readDescription(path);
    if (!description || !checkUsable(*description, path)) {
        return;
    }
    const std::string star = word.starts_with('*') ? "*" : "";
    description->GetControls()->ForEach([&](PPDXControl* control) {
        const char* const keyword = control->Keyword();
        if (keyword == nullptr || *keyword != '*' || control->Type() == CNTL_TYPE::specialOption) {
            return;
        }
        const std::string key = keyword + 1;
        const std::string shown = prefix + star + key + sign;
        if (equals == std::string::npos) {
            if (!typed.keys.contains(key)) {
                Add(shown, jsonText(control->CFStringUserName()));
            }
        } else if (last.starts_with(shown)) {
            AddChoices(*control, shown);
        }
    });
}

void Completer::AddValues(const std::string& value, const std::string& prefix) {
    if (value == "QUEUE" || value == "PRINTER") {
        AddQueues(prefix);
    } else if (value == "KEY=VALUE" || value == "KEY") {
        AddSettings(prefix, value == "KEY" ? "" : "=");
    } else if (value == "FOLDER" || value == "BUNDLE") {
        completion.paths = CompletedPaths::folders;
    } else if (value.starts_with("FILE") || value.ends_with(".ppd") || value == "PPD" || value == "LIBRARY") {
        completion.paths = CompletedPaths::files;
    } else if (value.find('|') != std::string::npos) {
        for (std::size_t at = 0; at <= value.size();) {
            const std::size_t end = std::min(value.find('|', at), value.size());
            Add(prefix + value.substr(at, end - at), "");
            at = end + 1;
        }
    }
}

Completion Completer::Complete() {
    const std::size_t equals = last.find('=');
    if (!typed.isOnlyArguments && last.starts_with("--") && equals != std::string::npos) {
        if (const OptionText* option = findOption(typed, last.substr(0, equals))) {
            AddValues(option->value, last.substr(0, equals + 1));
        }
    } else if (!typed.isOnlyArguments && last.starts_with('-')) {
        AddOptions();
    } else if (typed.open) {
        AddValues(typed.open->value, "");
    } else if (const std::vector<const CLI::App*> inner = commandsOf(*typed.command); !inner.empty()) {
        for (const CLI::App* command : inner) {
            Add(command->get_name(), command->get_description());
        }
    } else if (const OptionText* argument = argumentAt(typed, typed.arguments)) {
        AddValues(argument->value, "");
    }
    return std::move(completion);
}

} // namespace

Completion complete(const CLI::App& app, const std::vector<std::string>& words,
                    const std::function<void()>& beforeAsking) {
    Typed typed;
    typed.command = &app;
    typed.options = optionsOf(app);
    for (std::size_t i = 1; i + 1 < words.size(); ++i) {
        takeWord(typed, words[i]);
    }
    return Completer(std::move(typed), words.empty() ? "" : words.back(), beforeAsking).Complete();
}

} // namespace torka::tool
