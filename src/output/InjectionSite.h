#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

// The numbers that the job ticket's writer and the spooler-side filter agree on, and what each stands for.

namespace torka {

// Where the spooler-side filter puts an entry of the ticket. docs/ticket.md says what each place means.
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
    removal,        // in no place: names a keyword whose feature code goes
    headerComments, // at their end
    setup,          // where the document setup begins
    setupEnd,       // where it ends
    report          // in no place: told to the filter
};

struct InjectionSite {
    PostScriptInjectionSite number;
    std::string_view name; // for people
    SitePlace place;
};

// Every site. Those of one place are written in the order of their rows. The reader and the placer of tickets
// and the tool go by this table; a test compares docs/ticket.md with it.
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

// Null for a number that is no site.
constexpr const InjectionSite* findInjectionSite(PostScriptInjectionSite number) {
    const auto* const row = std::ranges::find(injectionSites, number, &InjectionSite::number);
    return row == injectionSites.end() ? nullptr : row;
}

static_assert(std::ranges::all_of(injectionSites, [](const InjectionSite& row) {
    return findInjectionSite(row.number) == &row; // no number twice
}));

} // namespace torka
