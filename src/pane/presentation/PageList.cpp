// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/PageList.h"

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "pane/presentation/FieldTexts.h"

#include <algorithm>
#include <set>

namespace torka {
namespace {

constexpr const char* installedPage = "installed";

std::string withoutShortcut(std::string text) {
    std::erase(text, '&');
    return text;
}

} // namespace

std::vector<PageEntry> pageEntries(const PaneTexts& texts, bool hasQuickAccess, bool hasWatermarks) {
    std::vector<PageEntry> entries;
    if (hasQuickAccess) {
        entries.push_back({PageEntry::Kind::quickAccess, "quickAccess", texts.Say(words::quickAccess)});
    }
    const auto& pages = texts.editor.Catalog().Pages();
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (!pages[i].installable) {
            entries.push_back({PageEntry::Kind::page, pages[i].keyword, pages[i].name, i});
        }
    }
    if (hasWatermarks) {
        entries.push_back({PageEntry::Kind::watermarks, "watermarks", texts.Say(words::watermarks)});
    }
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (pages[i].installable) {
            entries.push_back({PageEntry::Kind::installed, installedPage, texts.Say(words::installed), i});
        }
    }
    entries.push_back({PageEntry::Kind::summary, "summary", texts.Say(words::summary)});
    return entries;
}

std::string pageOf(const PaneTexts& texts, const PaneField& field) {
    const PanePage& page = texts.editor.Catalog().Pages()[field.page];
    return page.installable ? installedPage : page.keyword;
}

std::vector<PaneField> quickAccessFields(const PaneEditor& editor, const std::vector<std::string>& keywords) {
    constexpr const char* pageSize = "*PageSize";
    std::vector<PaneField> fields;
    const PaneField* paper = editor.Catalog().Find(pageSize);
    if (paper != nullptr && std::ranges::find(keywords, pageSize) == keywords.end()) {
        fields.push_back(*paper);
    }
    for (const std::string& keyword : keywords) {
        if (const PaneField* field = editor.Catalog().Find(keyword)) {
            fields.push_back(*field);
        } else if (PPDXControl* control = editor.FindControl(keyword)) {
            fields.push_back(PaneCatalog::FieldOf(*control)); // no page shows it
        }
    }
    return fields;
}

std::vector<bool> openGroups(const PanePage& page) {
    constexpr std::size_t openAtFirst = 30; // fields
    std::vector<bool> open;
    std::size_t fields = 0;
    for (const PaneGroup& group : page.groups) {
        open.push_back(fields == 0 || fields + group.fields.size() <= openAtFirst);
        fields += group.fields.size();
    }
    return open;
}

std::vector<bool> conflictMarks(const PaneEditor& editor, const std::vector<PageEntry>& entries,
                                const std::vector<std::string>& quickAccess) {
    std::set<std::size_t> pages;
    std::set<std::string> keywords;
    for (const PaneConflict& conflict : editor.Conflicts()) {
        for (const std::string& keyword : {conflict.first.keyword, conflict.second.keyword}) {
            keywords.insert(keyword);
            if (const PaneField* field = editor.Catalog().Find(keyword)) {
                pages.insert(field->page);
            }
        }
    }
    std::vector<bool> marks;
    for (const PageEntry& entry : entries) {
        const bool isDescribed =
            entry.kind == PageEntry::Kind::page || entry.kind == PageEntry::Kind::installed;
        const bool isQuick =
            entry.kind == PageEntry::Kind::quickAccess &&
            std::ranges::any_of(quickAccess, [&](const auto& k) { return keywords.contains(k); });
        marks.push_back(isQuick || (isDescribed && pages.contains(entry.place)));
    }
    return marks;
}

std::string spokenTitle(const PaneTexts& texts, const PageEntry& entry, bool isMarked) {
    return isMarked ? texts.Say(words::conflictPage, entry.title) : entry.title;
}

std::string summaryTitle(const PaneTexts& texts) {
    const std::size_t count = texts.editor.DifferenceCount();
    const std::string title = texts.Say(words::summary);
    return count == 0 ? title : title + " (" + std::to_string(count) + ')';
}

std::string undoTip(const PaneTexts& texts) {
    constexpr std::size_t maximumNames = 3;
    std::vector<std::string> names;
    for (const PPDXControl* control : texts.editor.UndoSubjects()) {
        if (names.size() == maximumNames) {
            names.emplace_back("…");
            break;
        }
        names.push_back(nameOf(*control));
    }
    return names.empty() ? withoutShortcut(texts.Say(words::undo)) : texts.Say(words::undoOf, joined(names));
}

std::vector<SummaryRow> summaryRows(const PaneTexts& texts) {
    std::vector<SummaryRow> rows;
    for (const PaneDifference& difference : texts.editor.Differences()) {
        const PaneField& field = *difference.field;
        rows.push_back({field.keyword, field.name, shownValue(texts, field, difference.value),
                        shownValue(texts, field, difference.defaultValue), shownPlace(texts, field)});
    }
    return rows;
}

std::string summaryHeading(const PaneTexts& texts, std::size_t rows) {
    return rows == 0 ? texts.Say(words::noDifferences) : texts.Say(words::summaryCount, std::to_string(rows));
}

} // namespace torka
