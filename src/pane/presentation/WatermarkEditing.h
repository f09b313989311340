// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/WatermarkFields.h"
#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Editing of the list of watermarks of the printer, and the valid values of their fields.

namespace torka {

class PDEData;

// The choice of a watermark is a setting and can be undone. The list belongs to the printer: it is stored
// after each change and cannot be undone.
//
// Refers to the editor and the data of the pane, which must outlive it.
class WatermarkEditing {
public:
    WatermarkEditing(PaneEditor& editor, PDEData& data);

    std::vector<std::string> Texts() const;
    // WatermarkList::noSelection for none.
    int Chosen() const;
    std::optional<WatermarkFields> ChosenFields() const;
    void Choose(int index);
    void SetFirstPageOnly(bool isFirstPageOnly); // of the chosen one

    // Replaces the watermark at `index`, or adds one at the end for noSelection, and chooses it.
    void Put(int index, const WatermarkFields& fields);
    // Returns false when none is chosen.
    bool RemoveChosen();
    // Stores the list for the printer. May wait for the spooler and run the event loop.
    void Keep();

private:
    PaneEditor& editor;
    PDEData& data;
};

// What the printer's font can print of the text, and a sentence that names what it cannot; "" for all.
struct PrintedWatermark {
    std::string shown;
    std::string missing;
};
PrintedWatermark printedWatermark(const PaneTexts& texts, const WatermarkFields& fields);

WatermarkFields newWatermark(const PaneTexts& texts);

struct NamedColor {
    const PaneWord* word;
    int rgb;
};
inline constexpr std::array namedColors{
    NamedColor{&words::watermarkBlack, 0x000000},     NamedColor{&words::watermarkGray, 0x808080},
    NamedColor{&words::watermarkLightGray, 0xC8C8C8}, NamedColor{&words::watermarkRed, 0xD02020},
    NamedColor{&words::watermarkOrange, 0xFF8C00},    NamedColor{&words::watermarkGreen, 0x208040},
    NamedColor{&words::watermarkBlue, 0x2050C0},
};

// PostScript names of the fonts that every controller has. A person may name others.
inline constexpr std::array watermarkFonts{
    "Helvetica", "Helvetica-Bold", "Times-Roman", "Times-Bold", "Times-Italic", "Courier", "Courier-Bold",
};
// True for 1 to 117 graphic ASCII characters. Delimiters and escapes of PostScript are refused, and the
// comma, which separates the fields of a definition.
bool isFontName(std::string_view name);

// The properties of a PostScript font by which a similar font of the screen is chosen.
struct FontLook {
    enum class Kind { sans, serif, fixedPitch };
    std::string family;
    Kind kind = Kind::sans;
    bool isBold = false;
    bool isItalic = false;
};
FontLook fontLook(std::string_view fontName);

// The maximum distance from the middle of the page, in points, that a field must admit. `points`: the present
// distance.
double maximumOffset(std::int32_t points);

} // namespace torka
