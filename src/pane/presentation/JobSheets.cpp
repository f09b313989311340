// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/JobSheets.h"

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "output/ZANJobNoteList.h"
#include "pane/data/PDEData.h"
#include "pane/presentation/FieldTexts.h"

#include <algorithm>
#include <utility>

namespace torka {
namespace {

using Leaf = JobSheets::Leaf;
using Order = JobSheets::Order;
using Sides = JobSheets::Sides;

constexpr double nearEdge = 0.06;

template <int columns, int rows>
void pages(JobSheets& sheets) {
    sheets.columns = columns;
    sheets.rows = rows;
}

template <auto member, auto value>
void set(JobSheets& sheets) {
    sheets.*member = value;
}

template <Leaf leaf, bool before, bool after>
void add(JobSheets& sheets) {
    if (before) {
        sheets.before.push_back(leaf);
    }
    if (after) {
        sheets.after.push_back(leaf);
    }
}

template <bool atTop, bool atLeft = true>
void stapleAtCorner(JobSheets& sheets) {
    sheets.staples = {{{atLeft ? nearEdge : 1 - nearEdge, atTop ? nearEdge : 1 - nearEdge},
                       atTop == atLeft ? -45.0 : 45.0}};
}

void stapleLeft(JobSheets& sheets) { sheets.staples = {{{nearEdge, 0.3}, 90}, {{nearEdge, 0.7}, 90}}; }
void stapleTop(JobSheets& sheets) { sheets.staples = {{{0.3, nearEdge}, 0}, {{0.7, nearEdge}, 0}}; }
void stapleMiddle(JobSheets& sheets) { sheets.staples = {{{0.5, 0.3}, 90}, {{0.5, 0.7}, 90}}; }

struct Rule {
    std::string_view keyword; // with its asterisk
    std::string_view choice;
    void (*draw)(JobSheets&);
    std::optional<bool> landscape{}; // the orientation of pages for which alone the choice is drawn
};

// What each choice draws. The keywords without "QV" are those of the PPD specification 4.3, section 5.
constexpr std::array sheetRules{
    Rule{"*QVOrientation", "Landscape", set<&JobSheets::isLandscape, true>},
    Rule{"*QVDuplex", "LongEdge", set<&JobSheets::sides, Sides::longEdge>},
    Rule{"*QVDuplex", "ShortEdge", set<&JobSheets::sides, Sides::shortEdge>},
    Rule{"*Duplex", "DuplexNoTumble", set<&JobSheets::sides, Sides::longEdge>},
    Rule{"*Duplex", "DuplexTumble", set<&JobSheets::sides, Sides::shortEdge>},
    Rule{"*QVMirror", "True", set<&JobSheets::isMirrored, true>},
    Rule{"*QVRotate", "90", set<&JobSheets::rotation, 90>},
    Rule{"*QVRotate", "180", set<&JobSheets::rotation, 180>},
    Rule{"*QVRotate", "270", set<&JobSheets::rotation, 270>},
    Rule{"*QVNUpPages", "2", pages<2, 1>},
    Rule{"*QVNUpPages", "4", pages<2, 2>},
    Rule{"*QVNUpPages", "6", pages<3, 2>},
    Rule{"*QVNUpPages", "8", pages<4, 2>},
    Rule{"*QVNUpPages", "9", pages<3, 3>},
    Rule{"*QVNUpPages", "16", pages<4, 4>},
    Rule{"*QVNUpOption", "DownRight", set<&JobSheets::order, Order::downRight>},
    Rule{"*QVNUpOption", "LeftDown", set<&JobSheets::order, Order::leftDown>},
    Rule{"*QVNUpOption", "DownLeft", set<&JobSheets::order, Order::downLeft>},
    Rule{"*QVNUpBorder", "True", set<&JobSheets::hasBorders, true>},
    Rule{"*QVRepeatPage", "True", set<&JobSheets::repeatsPage, true>},
    Rule{"*QVRIPBooklet", "Saddle", set<&JobSheets::booklet, JobSheets::Booklet::saddle>},
    Rule{"*QVRIPBooklet", "Perfect", set<&JobSheets::booklet, JobSheets::Booklet::perfect>},
    Rule{"*QVRIPBooklet", "Speed", set<&JobSheets::booklet, JobSheets::Booklet::speed>},
    Rule{"*QVBookBinding", "Right", set<&JobSheets::bindingEdge, SheetEdge::right>},
    Rule{"*QVBookBinding", "Top", set<&JobSheets::bindingEdge, SheetEdge::top>},
    Rule{"*QVStaple", "Front", stapleAtCorner<true>},
    Rule{"*QVStaple", "Rear", stapleAtCorner<false>},
    Rule{"*QVStaple", "Dual", stapleLeft},
    Rule{"*QVStaple", "Top", stapleTop},
    Rule{"*QVStaple", "Saddle", stapleMiddle},
    // The place of a staple for the other orientation depends on how the printer turns the page.
    Rule{"*StapleLocation", "SinglePortrait", stapleAtCorner<true>, false},
    Rule{"*StapleLocation", "SingleLandscape", stapleAtCorner<true>, true},
    Rule{"*StapleLocation", "DualPortrait", stapleLeft, false},
    Rule{"*StapleLocation", "Saddle", stapleMiddle},
    Rule{"*StapleLocation", "UpperLeft", stapleAtCorner<true>},
    Rule{"*StapleLocation", "UpperRight", stapleAtCorner<true, false>},
    Rule{"*StapleLocation", "LowerLeft", stapleAtCorner<false>},
    Rule{"*StapleLocation", "LowerRight", stapleAtCorner<false, false>},
    Rule{"*QVPunchHoles", "Two", set<&JobSheets::holes, 2>},
    Rule{"*QVPunchHoles", "Three", set<&JobSheets::holes, 3>},
    Rule{"*QVPunchHoles", "Four", set<&JobSheets::holes, 4>},
    Rule{"*QVPunchHoles", "Comb", set<&JobSheets::holes, 19>},
    Rule{"*QVFoldStyle", "Half", set<&JobSheets::fold, JobSheets::Fold::half>},
    Rule{"*QVFoldStyle", "Letter", set<&JobSheets::fold, JobSheets::Fold::letter>},
    Rule{"*QVFoldStyle", "Accordion", set<&JobSheets::fold, JobSheets::Fold::accordion>},
    Rule{"*QVFoldStyle", "Z", set<&JobSheets::fold, JobSheets::Fold::z>},
    Rule{"*QVFoldStyle", "Gate", set<&JobSheets::fold, JobSheets::Fold::gate>},
    Rule{"*QVTrimSides", "Face", set<&JobSheets::trim, JobSheets::Trim::foreEdge>},
    Rule{"*QVTrimSides", "Three", set<&JobSheets::trim, JobSheets::Trim::threeSides>},
    Rule{"*QVBindStyle", "Tape", set<&JobSheets::binding, JobSheets::Binding::tape>},
    Rule{"*QVBindStyle", "Ring", set<&JobSheets::binding, JobSheets::Binding::ring>},
    Rule{"*QVBindStyle", "Glue", set<&JobSheets::binding, JobSheets::Binding::glue>},
    Rule{"*QVBannerPage", "Start", add<Leaf::banner, true, false>},
    Rule{"*QVBannerPage", "End", add<Leaf::banner, false, true>},
    Rule{"*QVBannerPage", "Both", add<Leaf::banner, true, true>},
    Rule{"*QVInsertSheets", "Front", add<Leaf::insert, true, false>},
    Rule{"*QVInsertSheets", "Back", add<Leaf::insert, false, true>},
    Rule{"*QVInsertSheets", "Both", add<Leaf::insert, true, true>},
    Rule{"*QVBookCoverEnabled", "True", add<Leaf::cover, true, true>},
    Rule{"*QVBookFrCover", "Outside", add<Leaf::cover, true, false>},
    Rule{"*QVBookFrCover", "Inside", add<Leaf::cover, true, false>},
    Rule{"*QVBookFrCover", "Both", add<Leaf::cover, true, false>},
    Rule{"*QVBookBkCover", "Outside", add<Leaf::cover, false, true>},
    Rule{"*QVBookBkCover", "Inside", add<Leaf::cover, false, true>},
    Rule{"*QVBookBkCover", "Both", add<Leaf::cover, false, true>},
    Rule{"*QVInterlvMedia", "True", set<&JobSheets::interleaves, true>},
    Rule{"*QVSlipSheet", "Set", add<Leaf::slip, false, true>},
    Rule{"*QVSlipSheet", "Job", add<Leaf::slip, false, true>},
    Rule{"*QVColorMode", "Gray", set<&JobSheets::isGray, true>},
    Rule{"*QVColorMode", "Black", set<&JobSheets::isGray, true>},
};

void applyRules(JobSheets& sheets, const PaneEditor& editor) {
    std::string_view keyword;
    const PPDXControl* control = nullptr;
    std::string value;
    for (const Rule& rule : sheetRules) {
        if (rule.keyword != keyword) {
            keyword = rule.keyword;
            control = editor.FindControl(keyword);
            value = control == nullptr ? std::string() : PaneEditor::Value(*control);
        }
        if (control != nullptr && value == rule.choice &&
            rule.landscape.value_or(sheets.isLandscape) == sheets.isLandscape) {
            rule.draw(sheets);
            sheets.drawn.push_back(control);
        }
    }
}

// The paper on which the printer prints: that of its own setting, else the document's.
void takePaper(JobSheets& sheets, const PaneEditor& editor, const PDEData* data, const PMPrinter& printer) {
    for (const char* keyword : {"*PageSize", "*QVPrintSize"}) {
        const PPDXControl* control = editor.FindControl(keyword);
        const std::string name = control == nullptr ? std::string() : PaneEditor::Value(*control);
        if (name.empty() || name == "SameAsPageSize") {
            continue;
        }
        std::optional<PaperSize> unnamed;
        if (name == "CustomPrintSize") {
            const PPDXControl* size = editor.FindControl("*CustomPrintSize");
            unnamed = size == nullptr ? std::nullopt : paperOfText(PaneEditor::Value(*size));
        } else if (std::string_view(keyword) == "*PageSize" && data != nullptr) {
            unnamed = paperWithoutName(*data);
        }
        sheets.drawn = {control};
        sheets.paper = unnamed ? std::string() : name;
        sheets.size = unnamed ? unnamed : printerPaper(printer, name);
    }
}

// The settings outside the description's controls.
void takeOthers(JobSheets& sheets, PDEData& data) {
    sheets.isLandscape = isLandscape(data);
    if (const PMPrintSettings settings = data.Settings()) {
        constexpr int most = 8; // pages in a row or column
        const PageGrid grid = layoutGrid(settings);
        sheets.columns = std::clamp<int>(grid.columns, 1, most);
        sheets.rows = std::clamp<int>(grid.rows, 1, most);
    }
    if (const ZANWatermark* chosen = data.Watermarks().Selected()) {
        sheets.watermark = WatermarkFields::Of(*chosen);
    }
    const auto [mixedMedia, padCovers, slipSheets, coverPages] = data.SideLists();
    if (coverPages->Count() > 0) {
        sheets.before.push_back(Leaf::cover);
    }
    if (slipSheets->Count() > 0) {
        sheets.after.push_back(Leaf::slip);
    }
}

// Keeps one leaf of a kind, in the order in which they lie from the outside in.
void putInOrder(std::vector<Leaf>& leaves, bool before) {
    constexpr std::array outsideIn{Leaf::banner, Leaf::slip, Leaf::insert, Leaf::cover};
    std::vector<Leaf> ordered;
    std::ranges::copy_if(outsideIn, std::back_inserter(ordered),
                         [&](Leaf leaf) { return std::ranges::find(leaves, leaf) != leaves.end(); });
    if (!before) {
        std::ranges::reverse(ordered);
    }
    leaves = std::move(ordered);
}

} // namespace

bool JobSheets::IsTurned() const {
    const int pages = columns * rows;
    return booklet != Booklet::none || pages == 2 || pages == 6 || pages == 8;
}

SheetEdge JobSheets::TurnEdge() const {
    const bool longEdgeIsLevel = IsSheetLandscape();
    return (sides == Sides::longEdge) == longEdgeIsLevel ? SheetEdge::top : SheetEdge::left;
}

std::vector<int> JobSheets::PageNumbers(bool back) const {
    if (booklet != Booklet::none) {
        const bool bindsRight = bindingEdge == SheetEdge::right;
        // Bound at the left, the first page is the right half of a folded sheet and the left half of one to
        // be cut. The second page is on its back.
        const bool isLeft = (back == (booklet == Booklet::speed)) == bindsRight;
        const int number = back ? 2 : 1;
        const int other = booklet == Booklet::perfect ? (back ? 3 : 4) : 0;
        return isLeft ? std::vector{number, other} : std::vector{other, number};
    }
    const int count = columns * rows;
    std::vector<int> numbers(static_cast<std::size_t>(count));
    for (int cell = 0; cell < count; ++cell) {
        const int row = cell / columns;
        const bool fromRight = order == Order::leftDown || order == Order::downLeft;
        const int column = fromRight ? columns - 1 - cell % columns : cell % columns;
        const bool inRows = order == Order::rightDown || order == Order::leftDown;
        const int place = inRows ? row * columns + column : column * rows + row;
        numbers[static_cast<std::size_t>(cell)] =
            repeatsPage ? (back ? 2 : 1) : place + 1 + (back ? count : 0);
    }
    return numbers;
}

std::vector<double> JobSheets::Folds() const {
    switch (fold) {
    case Fold::none:
        return booklet == Booklet::saddle || booklet == Booklet::perfect ? std::vector{0.5}
                                                                         : std::vector<double>{};
    case Fold::half:
        return {0.5};
    case Fold::letter:
    case Fold::accordion:
        return {1.0 / 3, 2.0 / 3};
    case Fold::z:
        return {0.5, 0.75};
    case Fold::gate:
        return {0.25, 0.75};
    }
    return {};
}

std::vector<double> JobSheets::Cuts() const {
    return booklet == Booklet::speed ? std::vector{0.5} : std::vector<double>{};
}

std::vector<JobSheets::Place> JobSheets::HolePlaces() const {
    std::vector<Place> places;
    constexpr int comb = 5; // more holes than that reach over the whole edge
    const double share = holes > comb ? 0.9 : holes == 2 ? 0.27 : 0.75;
    for (int i = 0; i < holes; ++i) {
        const double along = 0.5 + (holes == 1 ? 0 : share * (i / (holes - 1.0) - 0.5));
        constexpr double inwards = 0.045;
        places.push_back(bindingEdge == SheetEdge::top     ? Place{along, inwards}
                         : bindingEdge == SheetEdge::right ? Place{1 - inwards, along}
                                                           : Place{inwards, along});
    }
    return places;
}

std::vector<JobSheets::Leaf> JobSheets::Leaves() const {
    if (before.empty() && after.empty() && !interleaves) {
        return {};
    }
    std::vector<Leaf> leaves = before;
    for (int sheet = 0; sheet < 2; ++sheet) {
        leaves.push_back(Leaf::page);
        if (interleaves) {
            leaves.push_back(Leaf::insert);
        }
    }
    leaves.insert(leaves.end(), after.begin(), after.end());
    return leaves;
}

JobSheets jobSheets(const PaneEditor& editor, PDEData* data, const PMPrinter& printer) {
    JobSheets sheets;
    takePaper(sheets, editor, data, printer);
    if (data != nullptr) {
        takeOthers(sheets, *data);
    }
    applyRules(sheets, editor);
    if (sheets.booklet != JobSheets::Booklet::none) {
        sheets.columns = 2;
        sheets.rows = 1;
    } else if (sheets.columns != sheets.rows && (sheets.columns > sheets.rows) != sheets.IsSheetLandscape()) {
        std::swap(sheets.columns, sheets.rows);
    }
    putInOrder(sheets.before, true);
    putInOrder(sheets.after, false);
    return sheets;
}

std::vector<std::string> jobSentences(const PaneTexts& texts, const JobSheets& sheets) {
    std::vector<std::string> sentences;
    const PPDXControl* unnamed =
        sheets.paper.empty() && sheets.size && !sheets.drawn.empty() ? sheets.drawn.front() : nullptr;
    for (const PPDXControl* control : sheets.drawn) {
        sentences.push_back(nameOf(*control) + ": " +
                            (control == unnamed ? shownSize(texts, *sheets.size)
                                                : shownChoice(texts, *control, PaneEditor::Value(*control))));
    }
    if (sheets.watermark) {
        sentences.push_back(texts.Say(words::watermark) + ": " + sheets.watermark->text);
    }
    return sentences;
}

} // namespace torka
