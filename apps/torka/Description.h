#pragma once

#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

// Reads a description and the settings of a command line.

namespace torka::tool {

using Json = nlohmann::ordered_json;

// Parses with orphans and hidden elements accepted. `lint` may be null.
std::unique_ptr<ZANPPD> readDescription(const std::string& path, PPDLint* lint = nullptr);
// The reason why the description is unusable, in one line; "" when it is usable.
std::string fatalError(const ZANPPD& description, const std::string& path);
// Reads a description. Null, with one line on standard error, when it is unusable.
std::unique_ptr<ZANPPD> readUsableDescription(const std::string& path);

struct Setting {
    std::string key; // with its asterisk
    std::string value;
};

// Parses "KEY=VALUE"; the key may lack its asterisk. False, with the reason in `error`, when the text has no
// "=", the description has no such control, or the control does not take the value.
bool parseSetting(const ZANPPD& description, const std::string& text, Setting& setting, std::string& error);
bool parseSettings(const ZANPPD& description, const std::vector<std::string>& texts,
                   std::vector<Setting>& settings);
// Applies the settings in the given order.
void applySettings(ZANPPD& description, const std::vector<Setting>& settings);

// Text for JSON. Invalid UTF-8 becomes U+FFFD.
std::string jsonText(const char* bytes);
std::string jsonText(const CFStringRef& text);
// Indents by two blanks and ends with a line feed.
std::string jsonDocument(const Json& json);

} // namespace torka::tool
