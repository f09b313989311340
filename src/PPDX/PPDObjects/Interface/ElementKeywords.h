#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

// The main keywords that begin an element of a description, and what the parser does where it meets one.

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
    other // no reader of its own
};

struct ElementKeyword {
    std::string_view keyword;
    LineKind kind;
    bool endsValue; // an open PostScript value ends before this line, although the line begins with "*%"
    bool endsBlock; // an open choice block ends before this line
};

// The most frequent first. Unequal lengths end a comparison.
inline constexpr std::array<ElementKeyword, 18> elementKeywords{{
    {"*UIConstraints", LineKind::constraint, false, false},
    {"*%ZANFlags", LineKind::controlFlags, true, true},
    {"*%ZANUIConstraints", LineKind::constraint, true, false},
    {"*%ZANUIRequires", LineKind::requirement, true, false},
    {"*%ZANParent", LineKind::parent, true, true},
    {"*%ZANGroupName", LineKind::groupName, true, true},
    {"*%ZANSubGroupName", LineKind::subGroupName, true, true},
    {"*%QVShortcut", LineKind::shortcut, true, false},
    {"*%ZANPropPage", LineKind::propPage, true, true},
    {"*%ZANSpecialOption", LineKind::specialOption, true, false},
    {"*%ZANJobNote", LineKind::jobNote, false, false},
    {"*%ParamCustomPrintSize", LineKind::customPrintSize, true, false},
    {"*OpenUI", LineKind::other, false, true},
    {"*QVOpenUI", LineKind::other, false, true},
    {"*BeginUI", LineKind::other, false, true},
    {"*OpenUIZAN", LineKind::other, false, true},
    {"*OpenGroup", LineKind::other, false, true},
    {"*CloseGroup", LineKind::other, false, true},
}};

// Null for a keyword without a row.
constexpr const ElementKeyword* findElementKeyword(std::string_view keyword) {
    for (const ElementKeyword& row : elementKeywords) {
        if (row.keyword == keyword) {
            return &row;
        }
    }
    return nullptr;
}

static_assert(std::ranges::all_of(elementKeywords, [](const ElementKeyword& row) {
    const bool isUnique = findElementKeyword(row.keyword) == &row;
    // Every other "*" ends a value in any case.
    return isUnique && (!row.endsValue || row.keyword.starts_with("*%"));
}));

} // namespace torka
