// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/PrinterDescription.h"

#include "jobproperties/core/Text.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <utility>

namespace torka::jobproperties {

namespace {

constexpr std::size_t maximumBytes = std::size_t{16} << 20;
constexpr std::size_t maximumEntries = 10000;
constexpr std::string_view installableGroup = "InstallableOptions";

// One element's first line: "*KEYWORD OPTION/TRANSLATION: VALUE", each piece trimmed.
struct Line {
    std::string_view keyword; // with its asterisk
    std::string_view option;
    std::string_view translation;
    std::string_view value;
};

Line splitLine(std::string_view text) {
    Line line;
    const std::size_t colon = text.find(':');
    std::string_view head = text.substr(0, colon);
    line.value = colon == std::string_view::npos ? std::string_view() : trimmed(text.substr(colon + 1));
    const std::size_t blank = head.find_first_of(" \t");
    line.keyword = head.substr(0, blank);
    if (blank == std::string_view::npos) {
        return line;
    }
    head = trimmed(head.substr(blank));
    const std::size_t slash = head.find('/');
    line.option = trimmed(head.substr(0, slash));
    if (slash != std::string_view::npos) {
        line.translation = trimmed(head.substr(slash + 1));
    }
    return line;
}

std::string_view unquoted(std::string_view value) {
    if (value.empty() || value.front() != '"') {
        return value;
    }
    value.remove_prefix(1);
    return value.substr(0, value.find('"'));
}

bool hasWord(std::string_view words, std::string_view word) {
    while (!words.empty()) {
        const std::size_t bar = words.find('|');
        if (trimmed(words.substr(0, bar)) == word) {
            return true;
        }
        words = bar == std::string_view::npos ? std::string_view() : words.substr(bar + 1);
    }
    return false;
}

int hexDigit(char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    return character >= 'A' && character <= 'F' ? character - 'A' + 10 : -1;
}

// Decodes the bytes of a translation: "<27>" means the byte 0x27. From the first bracket that is not closed,
// or holds anything but pairs of digits, the text stays as it is.
std::string withoutHex(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const std::size_t open = text.find('<');
        bytes += text.substr(0, open);
        if (open == std::string_view::npos) {
            break;
        }
        text.remove_prefix(open);
        const std::size_t close = text.find('>');
        if (close == std::string_view::npos || close % 2 == 0 ||
            !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(close),
                         [](char character) { return hexDigit(character) >= 0; })) {
            return bytes += text;
        }
        for (std::size_t i = 1; i < close; i += 2) {
            bytes += static_cast<char>(hexDigit(text[i]) * 16 + hexDigit(text[i + 1]));
        }
        text.remove_prefix(close + 1);
    }
    return bytes;
}

std::optional<SettingKind> kindOf(std::string_view type) {
    if (type == "Boolean") {
        return SettingKind::Switch;
    }
    if (type == "PickOne") {
        return SettingKind::Choice;
    }
    if (type == "PickMany") {
        return SettingKind::Choices;
    }
    return std::nullopt;
}

bool isAnyOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

} // namespace

// Reads the lines once. A line that does not begin with an asterisk continues a value. Values of several
// lines are PostScript, which this module does not need.
class DescriptionReader {
public:
    explicit DescriptionReader(PrinterDescription& target)
        : description(target) {}

    void Read(std::string_view bytes) {
        while (!bytes.empty()) {
            const std::size_t end = bytes.find_first_of("\r\n");
            if (bytes.front() == '*') {
                Take(splitLine(bytes.substr(0, end)));
            }
            if (end == std::string_view::npos) {
                break;
            }
            bytes.remove_prefix(end + 1);
        }
        Place();
    }

private:
    void Take(const Line& line) {
        if (line.keyword == "*LanguageEncoding") {
            decoder.emplace(unquoted(line.value));
        } else if (line.keyword == "*ModelName") {
            description.modelName = Label(unquoted(line.value), "");
        } else if (isAnyOf(line.keyword, {"*OpenUI", "*QVOpenUI", "*BeginUI", "*OpenUIZAN"})) {
            OpenBlock(line);
        } else if (isAnyOf(line.keyword, {"*CloseUI", "*QVCloseUI", "*EndUI", "*CloseUIZAN"})) {
            block.reset();
        } else if (line.keyword == "*OpenGroup") {
            OpenGroup(line);
        } else if (line.keyword == "*CloseGroup") {
            openGroup.clear();
        } else if (line.keyword.starts_with("*%ZAN")) {
            TakeExtension(line);
        } else if (line.keyword.starts_with("*Default") || line.keyword.starts_with("*%Default")) {
            TakeDefault(line);
        } else if (block) {
            TakeChoice(line);
        }
    }

