// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/FieldSearch.h"

#include "pane/presentation/FieldTexts.h"
#include "pane/presentation/PageList.h"
#include "platform/TextCase.h"

#include <algorithm>
#include <array>

namespace torka {
namespace {

constexpr std::size_t maximumResults = 40;

std::vector<std::string> foldedWords(std::string_view query) {
    std::vector<std::string> words;
    const std::string folded = upperCaseUtf8(query);
    for (std::size_t from = 0; from < folded.size();) {
        const std::size_t end = std::min(folded.find_first_of(" \t", from), folded.size());
        if (end > from) {
            words.push_back(folded.substr(from, end - from));
        }
        from = end + 1;
    }
    return words;
}

// Words by which people look for a setting that has another name.
struct Synonyms {
    std::string_view keyword;
    const PaneWord* word;
};
constexpr std::array synonyms{
    Synonyms{"*Collate", &words::synonymsCollate},    Synonyms{"*Duplex", &words::synonymsDuplex},
    Synonyms{"*InputSlot", &words::synonymsTray},     Synonyms{"*MediaType", &words::synonymsPaper},
    Synonyms{"*PageSize", &words::synonymsPaperSize}, Synonyms{"*QVColorMode", &words::synonymsColor},
    Synonyms{"*QVDuplex", &words::synonymsDuplex},    Synonyms{"*QVNUpPages", &words::synonymsNUp},
    Synonyms{"*QVPunchHoles", &words::synonymsPunch}, Synonyms{"*QVRIPBooklet", &words::synonymsBooklet},
    Synonyms{"*QVStaple", &words::synonymsStaple},
};

std::string synonymsOf(const PaneTexts& texts, const PaneField& field) {
    const auto place = std::ranges::find(synonyms, field.keyword, &Synonyms::keyword);
    return place == synonyms.end() ? std::string() : texts.Say(*place->word);
}

bool holdsAll(std::string_view text, const std::vector<std::string>& words) {
    return std::ranges::all_of(
        words, [&](const std::string& word) { return text.find(word) != std::string_view::npos; });
}

} // namespace

void FieldSearch::MakeIndex() {
    if (version == texts.editor.FieldsVersion()) {
        return;
    }
    version = texts.editor.FieldsVersion();
    index.clear();
    texts.editor.Catalog().ForEach([this](const PaneField& field) {
        FoldedField folded{
            &field, upperCaseUtf8(field.name + "\n" + field.keyword + "\n" + synonymsOf(texts, field)), {}};
        for (const PaneChoice& choice : choicesOf(*field.control)) {
            folded.choices.emplace_back(upperCaseUtf8(choice.name + "\n" + choice.keyword), choice.name);
        }
        index.push_back(std::move(folded));
    });
}

std::vector<PaneMatch> FieldSearch::Matches(std::string_view query) {
    const std::vector<std::string> words = foldedWords(query);
    std::vector<PaneMatch> matches;
    if (words.empty()) {
        return matches;
    }
    MakeIndex();
    std::vector<PaneMatch> byChoice;
    for (const FoldedField& folded : index) {
        std::vector<std::string_view> missing;
        std::ranges::copy_if(words, std::back_inserter(missing), [&](const std::string& word) {
            return folded.own.find(word) == std::string::npos;
        });
        if (missing.empty()) {
            matches.push_back({folded.field, {}});
            continue;
        }
        const auto choice = std::ranges::find_if(folded.choices, [&](const auto& candidate) {
            return std::ranges::all_of(missing, [&](std::string_view word) {
                return candidate.first.find(word) != std::string::npos;
            });
        });
        if (choice != folded.choices.end()) {
            byChoice.push_back({folded.field, choice->second});
        }
    }
    std::ranges::move(byChoice, std::back_inserter(matches));
    return matches;
}

std::vector<SearchResults::Page> FieldSearch::PagesOf(std::string_view query) const {
    const std::vector<std::string> asked = foldedWords(query);
    std::vector<SearchResults::Page> pages;
    if (asked.empty()) {
        return pages;
    }
    for (const PageEntry& entry : pageEntries(texts, false, hasWatermarks)) {
        std::string text = entry.title;
        if (entry.kind == PageEntry::Kind::watermarks) {
            text += "\n" + texts.Say(words::synonymsWatermark);
        }
        if (holdsAll(upperCaseUtf8(text), asked)) {
            pages.push_back({entry.identifier, entry.title});
        }
    }
    return pages;
}

SearchResults FieldSearch::Results(std::string_view query) {
    SearchResults results;
    const std::vector<PaneMatch> found = Matches(query);
    results.pages = PagesOf(query);
    if (found.empty() && results.pages.empty()) {
        results.nothingFound = texts.Say(words::foundNone, query);
    }
    for (std::size_t i = 0; i < std::min(found.size(), maximumResults); ++i) {
        std::string heading = shownPlace(texts, *found[i].field);
        if (!found[i].choice.empty()) {
            heading += " – " + texts.Say(words::found, found[i].choice);
        }
        if (results.sections.empty() || results.sections.back().heading != heading) {
            results.sections.push_back({std::move(heading), {}});
        }
        results.sections.back().fields.push_back(*found[i].field);
    }
    if (found.size() > maximumResults) {
        results.more = texts.Say(words::foundMore, std::to_string(found.size() - maximumResults));
    }
    return results;
}

} // namespace torka
