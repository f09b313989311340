// SPDX-License-Identifier: Apache-2.0
#include "output/WatermarkTemplates.h"

#include "StringUtils.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>

namespace torka {

namespace {

constexpr std::string_view opening = "%%ZAN Begin Watermark resource \n"
                                     " globaldict /landscapeDoc %s put \n"
                                     " globaldict /invLandscapeDoc %s put \n";

// Every font set-up defines /ZANWMFont, a font of any size, and /ZANWMText, a procedure that converts the
// text to the string that this font shows. ZANWMTry runs a procedure, pushes whether it ran without error,
// and clears what the procedure left on the operand and dictionary stacks. It counts stack entries and uses
// no mark, because an unclosed array leaves a mark of its own. It does not nest. All objects are in local VM,
// which a procedure in global VM could not hold; `closing` restores the VM mode.
constexpr std::string_view fontPrologue =
    "currentglobal false setglobal\n"
    "userdict /ZANWMTry {userdict /ZANWMDicts countdictstack put userdict /ZANWMCount count 3 sub put\n"
    "stopped userdict /ZANWMFailed 3 -1 roll put\n"
    "count ZANWMCount sub dup 0 lt {pop 0} if {pop} repeat\n"
    "countdictstack ZANWMDicts sub dup 0 lt {pop 0} if {end} repeat\n"
    "ZANWMFailed dup {$error /newerror false put} if not} bind put\n"
    "userdict /ZANWMText {} put\n";

// The /Encoding is ISO Latin-1 with a hyphen, not a minus sign, at the hyphen's code.
constexpr std::string_view latinFont =
    "{/%s /Font resourcestatus {pop pop /%s} {/Helvetica} ifelse findfont\n"
    "dup /FontType get 0 eq {pop /Helvetica findfont} if\n"
    "dup length dict begin {1 index /FID eq {pop pop} {def} ifelse} forall\n"
    "/Encoding ISOLatin1Encoding 256 array copy dup 45 /hyphen put dup 128 /Euro put def\n"
    "/FontName /%s-ISOLatin1 def\n"
    "/%s-ISOLatin1 currentdict end definefont pop\n"
    "userdict /ZANWMFont /%s-ISOLatin1 findfont put\n"
    "} ZANWMTry not {userdict /ZANWMFont /Helvetica findfont put} if\n";

// Without the font, tries its CMap (the longest suffix of its name that names one) with the CIDFonts that
// Japanese interpreters have always had.
constexpr std::string_view japaneseFont =
    "{/%s /Font resourcestatus {pop pop /%s findfont dup /FontType get 0 ne {stop} if}\n"
    "{8 dict begin /s (%s) def\n"
    "0 1 s length 2 sub {/i exch def s i get 45 eq\n"
    "{/c s i 1 add s length i sub 1 sub getinterval cvn def c /CMap resourcestatus\n"
    "{pop pop [s 0 i getinterval cvn /Ryumin-Light /GothicBBB-Medium]\n"
    "{dup /CIDFont resourcestatus {pop pop /f exch def exit} {pop} ifelse} forall exit} if} if} for\n"
    "/%s c [f /CIDFont findresource] composefont end} ifelse\n"
    "userdict /ZANWMFont 3 -1 roll put} ZANWMTry not\n";

constexpr std::string_view chineseFont =
    "userdict /ZANWMBase /%s put\n"
    "{ZANWMBase /CIDFont findresource pop} ZANWMTry not {{(Resource/AcroCIDFont/%s) run} ZANWMTry pop} if\n"
    "{[ZANWMBase /AdobeSongStd-Light /STSong-Light]\n"
    "{dup /CIDFont resourcestatus {pop pop userdict /ZANWMBase 3 -1 roll put exit} {pop} ifelse} forall\n"
    "userdict /ZANWMFont /ZANWMChinese /GB-EUC-H [ZANWMBase /CIDFont findresource] composefont put\n"
    "} ZANWMTry not\n";

constexpr std::string_view latinExtendedFont =
    "userdict /ZANWMBase /%s put\n"
    "{ZANWMBase /CIDFont findresource pop} ZANWMTry not {{(Resource/ZANFont/%s) run} ZANWMTry pop} if\n"
    "{userdict /ZANWMFont /ZANWMExtended /ZANMyriad-Latin-Extended-A-UTF8\n"
    "[ZANWMBase /CIDFont findresource] composefont put} ZANWMTry not\n";

// Without a font for the script, shows ASCII and replaces any other byte by a question mark.
constexpr std::string_view asciiFallback =
    "{userdict /ZANWMFont /Helvetica findfont put\n"
    "userdict /ZANWMText {0 1 2 index length 1 sub\n"
    "{1 index exch 2 copy get 127 gt {2 copy 63 put} if pop pop} for} bind put} if\n";

// Re-encodes Helvetica for the characters of this text. Decodes the UTF-8 and looks up each character by its
// glyph name (Adobe Glyph List). A lower-case letter is found through its upper-case one; Cyrillic names are
// numbered. Runs at the first page, because only then the text is known; later pages reuse the result.
constexpr std::string_view extendedFallback =
    "{userdict /ZANWMNames <<260/Aogonek 262/Cacute 268/Ccaron 270/Dcaron 280/Eogonek 282/Ecaron 286/Gbreve\n"
    "304/Idotaccent 305/dotlessi 321/Lslash 323/Nacute 327/Ncaron 344/Rcaron 346/Sacute 350/Scedilla\n"
    "352/Scaron 356/Tcaron 366/Uring 377/Zacute 379/Zdotaccent 381/Zcaron 1025/afii10023 1105/afii10071\n"
    "8211/endash 8212/emdash 8216/quoteleft 8217/quoteright 8218/quotesinglbase 8220/quotedblleft\n"
    "8221/quotedblright 8222/quotedblbase 8230/ellipsis 8364/Euro 8470/afii61352 45/hyphen>> put\n"
    "userdict /ZANWMName {/u exch def ZANWMNames u known {ZANWMNames u get} {\n"
    "u 256 lt {ISOLatin1Encoding u get} {\n"
    "u 384 lt ZANWMNames u 1 sub known and {ZANWMNames u 1 sub get dup length string cvs\n"
    "dup 0 2 copy get 32 add put cvn} {\n"
    "u 1040 ge u 1104 lt and {u 1040 sub dup 32 lt {10017} {32 sub 10065} ifelse exch dup 5 gt {1 add} if "
    "add\n"
    "9 string dup 0 (afii) putinterval dup 4 4 -1 roll 5 string cvs putinterval cvn}\n"
    "{/question} ifelse} ifelse} ifelse} ifelse} bind put\n"
    "userdict /ZANWMText {/t exch def /p 0 def /n 0 def /q 0 def /s t length string def /m 256 dict def\n"
    "/e 256 array def 0 1 255 {e exch /.notdef put} for /h /Helvetica findfont def\n"
    "{p t length ge {exit} if /b t p get def /p p 1 add def\n"
    "b 192 lt {b} {b 224 lt {1 31} {b 240 lt {2 15} {3 7} ifelse} ifelse b and exch\n"
    "{64 mul t p get 63 and add /p p 1 add def} repeat} ifelse ZANWMName\n"
    "h /CharStrings get 1 index known not {pop /question} if\n"
    "m 1 index known not {m 1 index n put e n 2 index put /n n 1 add def} if\n"
    "s q 3 -1 roll m exch get put /q q 1 add def} loop\n"
    "userdict /ZANWMFont h dup length dict begin {1 index /FID eq {pop pop} {def} ifelse} forall\n"
    "/Encoding e def /ZANWMExtended currentdict end definefont put\n"
    "userdict /ZANWMString s 0 q getinterval put userdict /ZANWMText {pop ZANWMString} put ZANWMString}\n"
    "bind put} if\n";

// Takes the page's centre from the controller's page box, else from the printable area. Halves the height of
// the text, which only a vertical font has.
constexpr std::string_view watermarkBeginning =
    "userdict /ZANWaterMark {currentglobal false setglobal gsave 40 dict begin\n"
    "/Watermark <%s> def\n"
    "/FontSize %s def\n";
constexpr std::string_view colour = "/WaterMarkColor {%s %s %s setrgbcolor} def\n";
constexpr std::string_view clear =
    "/WaterMarkColor { true setoverprint [ /Separation (Clear) /DeviceCMYK {0.0 0.0 0.0 0.0} ] "
    "setcolorspace 1.0 setcolor } def\n";
constexpr std::string_view watermarkEnd =
    "/landscapeDoc %s def /invLandscapeDoc %s def\n"
    "/Angle %s landscapeDoc {90 add} if invLandscapeDoc {90 sub} if def\n"
    "/XOffset %s def /YOffset %s def\n"
    "{initmatrix initclip\n"
    "userdict /TorkaRMdict known {TorkaRMdict /ZANPageBox known} {false} ifelse\n"
    "{TorkaRMdict /ZANPageBox get exec} {clippath pathbbox newpath} ifelse\n"
    "3 -1 roll add 2 div 3 1 roll add 2 div exch translate\n"
    "XOffset YOffset translate Angle rotate\n"
    "/Watermark Watermark ZANWMText def\n"
    "ZANWMFont FontSize scalefont setfont WaterMarkColor\n"
    "Watermark stringwidth 2 div neg FontSize 3 div sub exch 2 div neg exch moveto Watermark show\n"
    "} ZANWMTry pop end grestore setglobal} bind put\n";

// Saves the former showpage once: a second copy of the resource must not save its own showpage as the former
// one.
//
// EndPage draws the watermark at the end of a sheet (PLRM 6.2.6, reason 0), behind the former EndPage and
// only when that one has the sheet printed. showpage draws it when the page device does not run this EndPage.
// Of several pages on one sheet, showpage ends each, and the pages behind it would cover the text. A prolog
// that was read before may also have bound the operator showpage (PLRM, bind) and never calls the new one:
// documents that Ghostscript converts from PDF do so.
constexpr std::string_view closing =
    " globaldict /pageCount 0 put \n"
    " globaldict /waterMarkAllPages %s put \n"
    "globaldict /waterMarkDone false put\n"
    "userdict /ZANDRVRMACOriginalshowpage known not {\n"
    "userdict /ZANWMPage {globaldict /pageCount globaldict /pageCount get 1 add put\n"
    "globaldict /pageCount get 1 eq globaldict /waterMarkAllPages get or {ZANWaterMark} if} bind put\n"
    "userdict /ZANDRVRMACOriginalshowpage /showpage load put\n"
    "userdict /showpage {{currentpagedevice /EndPage get userdict /ZANWMHook get ne {stop} if} ZANWMTry not\n"
    "{ZANWMPage globaldict /waterMarkDone true put} if ZANDRVRMACOriginalshowpage} bind put\n"
    "{userdict /ZANWMEndPage currentpagedevice /EndPage get put\n"
    "userdict /ZANWMHook {dup 0 eq 3 1 roll ZANWMEndPage exch 1 index and\n"
    "globaldict /waterMarkDone get not and {ZANWMPage} if globaldict /waterMarkDone false put} bind put\n"
    "<</EndPage userdict /ZANWMHook get>> setpagedevice} ZANWMTry pop} if setglobal\n"
    " %%ZAN End Watermark resource \n";

// Appends the pattern with each "%s" replaced by the next argument. The last argument fills all further "%s".
void append(std::string& out, std::string_view pattern, std::initializer_list<std::string_view> arguments) {
    constexpr std::string_view place = "%s";
    const auto* argument = arguments.begin();
    for (;;) {
        const std::size_t at = pattern.find(place);
        out += pattern.substr(0, at);
        if (at == std::string_view::npos) {
            return;
        }
        out += *argument;
        if (argument + 1 != arguments.end()) {
            ++argument;
        }
        pattern.remove_prefix(at + place.size());
    }
}

std::string withDecimals(double value, int decimals) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return {text.data(), end.ptr};
}

std::string colourComponent(int value) { return withDecimals(value / 255.0, 2); }

const char* truth(bool value) { return value ? "true" : "false"; }

// Returns true when the resource draws in the transparent colour. The composite fonts' resources do not
// support it.
bool drawsClear(WatermarkFontKind kind, const WatermarkParameters& parameters) {
    return parameters.isClear && (kind == WatermarkFontKind::japanese || kind == WatermarkFontKind::latin);
}

void appendFont(std::string& out, WatermarkFontKind kind, std::string_view fontName) {
    out += fontPrologue;
    switch (kind) {
    case WatermarkFontKind::japanese:
        append(out, japaneseFont, {fontName});
        out += asciiFallback;
        break;
    case WatermarkFontKind::chinese:
        append(out, chineseFont, {fontName});
        out += asciiFallback;
        break;
    case WatermarkFontKind::latinExtended:
        append(out, latinExtendedFont, {fontName});
        out += extendedFallback;
        break;
    case WatermarkFontKind::latin:
        append(out, latinFont, {fontName});
        break;
    }
}

} // namespace

