// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Settings.h"

#include <optional>
#include <string>
#include <string_view>

namespace torka {

// The fields of one element in stored settings, under keys like "Control12.keyword". Refers to the settings.
//
// Texts may be any bytes. Bytes that a property list preserves are stored behind "=", all others as
// hexadecimal digits behind "#". A missing or malformed field reads as absent.
class StoredRecord {
public:
    StoredRecord(Settings& store, std::string_view prefix, int index);

    void SetText(std::string_view field, std::string_view bytes);
    // Does not store a null text.
    void SetText(std::string_view field, const char* text);
    void SetInteger(std::string_view field, std::int64_t value);
    void SetReal(std::string_view field, double value);

    std::optional<std::string> Text(std::string_view field) const;
    std::int64_t Integer(std::string_view field, std::int64_t otherwise = 0) const;
    // Returns a number from 0 to 1,000,000,000, else 0.
    int Index(std::string_view field) const;
    float Real(std::string_view field) const;
    bool Has(std::string_view field) const { return settings.Has(Key(field)); }

private:
    std::string Key(std::string_view field) const;

    Settings& settings;
    std::string start;
};

} // namespace torka
