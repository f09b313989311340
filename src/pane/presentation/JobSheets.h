// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/WatermarkFields.h"
#include "pane/presentation/JobPaper.h"
#include "pane/presentation/PaneTexts.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The sheets of the job as they leave the printer, described without a toolkit.

namespace torka {

class PDEData;
class PPDXControl;

// An edge of the front of a sheet, upright for the reader.
enum class SheetEdge { left, top, right };

struct JobSheets {
    enum class Sides { one, longEdge, shortEdge };
    enum class Fold { none, half, letter, accordion, z, gate };
    enum class Binding { none, comb, tape, ring, glue };
    // Saddle: folded sheets inside each other. Perfect: folded sheets side by side, glued at the spine.
    // Speed: sheets that are cut in their middle.
    enum class Booklet { none, saddle, perfect, speed };
    enum class Trim { none, foreEdge, threeSides };
    // The order of the pages on a sheet: in rows or in columns, from the left or from the right.
    enum class Order { rightDown, downRight, leftDown, downLeft };
    enum class Leaf { page, cover, insert, slip, banner };
    // A place on the front, in shares of its width and height from its upper left corner.
    struct Place {
        double x;
        double y;
        bool operator==(const Place&) const = default;
    };
    struct Staple {
        Place place;
        double angle; // degrees, clockwise; 0 lies level
        bool operator==(const Staple&) const = default;
    };

    std::string paper;             // the paper's name in the description; "" for a size without a name
    std::optional<PaperSize> size; // upright; none when the printer does not tell it
    bool isLandscape = false;      // the pages; the sheet may be turned against them
    int columns = 1;               // pages on a side, upright for the reader
    int rows = 1;
    Order order = Order::rightDown;
    bool hasBorders = false;
    bool repeatsPage = false;
    Booklet booklet = Booklet::none; // two pages on a side
    bool isGray = false;
    bool isMirrored = false;
    int rotation = 0; // of the pages, in degrees, clockwise
    Sides sides = Sides::one;
    SheetEdge bindingEdge = SheetEdge::left;
    Binding binding = Binding::none;
    Fold fold = Fold::none;
    Trim trim = Trim::none;
    std::vector<Staple> staples;
    int holes = 0; // along the binding edge
    std::vector<Leaf> before;
    std::vector<Leaf> after;
    bool interleaves = false; // a leaf after each sheet
    std::optional<WatermarkFields> watermark;
    std::vector<const PPDXControl*> drawn; // the settings that the picture shows, in the table's order

    bool operator==(const JobSheets&) const = default;

    // Whether the sheet lies across, for a reader of its pages.
    bool IsSheetLandscape() const { return isLandscape != IsTurned(); }
    // Two, six and eight pages, and booklets, turn the sheet against its pages.
    bool IsTurned() const;
    // The edge of the front about which the sheet is turned to its back.
    SheetEdge TurnEdge() const;
    // The numbers of the pages on a side, by cell from the upper left in rows. 0 is a page whose number
    // depends on the length of the document.
    std::vector<int> PageNumbers(bool back) const;
    // Where the sheet is folded or cut apart, in shares of its width.
    std::vector<double> Folds() const;
    std::vector<double> Cuts() const;
    // The holes as places on the front.
    std::vector<Place> HolePlaces() const;
    // The leaves in their order, with two sheets of pages; empty when only pages leave.
    std::vector<Leaf> Leaves() const;
};

// `data` and `printer` may be null. An unknown keyword or choice has no effect.
JobSheets jobSheets(const PaneEditor& editor, PDEData* data, const PMPrinter& printer);
// What the picture shows, in words: the paper, and each setting that is drawn.
std::vector<std::string> jobSentences(const PaneTexts& texts, const JobSheets& sheets);

} // namespace torka