    void TakeExtension(const Line& line) {
        const std::string_view word = line.keyword.substr(5);
        if (word == "PropPage") {
            pages.emplace_back(line.option, Label(line.translation, line.option),
                               !hasWord(line.value, "True"));
        } else if (word == "GroupName" || word == "SubGroupName") {
            names.emplace(line.option,
                          Name{Label(line.translation, line.option), !hasWord(line.value, "True")});
        } else if (word == "Parent") {
            TakeParent(line);
        } else if (word == "Flags") {
            flags[std::string(bareKey(line.option))] = std::string(line.value);
        } else if (word == "Group") {
            groupOf[std::string(bareKey(line.option))] = std::string(line.value);
        } else if (word == "Range" || word == "UnitRange") {
            TakeRange(line, SettingKind::Whole);
        } else if (word == "FloatRange") {
            TakeRange(line, SettingKind::Decimal);
        } else if (word == "JobNote") {
            TakeNote(line);
        }
    }

    void TakeParent(const Line& line) {
        // The parent of a pane is a page, the parent of a roll-down is a pane.
        if (hasWord(line.value, "Scrollpane")) {
            pageOfPane.emplace(line.option, line.translation);
            return;
        }
        const auto name = names.find(std::string(line.option));
        if (!hasWord(line.value, "Rolldown") || name == names.end()) {
            return;
        }
        const auto pane = pageOfPane.find(std::string(line.translation));
        const auto page = std::find_if(pages.begin(), pages.end(), [&](const Page& candidate) {
            return pane != pageOfPane.end() && candidate.name == pane->second;
        });
        const bool hidden =
            name->second.hidden || !hasWord(line.value, "True") || (page != pages.end() && page->hidden);
        AddGroup(
            {std::string(line.option), name->second.label, page == pages.end() ? "" : page->label, hidden});
    }

    void AddGroup(DescribedGroup group) {
        if (description.groups.size() < maximumEntries &&
            description.groupIndex.emplace(group.name, description.groups.size()).second) {
            description.groups.push_back(std::move(group));
        }
    }

    void OpenGroup(const Line& line) {
        // "*OpenGroup: NAME/LABEL": name and label follow the colon.
        const std::size_t slash = line.value.find('/');
        openGroup = std::string(trimmed(line.value.substr(0, slash)));
        const std::string label = Label(
            slash == std::string_view::npos ? std::string_view() : line.value.substr(slash + 1), openGroup);
        if (!names.contains(openGroup)) {
            AddGroup({openGroup, label, "", false});
        }
    }

    DescribedSetting* Add(std::string_view key, std::string_view translation, SettingKind kind) {
        const std::string_view bare = bareKey(key);
        if (bare.empty() || description.settings.size() >= maximumEntries ||
            !description.settingIndex.emplace(bare, description.settings.size()).second) {
            return nullptr; // keeps the first one
        }
        DescribedSetting& setting = description.settings.emplace_back();
        setting.key = std::string(bare);
        setting.label = Label(translation, bare);
        setting.group = openGroup;
        setting.kind = kind;
        return &setting;
    }

    void OpenBlock(const Line& line) {
        const auto kind = kindOf(line.value);
        block.reset();
        if (kind && Add(line.option, line.translation, *kind) != nullptr) {
            block = description.settings.size() - 1;
        }
    }

    void TakeChoice(const Line& line) {
        DescribedSetting& setting = description.settings[*block];
        if (bareKey(line.keyword) != setting.key || line.option.empty() ||
            setting.choices.size() >= maximumEntries) {
            return;
        }
        setting.choices.push_back({std::string(line.option), Label(line.translation, line.option)});
        if (setting.defaultValue.empty()) {
            setting.defaultValue = setting.choices.front().key;
        }
    }

    // "*DefaultKEY: VALUE" or "*Default *KEY: VALUE".
    void TakeDefault(const Line& line) {
        std::string_view key = line.keyword.substr(line.keyword.find("Default") + 7);
        key = bareKey(key.empty() ? line.option : key);
        const auto found = description.settingIndex.find(std::string(key));
        if (found != description.settingIndex.end()) {
            description.settings[found->second].defaultValue = Label(unquoted(line.value), "");
        }
    }

