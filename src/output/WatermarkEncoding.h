// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/WatermarkTemplates.h"

#include <string>
#include <string_view>

namespace torka {

// Converts UTF-8 text to the bytes that a watermark's font uses. A character that the encoding lacks, and
// invalid UTF-8, becomes "?" (full-width where the encoding has no other).
//
//   latin          ISO Latin-1, and the Euro sign at 128
//   latinExtended  UTF-8
//   chinese        GB 18030 (the CMap /GB-EUC-H shows of it what GB 2312 has)
//   japanese       what the CMap at the end of the font's name reads (Adobe Technical Note 5094):
//                  "83pv-RKSJ", "90pv-RKSJ"      Mac Japanese
//                  another "RKSJ"                Shift-JIS; the backslash is 0x5C, there a yen sign
//                  "EUC"                         EUC-JP
//                  "UTF8", "UTF16", "UTF32"      that, the wider ones with the high byte first
//                  "UCS2"                        UTF-16 without surrogates
//                  any other ("H", "Add-H" ...)  JIS X 0208 in two bytes of 7 bits, ASCII as its full-width
//                                                forms
std::string watermarkBytes(std::string_view text, WatermarkFontKind kind, std::string_view fontName);

// What a watermark's font can print of a text.
struct WatermarkPrint {
    std::u16string shown;   // the text with "?" for each character that cannot be printed
    std::u16string missing; // these characters, each once
};
// Takes a description's "*LanguageVersion". Of Chinese fonts only the characters of GB 2312 count.
WatermarkPrint watermarkPrint(std::string_view text, std::string_view language, std::string_view fontName);

} // namespace torka
