// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

// The site numbers that the job ticket's writer and the spooler-side filter share, and their meaning.

namespace torka {

// Says where the spooler-side filter puts an entry of the ticket. docs/ticket.md describes each site.
using PostScriptInjectionSite = std::int32_t;

inline constexpr PostScriptInjectionSite siteSuppressedKeyword = -9;
inline constexpr PostScriptInjectionSite siteJobNote = 30;
inline constexpr PostScriptInjectionSite sitePageSize = 70;
inline constexpr PostScriptInjectionSite siteSetupEnd = 71;
inline constexpr PostScriptInjectionSite siteDocumentSetup = 81;
inline constexpr PostScriptInjectionSite siteDriverComment = 501;
inline constexpr PostScriptInjectionSite siteLayoutComment = 504;
inline constexpr PostScriptInjectionSite siteFileDestination = 900;

enum class SitePlace : std::uint8_t {
    removal,        // not placed: names a keyword whose feature code is removed
    headerComments, // at the end of the header comments
    setup,          // at the beginning of the document setup
    setupEnd,       // at its end
    report          // not placed: passed to the filter
};

struct InjectionSite {
    PostScriptInjectionSite number;
    std::string_view name; // for people
    SitePlace place;
};

// Every site. Sites of one place are written in the order of their rows. The reader and the placer of tickets
// and the command line use this table; a test compares docs/ticket.md with it.
inline constexpr std::array<InjectionSite, 8> injectionSites = {{
    {siteSuppressedKeyword, "suppressed keyword", SitePlace::removal},
    {siteLayoutComment, "layout comment", SitePlace::headerComments},
    {siteDriverComment, "driver comment", SitePlace::headerComments},
    {siteJobNote, "job note comment", SitePlace::headerComments},
    {sitePageSize, "page size", SitePlace::setup},
    {siteDocumentSetup, "document setup", SitePlace::setup},
    {siteSetupEnd, "end of setup", SitePlace::setupEnd},
    {siteFileDestination, "file destination", SitePlace::report},
}};

// Returns null for an unknown number.
constexpr const InjectionSite* findInjectionSite(PostScriptInjectionSite number) {
    const auto* const row = std::ranges::find(injectionSites, number, &InjectionSite::number);
    return row == injectionSites.end() ? nullptr : row;
}

static_assert(std::ranges::all_of(injectionSites, [](const InjectionSite& row) {
    return findInjectionSite(row.number) == &row; // no number twice
}));

} // namespace torka
