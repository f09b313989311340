// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"
#include "platform/SecretMemory.h"

#include <string>
#include <string_view>

// The value of a setting on a command line: the text itself, or where it stands. A command line is visible to
// other users, so that a secret belongs elsewhere.

namespace torka::tool {

// Wiped with its last copy.
struct SettingText {
    SettingText() = default;
    SettingText(const SettingText&) = default;
    SettingText(SettingText&&) noexcept = default;
    SettingText& operator=(const SettingText&) = default;
    SettingText& operator=(SettingText&&) noexcept = default;
    ~SettingText() { platform::wipeText(bytes); }

    std::string bytes;
    bool isHidden = false; // from a file or standard input: no message repeats it
};

inline constexpr std::size_t maximumSettingBytes = 65536;

// Returns the text of `given`. "@FILE" means the content of a file, "@-" standard input, and "@@TEXT" the
// text "@TEXT"; anything else means itself. One line feed at the end of a file is no part of the text. Fails
// when the file cannot be read, is longer than maximumSettingBytes, holds a NUL, or is not UTF-8.
Result<SettingText> readSettingText(std::string_view given);

// Whether the text stands on standard input.
inline bool readsStandardInput(std::string_view given) { return given == "@-"; }

} // namespace torka::tool
