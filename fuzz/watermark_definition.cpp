// Definitions of any kind for every language and orientation: what comes out is the resource that harmless
// values give, with other numbers, names and digits in it, and short enough for a job when the text is.

#include "output/WatermarkTemplates.h"
#include "output/ZANWatermark.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace {

using namespace torka;

constexpr std::size_t jobLimit = 5120;
constexpr std::size_t longestSafeText = 200; // bytes; one may become four, of two digits each

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// How often each character stands there that gives PostScript its structure; no other than ASCII may.
std::array<std::size_t, 256> structure(const std::string& resource) {
    constexpr std::string_view special = "()<>[]{}/%\\ \n";
    std::array<std::size_t, 256> counts{};
    for (const char each : resource) {
        require(each == '\n' || (each >= ' ' && each <= '~'));
        if (special.find(each) != std::string_view::npos) {
            ++counts[static_cast<unsigned char>(each)];
        }
    }
    return counts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string definition(data, data + size);
    for (const char* language : {"English", "Japanese", "Chinese", "Russian"}) {
        for (std::uint16_t orientation = 0; orientation <= 5; ++orientation) {
            ZANWatermark watermark(definition.c_str());
            const std::string resource = watermark.Resource(language, orientation);
            const std::string& hex = watermark.GetWMTextInHex(language, watermark.FontName());
            require(hex.size() % 2 == 0 && hex.find_first_not_of("0123456789ABCDEF") == std::string::npos);
            require(resource.find("/Watermark <" + hex + "> def\n") != std::string::npos);
            require(watermark.Text().size() > longestSafeText || resource.size() < jobLimit);

            const std::string font = postScriptFontName(watermark.FontName());
            const std::string harmless = std::string(watermark.IsClear() ? "1" : "0") + ",,,,,,,,,,,,,";
            const bool isJapanese = watermarkFontKind(language, font) == WatermarkFontKind::japanese;
            ZANWatermark plain((harmless + (isJapanese ? "F-H," : "F,")).c_str());
            require(structure(resource) == structure(plain.Resource(language, 1)));
        }
    }
    return 0;
}
