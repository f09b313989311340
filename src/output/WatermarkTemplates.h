// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The PostScript resources that draw a watermark.
//
// Each resource runs on any PostScript 3 interpreter. It looks for fonts and CMaps of the controller and
// replaces missing ones. An error while drawing loses the watermark of that page, never the job. The operand,
// dictionary and graphics state stacks stay as they were.

namespace torka {

// The kind of font that a watermark's text needs.
enum class WatermarkFontKind {
    japanese,      // a composite font, used without change
    chinese,       // a CIDFont under /GB-EUC-H
    latinExtended, // a CIDFont under a CMap for UTF-8: Russian, Turkish, Polish, Czech
    latin          // a font re-encoded to ISO Latin-1 with the Euro sign at 128
};

// Returns the kind for a description's "*LanguageVersion" and a font name.
WatermarkFontKind watermarkFontKind(std::string_view language, std::string_view fontName);

// The parameters of a resource, in the order in which they appear in it.
struct WatermarkParameters {
    bool isLandscape = false;
    bool isReverseLandscape = false;
    std::string fontName; // a result of postScriptFontName
    std::string textInHex;
    std::int32_t fontSize = 0; // points
    bool isClear = false;      // only Japanese and Latin fonts support it
    int red = 0;               // 0 to 255
    int green = 0;
    int blue = 0;
    std::int32_t angle = 0;   // tenths of a degree
    std::int32_t xOffset = 0; // points
    std::int32_t yOffset = 0;
    bool isOnAllPages = true;
};

std::string watermarkResource(WatermarkFontKind kind, const WatermarkParameters& parameters);

// Returns a font name from outside, without outer blanks, if it is safe in PostScript; "Helvetica" for any
// other name. A safe name has 1 to 117 printable regular characters (PLRM 3.2.2) and no backslash, which is
// special in a string. Resources append up to 10 characters: 127 is the length that every interpreter must
// accept (PLRM, appendix B).
std::string postScriptFontName(std::string_view fontName);

} // namespace torka
