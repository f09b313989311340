// SPDX-License-Identifier: Apache-2.0
// Makes watermark resources from arbitrary definitions, for every language and orientation. A resource has
// the same PostScript structure as one from harmless values. It is short enough for a job when the
// watermark's text is short.

#include "fuzz/Fuzzing.h"
#include "output/WatermarkTemplates.h"
#include "output/ZANWatermark.h"

#include <array>
#include <map>
#include <string>
#include <tuple>

namespace {

using namespace torka;
using namespace torka::fuzz;

constexpr std::size_t jobLimit = 5120;
constexpr std::size_t longestSafeText = 200; // bytes; a byte may become four, with two digits each

using Counts = std::array<std::size_t, 256>;

// Counts the characters that give PostScript its structure. Requires printable ASCII and line ends.
Counts structure(const std::string& resource) {
    constexpr std::string_view special = "()<>[]{}/%\\ \n";
    Counts all{};
    for (const char each : resource) {
        ++all[static_cast<unsigned char>(each)];
    }
    Counts counts{};
    for (std::size_t code = 0; code < all.size(); ++code) {
        require(all[code] == 0 || code == '\n' || (code >= ' ' && code <= '~'));
        if (special.find(static_cast<char>(code)) != std::string_view::npos) {
            counts[code] = all[code];
        }
    }
    return counts;
}

// The structure of a resource with harmless values.
const Counts& plainStructure(const char* language, bool isClear, bool isJapanese) {
    static std::map<std::tuple<std::string, bool, bool>, Counts> known;
    const auto [place, isNew] = known.try_emplace({language, isClear, isJapanese});
    if (isNew) {
        const std::string definition =
            std::string(isClear ? "1" : "0") + ",,,,,,,,,,,,," + (isJapanese ? "F-H," : "F,");
        place->second = structure(ZANWatermark(definition.c_str()).Resource(language, 1));
    }
    return place->second;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string definition(data, data + size);
    for (const char* language : {"English", "Japanese", "Chinese", "Russian"}) {
        for (std::uint16_t orientation = 1; orientation <= 4; ++orientation) {
            ZANWatermark watermark(definition.c_str());
            const std::string resource = watermark.Resource(language, orientation);
            const std::string& hex = watermark.GetWMTextInHex(language, watermark.FontName());
            require(hex.size() % 2 == 0 && hex.find_first_not_of("0123456789ABCDEF") == std::string::npos);
            require(resource.find("/Watermark <" + hex + "> def\n") != std::string::npos);
            require(watermark.Text().size() > longestSafeText || resource.size() < jobLimit);

            const WatermarkFontKind kind =
                watermarkFontKind(language, postScriptFontName(watermark.FontName()));
            require(structure(resource) ==
                    plainStructure(language, watermark.IsClear(), kind == WatermarkFontKind::japanese));
        }
    }
    return 0;
}
