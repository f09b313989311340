#pragma once

#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

// Reading a description and the settings of a command line.

namespace torka::tool {

using Json = nlohmann::ordered_json;

// Parses with orphans and hidden elements accepted. `lint` may be null.
std::unique_ptr<ZANPPD> readDescription(const std::string& path, PPDLint* lint = nullptr);
// Why nothing can be done with the description, in one line; "" when something can.
std::string fatalError(const ZANPPD& description, const std::string& path);
// Reads a description for a command that needs a usable one. Null, with one line on standard error, when it
// is not.
std::unique_ptr<ZANPPD> readUsableDescription(const std::string& path);

struct Setting {
    std::string key; // with its asterisk
    std::string value;
};

// "KEY=VALUE", the key with or without its asterisk. False, and `error` says why, when the text has no "=",
// the description has no such control, or its value is not one that the control takes.
bool parseSetting(const ZANPPD& description, const std::string& text, Setting& setting, std::string& error);
bool parseSettings(const ZANPPD& description, const std::vector<std::string>& texts,
                   std::vector<Setting>& settings);
// In order.
void applySettings(ZANPPD& description, const std::vector<Setting>& settings);

// Text for JSON: what is no UTF-8 becomes U+FFFD.
std::string jsonText(const char* bytes);
std::string jsonText(const CFStringRef& text);
// Two blanks of indent and a line end.
std::string jsonDocument(const Json& json);

} // namespace torka::tool