WatermarkFontKind watermarkFontKind(std::string_view language, std::string_view fontName) {
    if (language == "Japanese" && (fontName.ends_with("-H") || fontName.ends_with("-V"))) {
        return WatermarkFontKind::japanese;
    }
    if (language == "Chinese") {
        return WatermarkFontKind::chinese;
    }
    if (language == "Russian" || language == "Turkish" || language == "Polish" || language == "Czech") {
        return WatermarkFontKind::latinExtended;
    }
    return WatermarkFontKind::latin;
}

std::string watermarkResource(WatermarkFontKind kind, const WatermarkParameters& parameters) {
    const char* landscape = truth(parameters.isLandscape);
    const char* reverse = truth(parameters.isReverseLandscape);
    std::string out;
    out.reserve(parameters.textInHex.size() + 4096);
    append(out, opening, {landscape, reverse});
    appendFont(out, kind, parameters.fontName);
    append(out, watermarkBeginning, {parameters.textInHex, std::to_string(parameters.fontSize)});
    if (drawsClear(kind, parameters)) {
        out += clear;
    } else {
        append(out, colour,
               {colourComponent(parameters.red), colourComponent(parameters.green),
                colourComponent(parameters.blue)});
    }
    append(out, watermarkEnd,
           {landscape, reverse, withDecimals(parameters.angle / 10.0, 1), std::to_string(parameters.xOffset),
            std::to_string(parameters.yOffset)});
    append(out, closing, {truth(parameters.isOnAllPages)});
    return out;
}

std::string postScriptFontName(std::string_view fontName) {
    constexpr std::size_t longestName = 117;
    constexpr std::string_view special = "()<>[]{}/%\\";
    const std::string_view name = trimBlanks(fontName);
    const bool isRegular = std::ranges::all_of(name, [special](char each) {
        return each > ' ' && each <= '~' && special.find(each) == std::string_view::npos;
    });
    return isRegular && !name.empty() && name.size() <= longestName ? std::string(name) : "Helvetica";
}

} // namespace torka
