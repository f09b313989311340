// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDLint.h"

#include "PPDX/PPDObjects/Interface/LintWords.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "TextConverter.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>

// The checks of single lines, made while the description is parsed.

namespace torka {

namespace {

// The names of PPD 4.3 that TextConverter knows, for suggestions.
constexpr std::array<std::string_view, 7> encodingNames{
    "ISOLatin1", "ISOLatin2", "ISOLatin5", "JIS83-RKSJ", "MacStandard", "WindowsANSI", "UTF-8"};

// The language names of PPD 4.3, of CUPS and of TextConverter's list.
constexpr std::array<std::string_view, 37> languageNames{"English",
                                                         "French",
                                                         "German",
                                                         "Italian",
                                                         "Spanish",
                                                         "Portuguese",
                                                         "Dutch",
                                                         "Danish",
                                                         "Swedish",
                                                         "Norwegian",
                                                         "Finnish",
                                                         "Japanese",
                                                         "Chinese",
                                                         "ChineseTrad",
                                                         "ChineseSimp",
                                                         "Korean",
                                                         "Russian",
                                                         "Ukrainian",
                                                         "Polish",
                                                         "Czech",
                                                         "Slovak",
                                                         "Slovenian",
                                                         "Croatian",
                                                         "Hungarian",
                                                         "Romanian",
                                                         "Bulg",
                                                         "Bulgarian",
                                                         "Estonian",
                                                         "Latvian",
                                                         "Lithuanian",
                                                         "Greek",
                                                         "Turkish",
                                                         "Thai",
                                                         "Hebrew",
                                                         "Arabic",
                                                         "Simplified Chinese",
                                                         "Traditional Chinese"};

constexpr std::array<std::string_view, 8> controlFlagWords{
    "Dynamic", "Command", "Spooler", "NoTorkaDriverUI", "DriverUserDisplayHidden",
    "Setup",   "MacFJN",  "MacIS"};

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

std::string decodedHex(std::string_view text) {
    std::string bytes(text.size(), '\0');
    bytes.resize(TextConverter::DehexBufferFill(text, bytes.data()));
    return bytes;
}

bool isAscii(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool hasOneByteCharacters(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingISOLatin1 || encoding == kCFStringEncodingISOLatin2 ||
           encoding == kCFStringEncodingISOLatin5 || encoding == kCFStringEncodingMacRoman ||
           encoding == kCFStringEncodingWindowsLatin1;
}

// Tells whether bytes that are valid in the encoding are probably meant otherwise: they are UTF-8 as well, or
// are control characters of ISO 8859.
bool isProbablyOther(std::string_view bytes, CFStringEncoding encoding) {
    if (isAscii(bytes)) {
        return false;
    }
    if (encoding == kCFStringEncodingShiftJIS) {
        // Two bytes of UTF-8 may be two katakana of half width.
        return std::ranges::any_of(bytes, [](char c) { return static_cast<unsigned char>(c) >= 0xE0; }) &&
               decodeText(bytes, kCFStringEncodingUTF8).has_value();
    }
    if (!hasOneByteCharacters(encoding)) {
        return false;
    }
    const bool isIso = encoding != kCFStringEncodingMacRoman && encoding != kCFStringEncodingWindowsLatin1;
    const bool holdsControls = isIso && std::ranges::any_of(bytes, [](char c) {
                                   const auto byte = static_cast<unsigned char>(c);
                                   return byte >= 0x80 && byte < 0xA0;
                               });
    return holdsControls || decodeText(bytes, kCFStringEncodingUTF8).has_value();
}

// Tells whether a number ends where the reader of ranges stops reading.
bool isWholeNumber(std::string_view text, bool isFloat) {
    text = trimmed(text);
    text.remove_prefix(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
    const std::size_t end = text.find_first_not_of(isFloat ? "0123456789.eE+-" : "0123456789");
    return end == std::string_view::npos;
}

} // namespace

void PPDLint::Note(PPDLintKind kind, long line, std::string_view keyword, std::string_view text,
                   std::string_view suggestion) {
    if (notes.size() < maximumNotes) {
        notes.push_back({kind, line, std::string(keyword), std::string(text), std::string(suggestion)});
    }
}

void PPDLint::ConstraintLine(long line, std::string_view key1, std::string_view option1,
                             std::string_view key2, std::string_view option2, bool isRequirement) {
    constraints.push_back({line, isRequirement, std::string(key1), std::string(option1), std::string(key2),
                           std::string(option2)});
    if (isRequirement) {
        Note(PPDLintKind::requirement, line, key1);
    }
}

void PPDLint::CheckFlags(long line, std::string_view element, std::string_view flags,
                         std::span<const std::string_view> known, bool isVisible) {
    while (!flags.empty()) {
        const std::size_t end = std::min(flags.find_first_of("|:\""), flags.size());
        const std::string_view word = trimmed(flags.substr(0, end));
        flags.remove_prefix(std::min(end + 1, flags.size()));
        if (word.empty() || std::ranges::find(known, word) != known.end()) {
            continue;
        }
        const std::string_view meant = closestWord(word, known);
        const bool hides = !isVisible && meant == "True";
        Note(hides ? PPDLintKind::hiddenByFlag : PPDLintKind::unknownFlag, line, element, word, meant);
    }
}

void PPDLint::CheckControlFlags(long line, std::string_view keyword,
                                std::span<const std::string_view> flags) {
    for (const std::string_view word : flags) {
        if (std::ranges::find(controlFlagWords, word) == controlFlagWords.end()) {
            Note(PPDLintKind::unknownFlag, line, keyword, word, closestWord(word, controlFlagWords));
        }
    }
}

void PPDLint::CheckText(long line, std::string_view keyword, std::string_view text,
                        std::optional<CFStringEncoding> encoding) {
    CheckBytes(line, keyword, text, decodedHex(text), encoding);
}

void PPDLint::CheckBytes(long line, std::string_view keyword, std::string_view text, std::string_view bytes,
                         std::optional<CFStringEncoding> encoding) {
    if (!encoding) {
        // The parser takes the bytes as UTF-8 and leaves hexadecimal substrings alone.
        if (!firstText && (!isAscii(text) || bytes != text)) {
            firstText = Named{line, std::string(keyword), std::string(text)};
        }
        return;
    }
    const CFStringEncoding readAs = isKnownEncoding(*encoding) ? *encoding : kCFStringEncodingUTF8;
    if (!decodeText(bytes, readAs)) {
        Note(PPDLintKind::untranslatableText, line, keyword, text);
    } else if (isProbablyOther(bytes, readAs)) {
        Note(PPDLintKind::otherEncoding, line, keyword, text);
    }
}

void PPDLint::CheckEncodingName(long line, std::string_view name) {
    if (std::ranges::find(encodingNames, name) == encodingNames.end()) {
        Note(PPDLintKind::unknownEncoding, line, "*LanguageEncoding", name, closestWord(name, encodingNames));
    }
}

// A name may carry a country: "French-Canadian", "English_UK".
void PPDLint::CheckLanguageName(long line, std::string_view name) {
    const std::string_view language = name.substr(0, name.find_first_of("-_."));
    if (std::ranges::find(languageNames, language) == languageNames.end()) {
        Note(PPDLintKind::unknownLanguage, line, "*LanguageVersion", name,
             closestWord(language, languageNames));
    }
}

void PPDLint::CheckRange(long line, std::string_view keyword, std::span<const std::string> numbers,
                         const RangeValues& values, std::string_view fifth, bool isFloat) {
    for (const std::string& number : numbers) {
        const std::string_view first = trimmed(number).substr(0, 1);
        const bool isNumber =
            !first.empty() && std::string_view("0123456789.+-").find(first) != std::string_view::npos;
        if (isNumber && !isWholeNumber(number, isFloat)) {
            Note(PPDLintKind::textAfterNumber, line, keyword, trimmed(number));
        }
    }
    if (values.minimum > values.maximum) {
        Note(PPDLintKind::swappedBounds, line, keyword,
             std::string(trimmed(numbers[0])) + " and " + std::string(trimmed(numbers[1])));
    } else if (values.byDefault < values.minimum || values.byDefault > values.maximum) {
        Note(PPDLintKind::defaultOutsideBounds, line, keyword, trimmed(numbers[3]));
    }
    if (!isFloat && keyword == "*QVScale" && values.minimum < 0) {
        Note(PPDLintKind::negativeScale, line, keyword, trimmed(numbers[0]));
    }
    if (!trimmed(fifth).empty()) {
        Note(PPDLintKind::extraNumber, line, keyword, trimmed(fifth));
    }
}

void PPDLint::CheckPostscript(long line, std::string_view keyword, std::string_view option,
                              const unsigned char* bytes, long length) {
    const std::string_view postscript(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
    if (option.empty()) {
        templates.push_back({line, std::string(keyword), {}});
    }
    const std::string placeholder = option.empty() ? "<" + std::string(keyword) + ">" : std::string();
    const std::string_view fault = postscriptFault(postscript, placeholder);
    if (!fault.empty()) {
        Note(PPDLintKind::unbalancedPostscript, line, keyword,
             option.empty() ? std::string(fault) : std::string(option) + ": " + std::string(fault));
    }
    if (!placeholder.empty() && !postscript.empty() &&
        postscript.find(placeholder) == std::string_view::npos) {
        Note(PPDLintKind::noPlaceholder, line, keyword);
    }
}

void PPDLint::OptionLine(long line, std::string_view keyword, std::string_view option) {
    std::string both(keyword);
    both.append(1, '\0').append(option);
    if (!optionsSeen.insert(std::move(both)).second) {
        Note(PPDLintKind::optionTwice, line, keyword, option);
    }
    options.push_back({line, std::string(keyword), std::string(option)});
}

void PPDLint::LineInBlock(long line, std::string_view block, std::string_view keyword,
                          std::string_view text) {
    // Queries, and lines that other programs keep beside the options that they concern.
    static constexpr std::array<std::string_view, 5> others{"*%", "*?", "*cups", "*AP", "*Foomatic"};
    const std::string_view value = trimmed(text);
    const bool hasOption = !value.empty() && value.front() != '"' && value.front() != ':';
    const bool isOption =
        keyword.starts_with('*') && hasOption && value.find('"') != std::string_view::npos &&
        std::ranges::none_of(others, [keyword](std::string_view each) { return keyword.starts_with(each); });
    if (isOption && linesInBlocks.size() < maximumNotes) {
        linesInBlocks.push_back({line, std::string(block), std::string(keyword)});
    }
}

void PPDLint::OtherLine(long line, std::string_view keyword) {
    constexpr std::size_t maximumLines = 1000000;
    if (keyword.size() > 1 && keyword.starts_with('*') && otherLines.size() < maximumLines) {
        otherLines.push_back({line, std::string(keyword), hasFailedControl ? "lost" : ""});
    }
}

void PPDLint::GroupLine(long line, std::string_view keyword, std::string_view name, const PPDXGroup* group) {
    hasGroupLine = true;
    if (group == nullptr) {
        unknownGroups.push_back({line, std::string(keyword), std::string(name)});
    }
}

void PPDLint::Orphan(long line, std::string_view keyword, std::span<const std::string_view> flags) {
    const bool isNeverShown = std::ranges::any_of(flags, [](std::string_view flag) {
        return flag == "NoTorkaDriverUI" || flag == "DriverUserDisplayHidden";
    });
    if (!hasGroupLine && !isNeverShown) {
        Note(PPDLintKind::blockInNoGroup, line, keyword);
    }
}

void PPDLint::StrayControlLine(long line, std::string_view keyword) {
    if (!hasFailedControl) {
        Note(PPDLintKind::strayControlLine, line, keyword, keyword);
    }
}

} // namespace torka
