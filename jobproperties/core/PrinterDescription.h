#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// What a printer description says about its settings, as far as a window needs it: the tree of pages and
// groups, the name of each setting in the description's language, its choices or bounds, and what it begins
// with.

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
    std::vector<DescribedChoice> choices; // of a switch too: the texts of its two states
    std::string defaultValue;
    double minimum = 0;
    double maximum = 0;
    double increment = 1;
    std::size_t maximumLength = 0; // characters of a text; 0: no limit
    bool secret = false;           // its text is never shown: a password, or for the controller alone
    bool hidden = false;           // the description keeps it from the user
};

struct DescribedGroup {
    std::string name;
    std::string label; // UTF-8
    std::string page;  // label of the page that holds it, UTF-8; empty: it stands alone
    bool hidden = false;
};

// Values of one description, read once. Whatever the bytes are, reading ends and gives what was understood.
class PrinterDescription {
public:
    // A description of more than 16 MB, and settings, groups or choices beyond 10,000, are not read.
    static PrinterDescription FromText(std::string_view bytes);
    // Empty when the file cannot be read or is no PPD; `error` then says why.
    static PrinterDescription FromFile(const std::string& path, std::string& error);

    const std::vector<DescribedGroup>& Groups() const { return groups; }
    const std::vector<DescribedSetting>& Settings() const { return settings; }
    // By its key, with or without an asterisk before it; null when the description does not know it.
    const DescribedSetting* Find(std::string_view key) const;
    const DescribedGroup* FindGroup(std::string_view name) const;
    const std::string& ModelName() const { return modelName; }

private:
    friend class DescriptionReader;

    std::vector<DescribedGroup> groups; // in the order of the description
    std::vector<DescribedSetting> settings;
    std::unordered_map<std::string, std::size_t> settingIndex;
    std::unordered_map<std::string, std::size_t> groupIndex;
    std::string modelName;
};

// Whether a key's name alone says that its value is a password.
bool isSecretName(std::string_view key);

// A key without the asterisk that may stand before it (or all of them, so that the result is bare).
std::string_view bareKey(std::string_view key);

} // namespace torka::jobproperties
