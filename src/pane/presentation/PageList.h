#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <cstddef>
#include <string>
#include <vector>

namespace torka {

// One line of the list of pages.
struct PageEntry {
    enum class Kind { quickAccess, page, watermarks, installed, summary };
    Kind kind;
    std::string identifier; // "quickAccess", "watermarks", "installed", "summary", or the page's keyword
    std::string title;
    std::size_t place = 0; // of a described page in the catalogue
};

// The entries in their order: quick access, the description's pages, watermarks, installed options, summary.
std::vector<PageEntry> pageEntries(const PaneTexts& texts, bool hasQuickAccess, bool hasWatermarks);
// The identifier of the page that shows the field.
std::string pageOf(const PaneTexts& texts, const PaneField& field);
// The fields of the quick-access page; a keyword without control has none.
std::vector<PaneField> quickAccessFields(const PaneEditor& editor, const std::vector<std::string>& keywords);
// Whether each group of a page is open at first: the first one, and those within the first thirty fields.
std::vector<bool> openGroups(const PanePage& page);

// Whether each entry holds one side of a conflict that is present now.
std::vector<bool> conflictMarks(const PaneEditor& editor, const std::vector<PageEntry>& entries,
                                const std::vector<std::string>& quickAccess);
// An entry's title as assistive technology hears it.
std::string spokenTitle(const PaneTexts& texts, const PageEntry& entry, bool isMarked);
// The summary's title with the number of settings that differ.
std::string summaryTitle(const PaneTexts& texts);
// What the next undo takes back, three names at most.
std::string undoTip(const PaneTexts& texts);

// What the summary lists.
struct SummaryRow {
    std::string keyword;
    std::string name;
    std::string value;
    std::string defaultValue;
    std::string place;
};
std::vector<SummaryRow> summaryRows(const PaneTexts& texts);
std::string summaryHeading(const PaneTexts& texts, std::size_t rows);

} // namespace torka
