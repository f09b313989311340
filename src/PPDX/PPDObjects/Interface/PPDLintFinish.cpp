// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConflictPairs.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/KeyForest.h"
#include "PPDX/PPDObjects/Controls/JobNoteFlags.h"
#include "PPDX/PPDObjects/Interface/ElementKeywords.h"
#include "PPDX/PPDObjects/Interface/LintServerLine.h"
#include "PPDX/PPDObjects/Interface/LintWords.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include <algorithm>
#include <array>
#include <fstream>

// The checks that need the whole description.

namespace torka {

namespace {

constexpr std::string_view endOfDescription = "*% End of PPD file";
constexpr std::size_t maximumBlockBytes = 1024;       // of a setting in the job
constexpr std::size_t maximumPairsCompared = 5000000; // for reverse lines; further ones are taken as present

std::string_view mainKeyword(std::string_view line) {
    return line.substr(0, line.find_first_of(std::string_view(" \t:\0\xFF", 5)));
}

// The two keys of a constraint line as one text, the same in both directions.
std::string keysOf(std::string_view key1, std::string_view key2) {
    std::string keys(std::min(key1, key2));
    return keys.append(1, ' ').append(std::max(key1, key2));
}

// A constraint's four parts as one text.
std::string lineOf(std::string_view key1, std::string_view option1, std::string_view key2,
                   std::string_view option2) {
    std::string line(key1);
    for (const std::string_view part : {option1, key2, option2}) {
        if (!part.empty()) {
            line.append(1, ' ').append(part);
        }
    }
    return line;
}

// The options that a text of a constraint line means; an empty text means all but "None" and "False".
std::vector<std::string_view> meantOptions(const UIConstraints& store, std::string_view key,
                                           std::string_view option) {
    std::vector<std::string_view> result;
    if (!option.empty()) {
        result.push_back(option);
        return result;
    }
    const CStringSoup& texts = *store.GetConstraintStrings();
    if (const auto* const items = store.GetKeyForest()->GetItems(texts.Find(key))) {
        for (const std::int64_t item : *items) {
            const std::string_view text = texts.Find(item);
            if (text != "None" && text != "False") {
                result.push_back(text);
            }
        }
    }
    return result;
}

bool isVisibleWithParents(const PPDXElement* element) {
    for (; element != nullptr; element = element->GetParent()) {
        if (!element->IsVisible()) {
            return false;
        }
    }
    return true;
}

// Reads the lines behind the end marker. Other code reads records there, and the filter appends some.
class LinesBehindEnd {
public:
    void Take(long line, std::string_view start) {
        if (start.starts_with('*')) {
            const std::string_view keyword = mainKeyword(start);
            const bool isComment = keyword.starts_with("*%") && findElementKeyword(keyword) == nullptr;
            isLost = isComment || keyword == "*End" ? isLost : !IsRecord(keyword); // *End closes a value
            if (isComment || !isLost) {
                return;
            }
            if (lost++ == 0) {
                firstLine = line;
                firstKeyword = keyword;
            }
        } else if (isLost && !start.empty()) {
            ++lost; // the value goes on
        }
    }
    std::size_t Count() const { return lost; }
    long FirstLine() const { return firstLine; }
    const std::string& FirstKeyword() const { return firstKeyword; }

private:
    static bool IsRecord(std::string_view keyword) {
        constexpr std::size_t digits = 4; // of a chunk's number
        const std::string_view number = keyword.substr(keyword.size() - std::min(digits, keyword.size()));
        return isServerRecord(keyword) ||
               (keyword.starts_with("*QV") && keyword.size() > digits &&
                number.find_first_not_of("0123456789abcdef") == std::string_view::npos);
    }

