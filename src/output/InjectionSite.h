#pragma once

#include <cstdint>

// The numbers that the job ticket's writer and the spooler-side filter agree on.

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

} // namespace torka
