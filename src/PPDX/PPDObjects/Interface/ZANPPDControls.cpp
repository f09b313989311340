// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/DelimiterSet.h"
#include "PPDX/PPDObjects/Interface/ElementKeywords.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/TextHash.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <system_error>

// Control definitions: "*%ZANFlags", then a group line or a choice block, then the control itself.

namespace torka {

// The two families of choice blocks differ in the errors of their first line.
struct ZANPPD::BlockStyle {
    PPDErr missingKeyword;
    PPDErr badType;

    static BlockStyle Of(LineKind kind) {
        return kind == LineKind::openMakersBlock
                   ? BlockStyle{PPDErr_OpenUIZANParsing1, PPDErr_OpenUIZANParsing2}
                   : BlockStyle{PPDErr_OpenUIParsing, PPDErr_InvalidOpenUIType};
    }
};

// The content of a choice block so far.
struct ZANPPD::ChoiceBlock {
    enum class Kind { boolean, pickOne, pickMany };

    Kind kind = Kind::pickOne;
    std::int64_t key = -1;               // identifier of the keyword in the constraint store
    std::vector<std::int64_t> optionIds; // those of the options
    PopupItems items;
    std::vector<std::string> branchNames; // of the true and the false branch
    std::array<BooleanBranch, 2> branches;
    std::array<bool, 2> hasBranch{};
    bool trueComesFirst = true;

