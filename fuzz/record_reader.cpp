// SPDX-License-Identifier: Apache-2.0
// Reads two-way records from hostile texts. Compares the reader and the index with a slow reader. Also parses
// the text as that of a command job.

#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/RecordText.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/QuietStreams.h"
#include "fuzz/RecordOracle.h"

#include <cstdint>
#include <optional>
#include <string>

namespace {

using namespace torka;
using namespace torka::fuzz;

std::optional<std::string> textOf(const RecordBlock& block, std::size_t size) {
    require(block ? block[size] == '\0' : size == 0);
    return block ? std::optional(std::string(block.get(), size)) : std::nullopt;
}

void checkRequest(std::string_view text) {
    if (const std::optional<UpdateRequest> request = parseUpdateRequest(text)) {
        const std::string joined =
            updateRequestText(request->identifier, request->printerAddress, requestText(request->lines));
        require(isRequestIdentifier(request->identifier) && request->printerAddress.size() <= 255);
        require(parseUpdateRequest(joined)->identifier == request->identifier);
    }
}

} // namespace

// Input: the first line is the record's name, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quietStreams();
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string name = input.substr(0, end);
    const std::string text = input.substr(std::min(end + 1, input.size()));

    std::size_t length = 0;
    const RecordBlock block = CFileHdlr::stringReadData(text, name, &length);
    const std::optional<std::string> payload = textOf(block, length);
    require(payload == readSlowly(text, name));
    const RecordText index(text);
    const RecordBlock indexed = index.Read(name, &length);
    require(textOf(indexed, length) == payload);
    for (const auto& [known, knownSize] : index.Sizes()) {
        require(index.Read(known, &length) != nullptr && length == knownSize);
    }
    std::string written;
    if (payload && CFileHdlr::fileWriteData(name, payload->data(), payload->size(), written)) {
        const RecordBlock again = CFileHdlr::stringReadData(written, name, &length);
        require(textOf(again, length) == payload);
    }
    checkRequest(input);
    return 0;
}
