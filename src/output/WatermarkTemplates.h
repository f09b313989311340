#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The PostScript resources that draw a watermark.
//
// Each runs on any PostScript 3 interpreter: fonts and CMaps of the controller are looked for and replaced
// when they are missing, an error while drawing loses the watermark of that page and never the job, and the
// operand, dictionary and graphics state stacks are left as they were.

namespace torka {

// Which fonts a watermark's text needs.
enum class WatermarkFontKind {
    japanese,      // a composite font, used as it is
    chinese,       // a CIDFont under /GB-EUC-H
    latinExtended, // a CIDFont under a CMap for UTF-8: Russian, Turkish, Polish, Czech
    latin          // a font re-encoded to ISO Latin-1 with the Euro sign at 128
};

// For a description's "*LanguageVersion" and a font name.
WatermarkFontKind watermarkFontKind(std::string_view language, std::string_view fontName);

// What a resource is told, in the order in which it stands there.
struct WatermarkParameters {
    bool isLandscape = false;
    bool isReverseLandscape = false;
    std::string fontName; // as postScriptFontName makes it
    std::string textInHex;
    std::int32_t fontSize = 0; // points
    bool isClear = false;      // only Japanese and Latin fonts know it
    int red = 0;               // 0 to 255
    int green = 0;
    int blue = 0;
    std::int32_t angle = 0;   // tenths of a degree
    std::int32_t xOffset = 0; // points
    std::int32_t yOffset = 0;
    bool isOnAllPages = true;
};

std::string watermarkResource(WatermarkFontKind kind, const WatermarkParameters& parameters);

// A font name from outside, blanks at its ends cut off, as it may stand in PostScript. Names are made of 1 to
// 117 of the printable regular characters (PLRM 3.2.2), the backslash excepted, which means something in a
// string; 10 more make the longest name that an interpreter must take (PLRM, appendix B). "Helvetica" stands
// for any other name.
std::string postScriptFontName(std::string_view fontName);

} // namespace torka