    void TakeRange(const Line& line, SettingKind kind) {
        DescribedSetting* setting = Add(line.option, line.translation, kind);
        if (setting == nullptr) {
            return;
        }
        std::array<std::optional<double>, 4> numbers;
        std::string_view rest = line.value;
        for (auto& number : numbers) {
            const std::size_t end = rest.find_first_of(";()");
            number = decimalNumber(trimmed(rest.substr(0, end)));
            rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        }
        const bool complete = std::all_of(numbers.begin(), numbers.end(),
                                          [](const auto& number) { return number.has_value(); });
        if (!complete || *numbers[0] > *numbers[1] || *numbers[2] <= 0) {
            setting->kind = SettingKind::Text; // no bounds to check a value
            return;
        }
        setting->minimum = *numbers[0];
        setting->maximum = *numbers[1];
        setting->increment = *numbers[2];
        setting->defaultValue = decimalText(*numbers[3]);
    }

    void TakeNote(const Line& line) {
        const bool isSwitch = hasWord(line.value, "OnOfSwitch");
        DescribedSetting* setting =
            Add(line.option, line.translation, isSwitch ? SettingKind::Switch : SettingKind::Text);
        if (setting == nullptr) {
            return;
        }
        setting->secret = hasWord(line.value, "Password") || hasWord(line.value, "Encrypt") ||
                          hasWord(line.value, "AESEncrypt") || isSecretName(line.option);
        if (const auto length = decimalNumber(trimmed(line.value.substr(0, line.value.find('|'))));
            length && *length > 0 && *length < 10000) {
            setting->maximumLength = static_cast<std::size_t>(*length);
        }
    }

    // Lines of flags and groups may come before or after a control, so groups are assigned at the end.
    void Place() {
        for (DescribedSetting& setting : description.settings) {
            if (const auto group = groupOf.find(setting.key); group != groupOf.end()) {
                setting.group = group->second;
            }
            if (const auto words = flags.find(setting.key); words != flags.end()) {
                setting.hidden = hasWord(words->second, "NoTorkaDriverUI") ||
                                 hasWord(words->second, "DriverUserDisplayHidden");
            }
            if (const DescribedGroup* group = description.FindGroup(setting.group)) {
                setting.hidden = setting.hidden || (group->hidden && group->name != installableGroup);
            }
        }
    }

    std::string Label(std::string_view translation, std::string_view otherwise) const {
        return decoder->ToUtf8(withoutHex(translation.empty() ? otherwise : translation));
    }

    struct Page {
        std::string name;
        std::string label;
        bool hidden;
        Page(std::string_view pageName, std::string pageLabel, bool isHidden)
            : name(pageName)
            , label(std::move(pageLabel))
            , hidden(isHidden) {}
    };
    struct Name {
        std::string label;
        bool hidden;
    };

    PrinterDescription& description;
    std::optional<TextDecoder> decoder{std::in_place, ""};
    std::vector<Page> pages;
    std::unordered_map<std::string, Name> names; // of panes and roll-downs
    std::unordered_map<std::string, std::string> pageOfPane;
    std::unordered_map<std::string, std::string> groupOf, flags; // by key
    std::string openGroup;                                       // the name of the group that is open
    std::optional<std::size_t> block;                            // the setting whose choices are being listed
};

bool isSecretName(std::string_view key) {
    return key.find("Password") != std::string_view::npos || bareKey(key) == "QVUserAuthPwd";
}

PrinterDescription PrinterDescription::FromText(std::string_view bytes) {
    PrinterDescription description;
    if (bytes.starts_with("*PPD-Adobe") && bytes.size() <= maximumBytes) {
        DescriptionReader(description).Read(bytes);
    }
    return description;
}

PrinterDescription PrinterDescription::FromFile(const std::string& path, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes;
    std::array<char, 65536> piece;
    while (bytes.size() <= maximumBytes && (file.read(piece.data(), piece.size()) || file.gcount() > 0)) {
        bytes.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (bytes.empty()) {
        error = "The printer description %1 cannot be read.";
    } else if (bytes.size() > maximumBytes || !bytes.starts_with("*PPD-Adobe")) {
        error = "%1 is no printer description.";
    }
    return FromText(bytes);
}

const DescribedSetting* PrinterDescription::Find(std::string_view key) const {
    const auto found = settingIndex.find(std::string(bareKey(key)));
    return found == settingIndex.end() ? nullptr : &settings[found->second];
}

const DescribedGroup* PrinterDescription::FindGroup(std::string_view name) const {
    const auto found = groupIndex.find(std::string(name));
    return found == groupIndex.end() ? nullptr : &groups[found->second];
}

std::string_view bareKey(std::string_view key) {
    return key.substr(std::min(key.find_first_not_of('*'), key.size()));
}

} // namespace torka::jobproperties
