#pragma once

#include "output/WatermarkFields.h"
#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"
#include "platform/Printing.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The printer's list of watermarks as a person edits it, and what the fields of one watermark admit.

namespace torka {

class PDEData;

// Choosing a watermark is a step that can be undone. The list belongs to the printer and is stored when it
// changes.
//
// Refers to the editor and the pane's data, which must outlive it.
class WatermarkEditing {
public:
    WatermarkEditing(PaneEditor& editor, PDEData& data);

    std::vector<std::string> Texts() const;
    // WatermarkList::noSelection for none.
    int Chosen() const;
    std::optional<WatermarkFields> ChosenFields() const;
    void Choose(int index);
    void SetFirstPageOnly(bool isFirstPageOnly); // of the chosen one

    // A watermark in the place of another, or a new one at the end. It becomes the chosen one.
    void Put(int index, const WatermarkFields& fields);
    // False when none is chosen.
    bool RemoveChosen();
    // Stores the list for the printer. May wait for the spooler and run the event loop.
    void Keep();

private:
    PaneEditor& editor;
    PDEData& data;
};

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
// 1 to 117 graphic ASCII characters, without the delimiters and escapes of PostScript, and without the comma
// that separates the fields of a definition.
bool isFontName(std::string_view name);

// What a screen's font has in common with a PostScript font of that name.
struct FontLook {
    enum class Kind { sans, serif, fixedPitch };
    std::string family;
    Kind kind = Kind::sans;
    bool isBold = false;
    bool isItalic = false;
};
FontLook fontLook(std::string_view fontName);

// The largest distance from the page's middle, in points, that a field must admit for a watermark that stands
// at `points` now.
double maximumOffset(std::int32_t points);

struct PaperSize {
    double width; // points
    double height;
};
// The printer's paper of that name; none when it has no such paper, or one that is no sheet.
std::optional<PaperSize> printerPaper(const PMPrinter& printer, std::string_view name);
// Whether the dialog's page setup turns the paper.
bool isLandscape(const PDEData& data);

} // namespace torka
