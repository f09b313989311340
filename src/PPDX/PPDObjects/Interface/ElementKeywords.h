// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// The main keywords that begin an element of a description, and what the parser does where it meets one. The
// readers of lines, of choice blocks and of quoted values share this list.

namespace torka {

// Which reader takes the line.
enum class LineKind : std::uint8_t {
    constraint,
    requirement,
    propPage,
    groupName,
    subGroupName,
    parent,
    controlFlags,
    customPrintSize,
    shortcut,
    specialOption,
    jobNote,
    header,    // a value that the description keeps by itself
    openGroup, // the installable options; any other group is the spooler's
    closeGroup,
    openBlock, // these five have a reader only inside a control's definition
    openMakersBlock,
    closeBlock,
    group,
    range,
    floatRange,
    spoolerBlock, // a block that is always the spooler's
    other         // no reader of its own
};

// What the line does inside an open choice block.
enum class InBlock : std::uint8_t {
    belongs, // the block's reader takes it or skips it
    passes,  // its own reader takes it, and the block goes on behind it
    ends     // the block's closing line is missing: the block ends before this line
};

struct ElementKeyword {
    std::string_view keyword;
    LineKind kind;
    bool endsValue; // an open PostScript value ends before this line, although the line begins with "*%"
    InBlock inBlock;
};

namespace detail {

inline constexpr std::array unsortedElementKeywords{
    ElementKeyword{"*UIConstraints", LineKind::constraint, false, InBlock::passes},
    ElementKeyword{"*%ZANUIConstraints", LineKind::constraint, true, InBlock::passes},
    ElementKeyword{"*%ZANUIRequires", LineKind::requirement, true, InBlock::passes},
    ElementKeyword{"*%ZANPropPage", LineKind::propPage, true, InBlock::ends},
    ElementKeyword{"*%ZANGroupName", LineKind::groupName, true, InBlock::ends},
    ElementKeyword{"*%ZANSubGroupName", LineKind::subGroupName, true, InBlock::ends},
    ElementKeyword{"*%ZANParent", LineKind::parent, true, InBlock::ends},
    ElementKeyword{"*%ZANFlags", LineKind::controlFlags, true, InBlock::ends},
    ElementKeyword{"*%ParamCustomPrintSize", LineKind::customPrintSize, true, InBlock::passes},
    ElementKeyword{"*%QVShortcut", LineKind::shortcut, true, InBlock::passes},
    ElementKeyword{"*%ZANSpecialOption", LineKind::specialOption, true, InBlock::passes},
    ElementKeyword{"*%ZANJobNote", LineKind::jobNote, false, InBlock::passes},
    ElementKeyword{"*FormatVersion", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*FileVersion", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*PCFileName", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*LanguageVersion", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*LanguageEncoding", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*ModelName", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*APDialogExtension", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*%QVFileVersion", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*%QVVersion", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*%QVVersionMac", LineKind::header, false, InBlock::passes},
    ElementKeyword{"*OpenGroup", LineKind::openGroup, false, InBlock::ends},
    ElementKeyword{"*CloseGroup", LineKind::closeGroup, false, InBlock::ends},
    ElementKeyword{"*OpenSubGroup", LineKind::other, false, InBlock::ends},
    ElementKeyword{"*CloseSubGroup", LineKind::other, false, InBlock::ends},
    ElementKeyword{"*OpenUI", LineKind::openBlock, false, InBlock::ends},
    ElementKeyword{"*QVOpenUI", LineKind::openBlock, false, InBlock::ends},
    ElementKeyword{"*BeginUI", LineKind::openBlock, false, InBlock::ends},
    ElementKeyword{"*OpenUIZAN", LineKind::openMakersBlock, false, InBlock::ends},
    ElementKeyword{"*JCLOpenUI", LineKind::spoolerBlock, false, InBlock::ends},
    ElementKeyword{"*CloseUI", LineKind::closeBlock, false, InBlock::belongs},
    ElementKeyword{"*QVCloseUI", LineKind::closeBlock, false, InBlock::belongs},
    ElementKeyword{"*CloseUIZAN", LineKind::closeBlock, false, InBlock::belongs},
    ElementKeyword{"*EndUI", LineKind::closeBlock, false, InBlock::belongs},
    ElementKeyword{"*%ZANGroup", LineKind::group, false, InBlock::passes},
    ElementKeyword{"*%ZANRange", LineKind::range, false, InBlock::passes},
    ElementKeyword{"*%ZANUnitRange", LineKind::range, false, InBlock::passes},
    ElementKeyword{"*%ZANFloatRange", LineKind::floatRange, false, InBlock::passes},
};

constexpr auto sortedElementKeywords() {
    auto rows = unsortedElementKeywords;
    std::ranges::sort(rows, [](const ElementKeyword& left, const ElementKeyword& right) {
        return left.keyword.size() < right.keyword.size();
    });
    return rows;
}

} // namespace detail

// The shortest first.
inline constexpr auto elementKeywords = detail::sortedElementKeywords();

inline constexpr std::size_t longestElementKeyword = elementKeywords.back().keyword.size();

// The place in elementKeywords of the first keyword that is at least as long as the index.
inline constexpr auto firstOfLength = [] {
    std::array<std::uint8_t, longestElementKeyword + 2> first{};
    for (std::size_t length = 0; length < first.size(); ++length) {
        while (first[length] < elementKeywords.size() &&
               elementKeywords[first[length]].keyword.size() < length) {
            ++first[length];
        }
    }
    return first;
}();

// The row of a keyword; elementKeywords.size() for none. By number: gcc 12 compares no address with null in a
// constant expression under -fsanitize=undefined.
constexpr std::size_t elementRow(std::string_view keyword) {
    if (keyword.empty() || keyword.size() > longestElementKeyword) {
        return elementKeywords.size();
    }
    const std::size_t end = firstOfLength[keyword.size() + 1];
    for (std::size_t at = firstOfLength[keyword.size()]; at < end; ++at) {
        const std::string_view known = elementKeywords[at].keyword;
        if (known.back() == keyword.back() && known == keyword) { // few keywords share length and last letter
            return at;
        }
    }
    return elementKeywords.size();
}

// Null for a keyword without a row.
constexpr const ElementKeyword* findElementKeyword(std::string_view keyword) {
    const std::size_t row = elementRow(keyword);
    return row == elementKeywords.size() ? nullptr : &elementKeywords[row];
}

// Records of the two-way data. The queue's description carries them for another reader.
inline bool isServerRecord(std::string_view keyword) {
    static constexpr std::array<std::string_view, 19> names{"QVBidiData",
                                                            "QVCDIHelpStrings",
                                                            "QVPpdDefaults",
                                                            "QVPresetsData",
                                                            "QVPresetsList",
                                                            "QVServerFeatureSupport",
                                                            "QVServerInfo",
                                                            "QVTrayInfo",
                                                            "QVTonerInfo",
                                                            "QVDeviceLinkProfilesList",
                                                            "QVHueKeeper",
                                                            "QVCalibration",
                                                            "QVUpdatedTrayInfoFile",
                                                            "QVUpdatedTonerInfoFile",
                                                            "QVUpdatedQFMastersList",
                                                            "QVPagesCount",
                                                            "QVlocalPreset",
                                                            "QVDriverPreference",
                                                            "QVServerValFrmDict"};
    for (std::size_t at = keyword.find("QV"); at != std::string_view::npos; at = keyword.find("QV", at + 1)) {
        const std::string_view rest = keyword.substr(at);
        if (std::any_of(names.begin(), names.end(),
                        [&](std::string_view name) { return rest.starts_with(name); })) {
            return true;
        }
    }
    return false;
}

constexpr LineKind lineKind(std::string_view keyword) {
    const std::size_t row = elementRow(keyword);
    return row == elementKeywords.size() ? LineKind::other : elementKeywords[row].kind;
}

static_assert(std::ranges::all_of(elementKeywords, [](const ElementKeyword& row) {
    const bool isUnique = findElementKeyword(row.keyword) == &row;
    // Every other "*" ends a value in any case.
    return isUnique && (!row.endsValue || row.keyword.starts_with("*%"));
}));

} // namespace torka