    std::size_t lost = 0;
    bool isLost = false; // the element that began last, with its further lines
    long firstLine = 0;
    std::string firstKeyword;
};

std::string count(std::size_t number, std::string_view what) {
    return std::to_string(number) + " " + std::string(what) + (number == 1 ? "" : "s");
}

} // namespace

bool PPDLint::Finish(ZANPPD& description) {
    CheckConstraints(description);
    CheckDefaults(description);
    CheckGroups(description);
    CheckOptions(description);
    CheckOtherLines(description);
    CheckCustomSize(description);
    CheckWords(description);
    if (firstText) {
        Note(PPDLintKind::textBeforeEncoding, firstText->line, firstText->name, firstText->other);
    }
    bool isRead = true;
    if (!description.HasFatalError()) {
        CheckPane(description);
        isRead = CheckLines(description);
    }
    std::stable_sort(notes.begin(), notes.end(),
                     [](const PPDLintNote& a, const PPDLintNote& b) { return a.line < b.line; });
    return isRead;
}

void PPDLint::CheckConstraints(ZANPPD& description) {
    Words keywords;
    description.GetControls()->ForEach([&](const PPDXControl* control) {
        if (control->Keyword()) {
            keywords.emplace_back(control->Keyword());
        }
    });
    keywords.insert(keywords.end(), spoolerKeywords.begin(), spoolerKeywords.end());
    std::unordered_set<std::string> lines;
    for (const Constraint& each : constraints) {
        if (!each.isRequirement) {
            lines.insert(lineOf(each.key1, each.option1, each.key2, each.option2));
        }
    }
    for (const Constraint& each : constraints) {
        const bool isKnown1 = CheckConstraintSide(description, keywords, each, each.key1, each.option1);
        const bool isKnown2 = CheckConstraintSide(description, keywords, each, each.key2, each.option2);
        if (isKnown1 && isKnown2 && !each.isRequirement && each.key1 == each.key2 &&
            (each.option1 == each.option2 || each.option1.empty() || each.option2.empty())) {
            const std::string& option = each.option1.empty() ? each.option2 : each.option1;
            Note(PPDLintKind::constraintOnItself, each.line, each.key1,
                 option.empty() ? "each option" : option);
        }
        if (isKnown1 && isKnown2 && !each.isRequirement && !IsReversed(description, each, lines)) {
            Note(PPDLintKind::oneWayConstraint, each.line, each.key1,
                 lineOf(each.key2, each.option2, each.key1, each.option1));
        }
    }
}

// Tells whether other lines forbid in the other direction all that this one forbids.
bool PPDLint::IsReversed(const ZANPPD& description, const Constraint& line,
                         const std::unordered_set<std::string>& lines) {
    if (lines.contains(lineOf(line.key2, line.option2, line.key1, line.option1))) {
        return true;
    }
    const UIConstraints& store = *description.GetUIConstraints();
    const auto first = meantOptions(store, line.key1, line.option1);
    const auto second = meantOptions(store, line.key2, line.option2);
    pairsCompared += first.size() * second.size();
    if (pairsCompared > maximumPairsCompared) {
        return true;
    }
    const auto isWild = [](std::string_view option) { return option != "None" && option != "False"; };
    const auto forbids = [&](std::string_view option2, std::string_view option1) {
        return lines.contains(lineOf(line.key2, option2, line.key1, option1)) ||
               (isWild(option2) && lines.contains(lineOf(line.key2, {}, line.key1, option1))) ||
               (isWild(option1) && lines.contains(lineOf(line.key2, option2, line.key1, {}))) ||
               (isWild(option2) && isWild(option1) && lines.contains(lineOf(line.key2, {}, line.key1, {})));
    };
    return std::ranges::all_of(first, [&](std::string_view option1) {
        return std::ranges::all_of(second,
                                   [&](std::string_view option2) { return forbids(option2, option1); });
    });
}

// Returns true for a keyword of a popup or a check box of the description, whose option is known too.
bool PPDLint::CheckConstraintSide(ZANPPD& description, const Words& keywords, const Constraint& line,
                                  const std::string& key, const std::string& option) {
    CNTL_TYPE type{};
    if (!description.GetControls()->Find(key.c_str(), type, true)) {
        if (!spoolerKeywords.contains(key)) {
            Note(PPDLintKind::unknownConstraintKeyword, line.line, key, {}, Suggestion(key, keywords));
        }
        return false;
    }
    if (type != CNTL_TYPE::boolean && type != CNTL_TYPE::popup) {
        if (!line.isRequirement) { // which nothing evaluates in any case
            Note(PPDLintKind::constraintOnValue, line.line, key);
        }
        return false;
    }
    const UIConstraints& store = *description.GetUIConstraints();
    const CStringSoup& texts = *store.GetConstraintStrings();
    const auto offered = store.GetKeyForest()->GetOptions(texts.Find(std::string_view(key)));
    if (option.empty() || (offered && offered->Occurrences(texts.Find(std::string_view(option)),
                                                           offered->Items().size()) > 0)) {
        return true;
    }
    Words offeredTexts;
    for (const std::int64_t item : offered ? offered->Items() : std::vector<std::int64_t>()) {
        offeredTexts.emplace_back(texts.Find(item));
    }
    Note(PPDLintKind::unknownConstraintOption, line.line, key, option, Suggestion(option, offeredTexts));
    return false;
}

// The engine tells which defaults are in conflict, as it does for a job. The lines tell where.
void PPDLint::CheckDefaults(const ZANPPD& description) {
    const UIConstraints& store = *description.GetUIConstraints();
    const CStringSoup& texts = *store.GetConstraintStrings();
    const KVCache& defaults = *store.GetCurrentSelections();
    ConstraintsEngine engine(&defaults, store.GetConstraintForest(), store.GetKeyForest(), nullptr);
    std::vector<ConflictPair> pairs;
    visitConflictPairs(engine, defaults, [&pairs](const ConflictPair& pair) {
        pairs.push_back(pair);
        return pairs.size() < maximumNotes;
    });
    if (pairs.empty()) {
        return;
    }
    const auto means = [&](const std::string& key, const std::string& option) {
        const std::int64_t selected = defaults.GetItem(texts.Find(std::string_view(key)));
        if (selected < 0) {
            return false;
        }
        const std::string_view byDefault = texts.Find(selected);
        return option.empty() ? byDefault != "None" && byDefault != "False" : byDefault == option;
    };
    std::unordered_map<std::string, long> lineOfKeys;
    for (const Constraint& each : constraints) {
        if (!each.isRequirement && means(each.key1, each.option1) && means(each.key2, each.option2)) {
            lineOfKeys.try_emplace(keysOf(each.key1, each.key2), each.line);
        }
    }
    for (const auto& [one, other] : pairs) {
        const std::string key(texts.Find(one.key));
        const std::string otherKey(texts.Find(other.key));
        const auto place = lineOfKeys.find(keysOf(key, otherKey));
        Note(PPDLintKind::defaultsInConflict, place == lineOfKeys.end() ? 0 : place->second, key,
             std::string(key)
                 .append("=")
                 .append(texts.Find(one.option))
                 .append(" and ")
                 .append(otherKey)
                 .append("=")
                 .append(texts.Find(other.option)));
    }
}

std::string_view PPDLint::Suggestion(std::string_view word, const Words& candidates) {
    wordsCompared += candidates.size();
    return wordsCompared <= maximumWordsCompared ? closestWord(word, candidates) : std::string_view();
}

void PPDLint::CheckGroups(const ZANPPD& description) {
    std::unordered_map<std::string_view, long> declaredAt;
    for (const Named& group : declaredGroups) {
        declaredAt.try_emplace(group.name, group.line);
        if (placedGroups.contains(group.name)) {
            continue;
        }
        if (const auto parent = kindlessParents.find(group.name); parent != kindlessParents.end()) {
            Note(PPDLintKind::parentWithoutKind, parent->second, group.name);
        } else {
            Note(PPDLintKind::unplacedGroup, group.line, group.name);
        }
    }
    Words declared;
    for (const Named& group : declaredGroups) {
        declared.emplace_back(group.name);
    }
    for (const Named& each : undeclaredParents) {
        Note(PPDLintKind::parentWithoutGroup, each.line, each.name, {}, Suggestion(each.name, declared));
    }
    Words names;
    description.GetGroups()->ForEach([&](const PPDXGroup* group) { names.emplace_back(group->Keyword()); });
    for (const Named& each : unknownGroups) {
        Note(PPDLintKind::unknownGroup, each.line, each.name, each.other, Suggestion(each.other, names));
    }
    description.GetGroups()->ForEach([&](const PPDXGroup* group) {
        const auto* rollDown = dynamic_cast<const PPDXRollDown*>(group);
        if (!rollDown || isVisibleWithParents(rollDown)) {
            return;
        }
        std::size_t controls = 0;
        rollDown->Controls().ForEach(
            [&](const PPDXControl* control) { controls += control->IsVisible() ? 1U : 0U; });
        if (controls > 0) {
            const auto place = declaredAt.find(rollDown->Keyword());
            Note(PPDLintKind::hiddenControls, place == declaredAt.end() ? 0 : place->second,
                 rollDown->Keyword(), count(controls, "control"));
        }
    });
}

void PPDLint::CheckOptions(const ZANPPD& description) {
    const PPDXControls& controls = *description.GetControls();
    for (const Named& each : options) {
        long size = 0;
        if (PPDXPopupControl* popup = controls.FindPopup(each.name.c_str(), true)) {
            size = popup->GetKeywordPSData(each.other.c_str(), nullptr);
        } else if (PPDXBooleanControl* boolean = controls.FindBoolean(each.name.c_str(), true)) {
            const bool state = boolean->IsTrue();
            boolean->SetValue(each.other == "True");
            size = boolean->PostScript(nullptr);
            boolean->SetValue(state);
        }
        CheckBlockSize(each.line, each.name, each.other, size);
    }
    for (const Named& each : templates) {
        CNTL_TYPE type{};
        PPDXControl* const control = controls.Find(each.name.c_str(), type, true);
        // A note's block may be longer.
        if (control != nullptr && type != CNTL_TYPE::jobNote) {
            CheckBlockSize(each.line, each.name, {}, control->PostScript(nullptr));
        }
    }
    for (const Named& each : linesInBlocks) {
        const std::string bare = each.name.substr(std::min<std::size_t>(1, each.name.size()));
        if (each.other != "*Custom" + bare && each.other != "*ParamCustom" + bare) {
            Note(PPDLintKind::optionOfOtherKey, each.line, each.name, each.other,
                 closestWord(each.other, std::array{std::string_view(each.name)}));
        }
    }
}

void PPDLint::CheckCustomSize(const ZANPPD& description) {
    CNTL_TYPE type{};
    const auto* const size = dynamic_cast<PPDXCustomPageSizeControl*>(
        description.GetControls()->Find("*CustomPrintSize", type, true));
    if (size == nullptr) {
        return;
    }
    for (const auto& [maximum, name] :
         {std::pair{size->MaxWidth(), "width"}, {size->MaxHeight(), "height"}}) {
        if (maximum <= 0.0F) {
            Note(PPDLintKind::customSizeWithoutBounds, customSizeLine, size->Keyword(), name);
        }
    }
}

void PPDLint::CheckBlockSize(long line, std::string_view keyword, std::string_view option, long size) {
    if (size > static_cast<long>(maximumBlockBytes)) {
        const std::string whose =
            option.empty() ? "the block has " : "the block of " + std::string(option) + " has ";
        Note(PPDLintKind::longBlock, line, keyword, whose + std::to_string(size) + " bytes");
    }
}

// Adds what is meant to findings of the parser that name an unknown word.
void PPDLint::CheckWords(const ZANPPD& description) {
    Words flags;
    for (const JobNoteFlagRow& row : jobNoteFlags) {
        flags.push_back(row.word);
    }
    for (PPDLintNote& note : notes) {
        if (note.kind == PPDLintKind::unknownJobNoteFlag) {
            note.suggestion = Suggestion(note.text, flags);
        } else if (note.kind == PPDLintKind::unknownDefault) {
            Words offered;
            if (PPDXPopupControl* popup = description.GetControls()->FindPopup(note.keyword.c_str(), true)) {
                for (const _PopupItem* item = popup->FirstItem(); item; item = popup->NextItem()) {
                    offered.push_back(item->keyword.View());
                }
            }
            note.suggestion = Suggestion(note.text, offered);
        }
    }
}

void PPDLint::CheckPane(const ZANPPD& description) {
    const CString* const version = description.MakerVersion();
    if (!version || version->Empty()) {
        Note(PPDLintKind::noMakerVersion, 0, "*%QVVersion");
    }
    const CString* const name = description.PCFileName();
    if (!name || name->Empty()) {
        Note(PPDLintKind::noFileName, 0, "*PCFileName");
    } else if (listedFileNames) {
        const CFStringRef own = cfString(name->Buffer());
        for (CFIndex i = 0; i < CFArrayGetCount(listedFileNames); ++i) {
            const auto listed = cfCast<CFString>(CFArrayGetValueAtIndex(listedFileNames, i));
            if (listed && CFStringCompare(listed, own, kCFCompareCaseInsensitive) == 0) {
                return;
            }
        }
        Note(PPDLintKind::unlistedFileName, 0, "*PCFileName", name->Buffer());
    }
}

// Reads the file itself: these defects may stand where no reader of an element looks.
bool PPDLint::CheckLines(const ZANPPD& description) {
    FSRef file;
    if (!description.GetFileSpec(file)) {
        return true;
    }
    std::ifstream in(file.path, std::ios::binary);
    std::array<char, 65536> block;
    std::string start;
    std::size_t length = 0;
    std::string_view badByte;
    ServerLine server;
    long line = 1;
    char last = '\0';
    bool isAtEnd = false;
    LinesBehindEnd behind;
    std::span<const std::uint32_t> unclosed = description.UnclosedValues();
    std::span<const std::uint32_t> cut = description.CutValues();
    std::span<const std::uint32_t> trailing = description.TextsBehindQuotes();
    const auto noteValues = [&](PPDLintKind kind, std::span<const std::uint32_t>& values) {
        for (; !values.empty() && values.front() <= line; values = values.subspan(1)) {
            Note(kind, line, mainKeyword(start));
        }
    };
    const auto endLine = [&] {
        if (const auto refusal = server.End()) {
            Note(refusal->why.empty() ? PPDLintKind::lineWithoutAsterisk : PPDLintKind::refusedName, line,
                 mainKeyword(start), refusal->why.empty() ? "" : '"' + refusal->name + "\" " + refusal->why);
        }
        if (isAtEnd) {
            behind.Take(line, start);
        } else {
            isAtEnd = start.starts_with(endOfDescription);
            CheckLine(line, start, length, badByte);
            noteValues(PPDLintKind::unclosedQuote, unclosed);
            noteValues(PPDLintKind::cutValue, cut);
            noteValues(PPDLintKind::textBehindQuote, trailing);
        }
        length = 0;
        badByte = {};
        start.clear();
    };
    while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
        for (const char c : std::string_view(block.data(), static_cast<std::size_t>(in.gcount()))) {
            if (c == '\n' || c == '\r') {
                if (!(c == '\n' && last == '\r')) {
                    endLine();
                    ++line;
                }
            } else {
                if (badByte.empty() && (c == '\0' || c == '\xFF')) {
                    badByte = c == '\0' ? "NUL" : "0xFF";
                }
                server.Take(c);
                if (++length <= 64) {
                    start.push_back(c);
                }
            }
            last = c;
        }
    }
    endLine();
    if (behind.Count() > 0) {
        Note(PPDLintKind::linesBehindEnd, behind.FirstLine(), behind.FirstKeyword(),
             count(behind.Count(), "line") + (behind.Count() == 1 ? " is" : " are"));
    }
    return in.eof();
}

void PPDLint::CheckLine(long line, std::string_view start, std::size_t length, std::string_view badByte) {
    if (length >= kLineCapacity) {
        Note(PPDLintKind::cutLine, line, mainKeyword(start));
    }
    if (!badByte.empty()) {
        Note(PPDLintKind::unreadableByte, line, mainKeyword(start), badByte);
    }
}

} // namespace torka
