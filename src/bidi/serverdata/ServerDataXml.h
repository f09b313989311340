// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/memory/ModuleMemory.h"
#include "bidi/memory/SharedMemoryList.h"
#include "bidi/serverdata/RecordLines.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

// The XML text "SMDData". It gives the path of the description and the installed options.

namespace torka {

// The text as an attribute's value (XML 1.0). Markup characters, tabs and line ends become references.
// Characters that XML forbids become U+FFFD.
std::wstring xmlEscaped(std::wstring_view text);

// The values in the head of the XML text.
struct ServerDataHead {
    std::wstring language; // server language code
    std::wstring ppdPath;
    std::optional<std::wstring> server; // address; nullopt without two-way communication
};

// The XML text with one element for each option's key and value. The text has at most `maximumUnits` units:
// from the first option that does not fit, options are left out, and the standard error stream gives their
// number. Empty when the text without options does not fit.
std::wstring serverDataXml(const ServerDataHead& head, std::span<const KeyValueView> options,
                           std::size_t maximumUnits = std::wstring::npos);

// Gives an empty `ppdLocation0` of such a text this path. A text without the attribute, or with a path of its
// own, stays as it is.
std::wstring withDescriptionPath(std::wstring_view xml, std::wstring_view ppdPath);

// The indexes of the entries that the exchange record's list of installable options names, in its order. The
// list separates its items by commas. An item is an index or a key; an item that names no entry is skipped.
std::vector<std::size_t> installedOptions(const SharedMemoryList& record);

// Writes the XML text for a launch without two-way communication, from the exchange record, into a block of
// 8,192 bytes. SDM_NOT_AVAILABLE, with null, when memory runs out or the text without options does not fit.
SDMRESULT serverDataNonBidi(const SharedMemoryList& record, std::string_view language,
                            const ModuleMemory& memory, wchar_t*& out);

// The size of that block in bytes.
inline constexpr std::size_t serverDataBlock = 8192;

} // namespace torka
