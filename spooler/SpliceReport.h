// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/InjectionSite.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// What a Splicer did, for the command line and the filter's log.

namespace torka {

enum class SplicePlace {
    nowhere,
    headerComments, // before %%EndComments, or where the header comments end without it
    documentSetup,  // in the document's own %%BeginSetup section
    createdSetup,   // in a setup section that the Splicer adds
    afterHeader,    // behind the header of a document without prolog, setup and pages
};

// Returns "in the header comments" and the like, to end a sentence.
std::string_view placeText(SplicePlace place);

struct PlacedSite {
    std::size_t entries = 0;
    std::uint64_t bytes = 0; // as written, with added line ends, continuation marks and guards
    SplicePlace place = SplicePlace::nowhere;
};

struct UnplacedEntry {
    std::size_t entry = 0; // counted from 0, among the entries given to the Splicer
    PostScriptInjectionSite site = 0;
    std::string reason;
};

struct SpliceReport {
    std::map<PostScriptInjectionSite, PlacedSite> placed;
    std::vector<UnplacedEntry> unplaced;
    std::vector<std::string> mailboxPaths; // entries of siteFileDestination; never written
    std::map<std::string, std::uint64_t, std::less<>>
        removed;                       // suppressed keyword -> number of its features and comments removed
    std::vector<std::string> warnings; // at most maximumWarnings; the last one says that more came
    static constexpr std::size_t maximumWarnings = 50;

    // bytesWritten == bytesRead - bytesRemoved + bytesInserted, once Finish() has succeeded.
    std::uint64_t bytesRead = 0;
    std::uint64_t bytesRemoved = 0;
    std::uint64_t bytesInserted = 0;
    std::uint64_t bytesWritten = 0;
};

} // namespace torka
