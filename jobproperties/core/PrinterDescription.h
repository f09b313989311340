// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The parts of a printer description that a window needs: the tree of pages and groups, and for each setting
// its name in the description's language, its choices or bounds, and its default.

namespace torka::jobproperties {

enum class SettingKind {
    Choice,  // one of the choices
    Choices, // several of the choices, separated by commas
    Switch,  // "True" or "False"
    Whole,   // a whole number within bounds
    Decimal, // a decimal number within bounds
    Text,    // free text
};

struct DescribedChoice {
    std::string key;
    std::string label; // UTF-8
};

struct DescribedSetting {
    std::string key;   // without its asterisk
    std::string label; // UTF-8
    std::string group; // name of the group; empty: none
    SettingKind kind = SettingKind::Text;
    std::vector<DescribedChoice> choices; // for a switch the texts of its two states
    std::string defaultValue;
    double minimum = 0;
    double maximum = 0;
    double increment = 1;
    std::size_t maximumLength = 0; // characters of a text; 0: no maximum
    bool secret = false;           // its text is never shown: a password, or only for the controller
    bool hidden = false;           // the description hides it from the user
};

struct DescribedGroup {
    std::string name;
    std::string label; // UTF-8
    std::string page;  // label of its page, UTF-8; empty: no page
    bool hidden = false;
};

// The values of one description, read once. Reading ends for any input and returns what it understood.
class PrinterDescription {
public:
    // Ignores a description of more than 16 MB, and settings, groups or choices beyond 10,000.
    static PrinterDescription FromText(std::string_view bytes);
    // Returns an empty description when the file cannot be read or is not a PPD; `error` then holds the
    // reason, in English, with "%1" for the path.
    static PrinterDescription FromFile(const std::string& path, std::string& error);

    const std::vector<DescribedGroup>& Groups() const { return groups; }
    // Finds a setting by its key, with or without an asterisk. Returns null for an unknown key.
    const DescribedSetting* Find(std::string_view key) const;
    const DescribedGroup* FindGroup(std::string_view name) const;

    // For the tests; no caller here
    const std::vector<DescribedSetting>& Settings() const { return settings; }

private:
    friend class DescriptionReader;

    std::vector<DescribedGroup> groups; // in the order of the description
    std::vector<DescribedSetting> settings;
    std::unordered_map<std::string, std::size_t> settingIndex;
    std::unordered_map<std::string, std::size_t> groupIndex;
    std::string modelName;
};

// Tells whether the name of a key marks its value as a password.
bool isSecretName(std::string_view key);

// Returns a key without the asterisks before it.
std::string_view bareKey(std::string_view key);

} // namespace torka::jobproperties
