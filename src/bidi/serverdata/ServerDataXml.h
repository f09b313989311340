#pragma once

#include "bidi/memory/ModuleMemory.h"
#include "bidi/memory/SharedMemoryList.h"
#include "bidi/serverdata/RecordLines.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

// The XML text "SMDData": where the description lies, and which options are installed.

namespace torka {

// Text for an attribute's value (XML 1.0): markup and white space as references, what no XML document may
// hold as U+FFFD.
std::wstring xmlEscaped(std::wstring_view text);

// The text's head.
struct ServerDataHead {
    std::wstring language; // server language code
    std::wstring ppdPath;
    std::optional<std::wstring> server; // its address; none without two-way communication
};

// The text with an element for each option, key and value, as long as it stays within `mostUnits`: an option
// that does not fit, and those behind it, are left out and told on the standard error stream. Empty when not
// even the text without options fits.
std::wstring serverDataXml(const ServerDataHead& head, std::span<const KeyValueView> options,
                           std::size_t mostUnits = std::wstring::npos);

// The entries that the exchange record's list of installable options names, in its order: a comma-separated
// list of their places in the key table, or of their keys. What names none is passed over.
std::vector<std::size_t> installedOptions(const SharedMemoryList& record);

// The text from the exchange record, without two-way communication, in a block of 8,192 bytes: SDM_SUCCESS,
// or SDM_NOT_AVAILABLE, with null, when there is no memory or the block does not hold the text without
// options.
SDMRESULT serverDataNonBidi(const SharedMemoryList& record, std::string_view language,
                            const ModuleMemory& memory, wchar_t*& out);

// Of that block, in bytes.
inline constexpr std::size_t serverDataBlock = 8192;

} // namespace torka
