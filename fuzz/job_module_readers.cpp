// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/PrinterDescription.h"
#include "jobproperties/core/Script.h"
#include "jobproperties/core/Server.h"
#include "jobproperties/core/Text.h"
#include "jobproperties/core/Watermark.h"

#include <cstdint>
#include <cstdlib>

// Runs the readers of the sample module: descriptions, watermark definitions, server data in XML, wide text,
// scripts. The first byte of the input chooses the reader.

using namespace torka::jobproperties;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void readDescription(std::string_view text) {
    const auto description = PrinterDescription::FromText(text);
    for (const DescribedSetting& setting : description.Settings()) {
        require(description.Find(setting.key) == &setting);
    }
}

// A definition that was written is read and written again unchanged.
void readWatermark(std::string_view text) {
    const std::string definition = Watermark::FromDefinition(text).Definition();
    require(Watermark::FromDefinition(definition).Definition() == definition);
}

void readWideText(std::string_view text) {
    std::wstring wide;
    for (std::size_t i = 0; i + 4 <= text.size(); i += 4) {
        std::uint32_t unit = 0;
        for (std::size_t byte = 0; byte < 4; ++byte) {
            unit = unit << 8 | static_cast<std::uint8_t>(text[i + byte]);
        }
        wide += static_cast<wchar_t>(unit);
    }
    const std::string clean = fromWide(wide.c_str());
    require(fromWide(toWide(clean).c_str()) == clean);
    static const TextDecoder decoders[] = {TextDecoder("UTF-8"), TextDecoder("ISOLatin2"),
                                           TextDecoder("JIS83-RKSJ"), TextDecoder("MacStandard")};
    for (const TextDecoder& decoder : decoders) {
        const std::string converted = decoder.ToUtf8(text);
        require(cleanUtf8(converted) == converted);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (*data) {
    case 'd':
        readDescription(text);
        break;
    case 'w':
        readWatermark(text);
        break;
    case 'x':
        attributeOf(text, "ppdLocation0");
        break;
    case 't':
        readWideText(text);
        break;
    case 's':
        Script::FromText(text);
        break;
    default:
        break;
    }
    return 0;
}
