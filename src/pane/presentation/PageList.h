// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <cstddef>
#include <string>
#include <vector>

namespace torka {

// One entry of the list of pages.
struct PageEntry {
    enum class Kind { quickAccess, page, watermarks, installed, summary };
    Kind kind;
    std::string identifier; // "quickAccess", "watermarks", "installed", "summary", or the page's keyword
    std::string title;
    std::size_t place = 0; // index of a page in the catalogue
};

// All entries in their order: quick access, the pages of the description, watermarks, installed options,
// summary.
std::vector<PageEntry> pageEntries(const PaneTexts& texts, bool hasQuickAccess, bool hasWatermarks);
// The identifier of the page that shows the field.
std::string pageOf(const PaneTexts& texts, const PaneField& field);
// The fields of the quick-access page. Keywords without control are left out.
std::vector<PaneField> quickAccessFields(const PaneEditor& editor, const std::vector<std::string>& keywords);
// Whether each group of a page is open at first. Open are the first group and the groups within the first
// thirty fields.
std::vector<bool> openGroups(const PanePage& page);

// Whether each entry has a field of a present conflict.
std::vector<bool> conflictMarks(const PaneEditor& editor, const std::vector<PageEntry>& entries,
                                const std::vector<std::string>& quickAccess);
// The title of an entry for assistive technology.
std::string spokenTitle(const PaneTexts& texts, const PageEntry& entry, bool isMarked);
// The title of the summary, with the number of settings that differ from their defaults.
std::string summaryTitle(const PaneTexts& texts);
// The tooltip of Undo: the names of the settings that it would change, at most three.
std::string undoTip(const PaneTexts& texts);

// One row of the summary.
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
