// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

// Stored settings: texts by key, in UTF-8, in the keys' order. Controls store their values in it (Save,
// Restore).
//
// On disk it is a property list with a dictionary of strings. Use CopyAsDictionary and the constructor from a
// dictionary with the readers and writers of platform/PropertyList.h.

namespace torka {

class Settings {
public:
    Settings() = default;

    void Set(std::string_view key, std::string_view value);
    void SetInteger(std::string_view key, std::int64_t value);
    // Writes the shortest text that reads back as the same number, in the C locale.
    void SetReal(std::string_view key, double value);

    bool Has(std::string_view key) const { return values.contains(key); }
    // Returns nothing when there is no such key.
    std::optional<std::string> Get(std::string_view key) const;
    // Return nothing when there is no such key, or its whole text is not a number of that type.
    std::optional<std::int64_t> GetInteger(std::string_view key) const;
    std::optional<double> GetReal(std::string_view key) const;

    // Given interface; no caller here
    // Ignores entries that are not strings.
    explicit Settings(const CFDictionaryRef& stored);

    // For the tests; no caller here
    void Remove(std::string_view key);
    const std::map<std::string, std::string, std::less<>>& Values() const { return values; }
    CFDictionaryRef CopyAsDictionary() const;

private:
    std::map<std::string, std::string, std::less<>> values;
};

} // namespace torka
