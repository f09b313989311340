// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torka {

// A field that a search found, and the choice that matched.
struct PaneMatch {
    const PaneField* field = nullptr;
    std::string choice; // the name of the choice; "" when the name or keyword of the field matched
};

// The result of a search: fields under headings that name their place.
struct SearchResults {
    struct Section {
        std::string heading;
        std::vector<PaneField> fields;
    };
    struct Page {
        std::string identifier; // PageEntry::identifier
        std::string title;
    };
    std::string nothingFound; // "" unless nothing matches
    std::vector<Page> pages;  // whose titles match
    std::vector<Section> sections;
    std::string more; // how many matches are left out; "" for none
};

// Finds the fields whose name, keyword, synonyms or choices (name or keyword) contain every word of a query,
// and the pages whose titles do, without regard to case.
//
// Keeps an index of the texts in upper case. The first search makes it, and a search after the fields or
// their choices changed makes it again.
class FieldSearch {
public:
    // `paneHasWatermarks`: whether the pane has a page of watermarks.
    explicit FieldSearch(const PaneTexts& paneTexts, bool paneHasWatermarks = false)
        : texts(paneTexts)
        , hasWatermarks(paneHasWatermarks) {}

    // All matches in the order of the pages: first by name or keyword, then by choice. None for a blank
    // query.
    std::vector<PaneMatch> Matches(std::string_view query);
    // The first forty matches.
    SearchResults Results(std::string_view query);

private:
    struct FoldedField {
        const PaneField* field;
        std::string own;                                          // name, keyword and synonyms
        std::vector<std::pair<std::string, std::string>> choices; // text in upper case, and the name
    };
    void MakeIndex();
    std::vector<SearchResults::Page> PagesOf(std::string_view query) const;

    const PaneTexts& texts;
    bool hasWatermarks;
    std::vector<FoldedField> index;
    std::uint64_t version = 0; // PaneEditor::FieldsVersion of the index
};

} // namespace torka
