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
    std::string nothingFound; // "" unless nothing matches
    std::vector<Section> sections;
    std::string more; // how many matches are left out; "" for none
};

// Finds the fields whose name, keyword or choices (name or keyword) contain every word of a query, without
// regard to case.
//
// Keeps an index of the texts in upper case. The first search makes it, and a search after the fields or
// their choices changed makes it again.
class FieldSearch {
public:
    explicit FieldSearch(const PaneTexts& paneTexts)
        : texts(paneTexts) {}

    // All matches in the order of the pages: first by name or keyword, then by choice. None for a blank
    // query.
    std::vector<PaneMatch> Matches(std::string_view query);
    // The first forty matches.
    SearchResults Results(std::string_view query);

private:
    struct FoldedField {
        const PaneField* field;
        std::string own;                                          // name and keyword
        std::vector<std::pair<std::string, std::string>> choices; // text in upper case, and the name
    };
    void MakeIndex();

    const PaneTexts& texts;
    std::vector<FoldedField> index;
    std::uint64_t version = 0; // PaneEditor::FieldsVersion of the index
};

} // namespace torka
