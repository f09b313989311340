// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "platform/Result.h"
#include "platform/SecretMemory.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

// Reads a description and the settings of a command line.

namespace torka::tool {

// Begin one with Json::object() or Json::array(). A null value that [] or push_back changes is left without
// content when memory runs out, and the destructor of version 3.11.2 reads the content.
using Json = nlohmann::ordered_json;

inline constexpr std::size_t maximumDescription = std::size_t{64} * 1024 * 1024; // bytes

// Parses with orphans and hidden elements accepted. `lint` may be null.
std::unique_ptr<ZANPPD> readDescription(const std::string& path, PPDLint* lint = nullptr);
// Fails when the description is unusable.
Result<void> checkUsable(const ZANPPD& description, const std::string& path);
// The encoding whose byte-order mark stands at the beginning of the file; "" for none.
std::string markedEncoding(const std::string& path);
// Reads a description. Fails when it is unusable.
Result<std::unique_ptr<ZANPPD>> readUsableDescription(const std::string& path);

// Wiped with its last copy.
struct Setting {
    Setting() = default;
    Setting(const Setting&) = default;
    Setting(Setting&&) noexcept = default;
    Setting& operator=(const Setting&) = default;
    Setting& operator=(Setting&&) noexcept = default;
    ~Setting() {
        platform::wipeText(value);
        platform::wipeText(shown);
    }

    std::string key;   // with its asterisk
    std::string value; // in the form that the control reads
    std::string shown; // the value as it was given, for messages
};

inline constexpr const char* settingHelp = "Setting; KEY=@FILE takes a file, KEY=@- the input";

// Parses texts of the form "KEY=VALUE"; a key may lack its asterisk, and VALUE may name a file
// (readSettingText). Fails when a text has no "=", the description has no such control, the control does not
// take the value, the value is no UTF-8, or two values stand on standard input.
Result<std::vector<Setting>> parseSettings(const ZANPPD& description, const std::vector<std::string>& texts);
// Applies the settings in the given order. Returns a text for each number that the control changed to fit its
// bounds and steps.
std::vector<std::string> applySettings(ZANPPD& description, const std::vector<Setting>& settings);

// Text for JSON. Invalid UTF-8 becomes U+FFFD.
std::string jsonText(const char* bytes);
std::string jsonText(const CFStringRef& text);
// Indents by two blanks and ends with a line feed. Escapes what could control a terminal.
std::string jsonDocument(const Json& json);

} // namespace torka::tool
