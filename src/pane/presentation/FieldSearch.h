#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torka {

// A field that was searched for, and the choice by which it was found.
struct PaneMatch {
    const PaneField* field = nullptr;
    std::string choice; // its name; "" when the field's own name or keyword matched
};

// What a search shows: fields under headings that tell where they stand.
struct SearchResults {
    struct Section {
        std::string heading;
        std::vector<PaneField> fields;
    };
    std::string nothingFound; // "" unless nothing matches
    std::vector<Section> sections;
    std::string more; // how many matches are left out; "" for none
};

// Finds the fields whose name, keyword or choices (name or keyword) hold every word of a query, letter case
// aside.
//
// Keeps folded texts of all fields, made by the first search and again after the fields or their choices
// changed.
class FieldSearch {
public:
    explicit FieldSearch(const PaneTexts& paneTexts)
        : texts(paneTexts) {}

    // In order; those found by name or keyword come before those found by a choice. None for a query of
    // blanks.
    std::vector<PaneMatch> Matches(std::string_view query);
    // The first forty matches.
    SearchResults Results(std::string_view query);

private:
    struct FoldedField {
        const PaneField* field;
        std::string own;                                          // name and keyword
        std::vector<std::pair<std::string, std::string>> choices; // folded, and the name
    };
    void MakeIndex();

    const PaneTexts& texts;
    std::vector<FoldedField> index;
    std::uint64_t version = 0; // of the editor's fields when the index was made
};

} // namespace torka