    std::optional<std::string> defaultOption;
    long defaultLine = 0;
    // The first error, with its line. The block is still read to its end.
    std::optional<std::pair<PPDErr, long>> error;
};

namespace {

constexpr DelimiterSet typeEnds(";()");
constexpr DelimiterSet optionEnds("/");

constexpr std::size_t usualChoices =
    32; // room for the identifiers of a block, which live as long as it is read

// Returns the next of a range's numbers, empty when none comes before the quoted PostScript.
std::string_view takeNumber(PPDStream& line) {
    const std::string_view rest = line.Remaining();
    const std::size_t begin = rest.find_first_not_of(" \t;()");
    if (begin == std::string_view::npos || rest[begin] == '"') {
        return {};
    }
    const std::size_t end = std::min(rest.find_first_of(";()\"", begin), rest.size());
    line.Skip(end);
    return rest.substr(begin, end - begin);
}

// Reads a number as atol does: 0 for none, clamped to the range of the type.
long wholeNumber(std::string_view text, bool& isNumber) {
    const bool negative = text.starts_with('-');
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    isNumber = end != text.data() && error == std::errc();
    if (error == std::errc::result_out_of_range) {
        return negative ? std::numeric_limits<long>::min() : std::numeric_limits<long>::max();
    }
    return value;
}

// Reads a number as atof does, for finite decimal numbers in the C locale.
float decimalNumber(std::string_view text, bool& isNumber) {
    isNumber = false;
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    if (first >= text.size() || !std::strchr("0123456789.", text[first])) {
        return 0.0F;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument) {
        return 0.0F;
    }
    constexpr double limit = std::numeric_limits<float>::max();
    if (error == std::errc::result_out_of_range) {
        const std::string_view number(text.data(), static_cast<std::size_t>(end - text.data()));
        const bool isTiny =
            number.find("e-") != std::string_view::npos || number.find("E-") != std::string_view::npos;
        return isTiny ? 0.0F : static_cast<float>(first == 1 ? -limit : limit);
    }
    isNumber = true;
    return static_cast<float>(std::clamp(value, -limit, limit));
}

} // namespace

void ZANPPD::ParseControlFlags(PPDStream& line) {
    ControlDraft draft;
    draft.line = Line();
    draft.keyword = TakeWord(line);
    if (lint) {
        lint->BeginsControl();
    }
    CNTL_TYPE type{};
    if (controls->Find(draft.keyword.c_str(), type, true)) {
        Report(PPDErr_Duplicate, draft.keyword, draft.line);
        return;
    }
    draft.flagTexts = line.Remaining();
    PPDStream flags(draft.flagTexts);
    while (!flags.Remaining().empty()) {
        const std::string_view flag = flags.TakeToken(flagEnds, true);
        if (!flag.empty()) {
            draft.flags.push_back(flag);
        }
    }
    if (!TakeElements(draft.flags.size())) {
        return;
    }
    if (lint) {
        lint->CheckControlFlags(draft.line, draft.keyword, draft.flags);
    }

    std::string_view text;
    if (draft.keyword.empty() || !ReadNonEmptyLine(text)) {
        Report(PPDErr_ControlParsing, draft.keyword, draft.line);
        return;
    }
    PPDStream next(text);
    const LineKind kind = lineKind(TakeMainKeyword(next));
    if (kind == LineKind::group) {
        ParseGroupLine(next, draft);
    } else if (kind == LineKind::openBlock || kind == LineKind::openMakersBlock) {
        ParseOpenUI(next, draft, BlockStyle::Of(kind));
    } else {
        PushBackLine();
        Report(PPDErr_ControlParsing, draft.keyword, draft.line);
    }
}

void ZANPPD::ParseGroupLine(PPDStream& line, ControlDraft& draft) {
    const long groupLine = Line();
    if (TakeWord(line) != draft.keyword) {
        Report(PPDErr_GroupParsing, draft.keyword, groupLine);
        return;
    }
    const std::string_view rest = line.Remaining();
    line.Skip(std::min(rest.find_first_not_of(" \t:"), rest.size()));
    const std::string groupName(TakeNamedToken(line).token);
    draft.group = groups->Find(groupName.c_str(), true);
    if (lint) {
        lint->GroupLine(groupLine, draft.keyword, groupName, draft.group);
    }

    std::string_view text;
    if (!ReadNonEmptyLine(text)) {
        Report(PPDErr_GroupParsing, draft.keyword, groupLine);
        return;
    }
    PPDStream next(text);
    switch (const LineKind kind = lineKind(TakeMainKeyword(next))) {
    case LineKind::jobNote:
        return ParseJobNote(next, &draft);
    case LineKind::range:
    case LineKind::floatRange:
        return ParseRange(next, draft, kind == LineKind::floatRange);
    case LineKind::openBlock:
    case LineKind::openMakersBlock:
        return ParseOpenUI(next, draft, BlockStyle::Of(kind));
    default:
        PushBackLine();
        Report(PPDErr_GroupParsing, draft.keyword, groupLine);
    }
}

void ZANPPD::ParseOpenUI(PPDStream& line, ControlDraft& draft, const BlockStyle& style) {
    const long blockLine = Line();
    const NamedToken named = TakeNamedToken(line);
    if (named.token.empty()) {
        Report(style.missingKeyword, draft.keyword, blockLine);
        return;
    }
    const std::string_view type = line.TakeToken(typeEnds, true);
    ChoiceBlock block;
    if (type == "Boolean") {
        block.kind = ChoiceBlock::Kind::boolean;
    } else if (type == "PickOne") {
        block.kind = ChoiceBlock::Kind::pickOne;
    } else if (type == "PickMany") {
        block.kind = ChoiceBlock::Kind::pickMany;
    } else {
        Report(style.badType, named.token, blockLine);
        return;
    }
    // The block names its control. A name that another control has is a duplicate.
    CNTL_TYPE found{};
    if (named.token != draft.keyword) {
        Note(PPDLintKind::blockOfOtherKey, blockLine, named.token, draft.keyword);
        draft.keyword = named.token;
        if (controls->Find(draft.keyword.c_str(), found, true)) {
            Report(PPDErr_Duplicate, draft.keyword, blockLine);
            return;
        }
    }
    const CFStringRef name = LocalName(named, blockLine);
    block.items = std::move(choiceRoom);
    block.optionIds.reserve(usualChoices);
    block.key = constraints->GetConstraintStrings()->Insert(draft.keyword);
    ReadBlock(draft.keyword, block);
    constraints->KVSInsert(block.key, block.optionIds);
    if (hasFatalError) {
        return;
    }
    if (block.error) {
        Report(block.error->first, draft.keyword, block.error->second);
    } else if (block.kind == ChoiceBlock::Kind::boolean) {
        FinishBoolean(draft, block, name, blockLine);
    } else {
        FinishPopup(draft, block, name, blockLine);
    }
    block.items.clear();
    choiceRoom = std::move(block.items);
}

// Lines of other elements between the options go to their own readers.
void ZANPPD::ReadBlock(const std::string& keyword, ChoiceBlock& block) {
    const long blockLine = Line();
    std::string_view text;
    while (!hasFatalError && ReadNonEmptyLine(text)) {
        PPDStream line(text);
        const std::string_view token = TakeMainKeyword(line);
        if (token.starts_with("*Default")) {
            ReadDefaultLine(line, token, keyword, block);
            continue;
        }
        const bool isOption = isSameText(token, keyword);
        const ElementKeyword* const element = isOption ? nullptr : findElementKeyword(token);
        if (element != nullptr && element->kind == LineKind::closeBlock) {
            return;
        }
        if (element != nullptr && element->inBlock == InBlock::ends) {
            Note(PPDLintKind::unclosedBlock, blockLine, keyword, token);
            PushBackLine();
            return;
        }
        if (isOption || (element == nullptr && token.starts_with(keyword))) {
            if (lint && !isOption) {
                lint->Note(PPDLintKind::optionOfOtherKey, Line(), keyword, token, keyword);
            }
            const std::size_t consumed = text.size() - line.Remaining().size();
            if (consumed > 0 && text[consumed - 1] != ':') { // with ":" it has no option keyword
                ReadOptionLine(line, block);
            } else {
                Note(PPDLintKind::optionWithoutName, Line(), keyword);
            }
        } else if (token != "*OrderDependency") {
            if (lint && element == nullptr) {
                lint->LineInBlock(Line(), keyword, token, line.Remaining());
            }
            ParseLine(text);
        }
    }
    if (!hasFatalError && !HasReadFault()) {
        Note(PPDLintKind::unclosedBlock, blockLine, keyword, "the end of the file");
    }
}

// "*Default KEYWORD: OPTION" or "*DefaultANYTHING: OPTION".
void ZANPPD::ReadDefaultLine(PPDStream& line, std::string_view token, const std::string& keyword,
                             ChoiceBlock& block) {
    if (token == "*Default" && line.TakeToken(colonEnds, true) != keyword) {
        return;
    }
    if (block.defaultOption) {
        if (!block.error) {
            const bool isBoolean = block.kind == ChoiceBlock::Kind::boolean;
            block.error = {isBoolean ? PPDErr_BooleanParsing : PPDErr_PopupParsing, Line()};
        }
        return;
    }
    block.defaultOption = line.TakeToken(optionEnds, true);
    block.defaultLine = Line();
    if (lint && token != "*Default" && token.substr(8) != std::string_view(keyword).substr(1)) {
        lint->Note(PPDLintKind::otherDefault, block.defaultLine, keyword, token);
    }
}

void ZANPPD::ReadOptionLine(PPDStream& line, ChoiceBlock& block) {
    const long optionLine = Line();
    NamedToken option = TakeNamedToken(line);
    CStringSoup& strings = *constraints->GetConstraintStrings();
    const char* const blockKeyword = lint ? strings.Find(block.key) : nullptr;
    if (lint && option.token.empty()) {
        lint->Note(PPDLintKind::optionWithoutName, optionLine, blockKeyword);
    }
    if (option.token.empty() || !TakeElements(1)) {
        return;
    }
    // Both texts outlive the line, which is gone when the value goes on in further lines.
    // Blocks often offer the same choices in the same order.
    const std::int64_t expected = block.optionIds.empty() ? -1 : block.optionIds.back() + 1;
    const std::int64_t identifier = strings.InsertWhole(option.token, expected);
    block.optionIds.push_back(identifier);
    option.token = {strings.Find(identifier), option.token.size()};
    option.name = Keep(option.name);
    if (lint) {
        lint->CheckOptionValue(optionLine, blockKeyword, option.token, line.Remaining());
    }
    const PostscriptBytes value = TakePostscript(line);
    if (lint) {
        lint->OptionLine(optionLine, blockKeyword, option.token);
        lint->CheckPostscript(optionLine, blockKeyword, option.token, value.bytes, value.length);
    }
    if (block.kind != ChoiceBlock::Kind::boolean) {
        block.items.emplace_back(ChoiceKeyword(option.token), NameOfChoice(option, optionLine), value.bytes,
                                 value.length);
        return;
    }
    const std::string keyword(option.token);
    if (keyword != "True" && keyword != "False") {
        if (!block.error) {
            block.error = {PPDErr_BooleanParsing, optionLine};
        }
        return;
    }
    const std::size_t which = keyword == "True" ? 0 : 1;
    block.trueComesFirst = block.hasBranch[1 - which] ? block.trueComesFirst : which == 0;
    block.hasBranch[which] = true;
    BooleanBranch& branch = block.branches[which];
    branch.psData = value.bytes;
    branch.psLength = value.length;
    block.branchNames.resize(2);
    if (option.hasName) {
        std::array<char, 4 * kLineCapacity> name;
        TextConverter::CFStringToCstring(Localized(option.name, keyword, optionLine), name.data(),
                                         static_cast<long>(name.size()));
        block.branchNames[which] = name.data();
        branch.text = ""; // replaced by the name when both branches are read
    }
}

void ZANPPD::FinishBoolean(ControlDraft& draft, ChoiceBlock& block, const CFStringRef& name, long line) {
    if (!block.hasBranch[0] && !block.hasBranch[1]) {
        Report(PPDErr_BooleanParsing, draft.keyword, line);
        return;
    }
    if (!HasPlace(draft, draft.keyword, true)) {
        return;
    }
    bool state = block.trueComesFirst;
    if (!block.defaultOption) {
        Report(PPDErr_NoDefaultValueFlag, draft.keyword, line);
    } else if ((*block.defaultOption == "True" && block.hasBranch[0]) ||
               (*block.defaultOption == "False" && block.hasBranch[1])) {
        state = *block.defaultOption == "True";
    } else {
        Note(PPDLintKind::unknownDefault, block.defaultLine, draft.keyword, *block.defaultOption);
    }
    for (std::size_t i = 0; i < 2; ++i) {
        if (!block.hasBranch[i]) {
            Note(PPDLintKind::missingState, line, draft.keyword, i == 0 ? "True" : "False");
        }
        if (block.branches[i].text) {
            block.branches[i].text = block.branchNames[i].c_str();
        }
    }
    SetupControl(draft.group,
                 std::make_unique<PPDXBooleanControl>(Define(draft, draft.keyword, name), state,
                                                      block.branches[0], block.branches[1]),
                 true);
}

void ZANPPD::FinishPopup(ControlDraft& draft, ChoiceBlock& block, const CFStringRef& name, long line) {
    if (!HasPlace(draft, draft.keyword, true)) {
        return;
    }
    std::string option;
    if (block.items.empty()) {
        Note(PPDLintKind::emptyBlock, line, draft.keyword);
    } else {
        option = block.items.front().keyword.View();
    }
    if (!block.defaultOption) {
        Report(PPDErr_NoDefaultValueFlag, draft.keyword, line);
    } else {
        const std::string_view wanted = block.defaultOption->c_str();
        const auto isNamed = [&](const _PopupItem& item) { return item.keyword.View() == wanted; };
        if (std::ranges::any_of(block.items, isNamed)) {
            option = *block.defaultOption;
        } else {
            Note(PPDLintKind::unknownDefault, block.defaultLine, draft.keyword, *block.defaultOption);
        }
    }
    PopupItems items(std::move_iterator(block.items.begin()), std::move_iterator(block.items.end()),
                     ChoiceAllocator<_PopupItem>(postscript));
    SetupControl(draft.group,
                 std::make_unique<PPDXPopupControl>(Define(draft, draft.keyword, name),
                                                    block.kind == ChoiceBlock::Kind::pickMany,
                                                    inInstallableOptions, std::move(items), option.c_str()),
                 true);
}

void ZANPPD::ParseRange(PPDStream& line, ControlDraft& draft, bool isFloat) {
    const long rangeLine = Line();
    const NamedToken named = TakeNamedToken(line, false);
    std::array<std::string, 4> numbers;
    bool isWhole = named.token == draft.keyword;
    for (std::string& number : numbers) {
        number = takeNumber(line);
        isWhole = isWhole && !number.empty();
    }
    std::array<bool, 4> isNumber{};
    RangeBounds bounds;
    FloatRangeBounds floatBounds;
    if (isFloat) {
        floatBounds = {decimalNumber(numbers[0], isNumber[0]), decimalNumber(numbers[1], isNumber[1]),
                       decimalNumber(numbers[2], isNumber[2]), decimalNumber(numbers[3], isNumber[3])};
        isWhole = isWhole && floatBounds.increment > 0.0F;
    } else {
        bounds = {wholeNumber(numbers[0], isNumber[0]), wholeNumber(numbers[1], isNumber[1]),
                  wholeNumber(numbers[2], isNumber[2]), wholeNumber(numbers[3], isNumber[3])};
        isWhole = isWhole && bounds.increment > 0;
    }
    if (!isWhole) {
        Report(PPDErr_RangeParsing, draft.keyword, rangeLine);
        return;
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (!isNumber[i]) {
            Note(PPDLintKind::badNumber, rangeLine, draft.keyword, numbers[i]);
        }
    }
    const CFStringRef name = LocalName(named, rangeLine);
    if (lint) {
        const PPDLint::RangeValues values =
            isFloat ? PPDLint::RangeValues{floatBounds.minimum, floatBounds.maximum, floatBounds.defaultValue}
                    : PPDLint::RangeValues{static_cast<double>(bounds.minimum),
                                           static_cast<double>(bounds.maximum),
                                           static_cast<double>(bounds.defaultValue)};
        PPDStream rest(line);
        lint->CheckRange(rangeLine, draft.keyword, numbers, values, takeNumber(rest), isFloat);
    }
    const PostscriptBytes value = TakePostscript(line);
    if (!value.bytes) {
        Report(PPDErr_NoPostscript, draft.keyword, rangeLine);
        return;
    }
    if (!HasPlace(draft, draft.keyword, true)) {
        return;
    }
    if (lint) {
        lint->CheckPostscript(rangeLine, draft.keyword, {}, value.bytes, value.length);
    }
    ControlDefinition definition = Define(draft, draft.keyword, name);
    definition.psData = value.bytes;
    definition.psLength = value.length;
    std::unique_ptr<PPDXControl> control;
    if (isFloat) {
        control = std::make_unique<PPDXFloatRangeControl>(definition, floatBounds);
    } else {
        auto range = std::make_unique<PPDXRangeControl>(definition, bounds);
        if (lint) {
            lint->CheckHeldDefault(rangeLine, *range);
        }
        control = std::move(range);
    }
    SetupControl(draft.group, std::move(control), true);
}

ControlDefinition ZANPPD::Define(const ControlDraft& draft, const std::string& keyword,
                                 const CFStringRef& name) const {
    ControlDefinition definition;
    definition.keyword = keyword.c_str();
    definition.localName = name;
    definition.flags = draft.flags;
    definition.constraints = constraints.get();
    return definition;
}

// Called before a control is made, because a new control reports its value to the constraint store.
bool ZANPPD::HasPlace(const ControlDraft& draft, std::string_view keyword, bool visible) {
    PPDXGroup* group = draft.group;
    const Placement placement = PlacementFor(group, visible);
    if (lint && placement == Placement::inControlsOnly) {
        lint->Note(PPDLintKind::noteInScrollPane, draft.line, keyword, draft.group->Keyword());
    } else if (lint && placement == Placement::asOrphan) {
        lint->Orphan(draft.line, keyword, draft.flags);
    }
    switch (placement) {
    case Placement::noParent:
        Report(PPDErr_NoParent, keyword, draft.line);
        return false;
    case Placement::invalidParent:
        Report(PPDErr_InvalidParent, keyword, draft.line);
        return false;
    default:
        return true;
    }
}

} // namespace torka
