#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace torka {

// A stored definition's slot in the printer's preferences, in bytes with its terminator.
inline constexpr std::size_t watermarkDefinitionSize = 1024;

// One line of text that is printed rotated across the page, as one definition string of comma-separated
// fields describes it (docs/watermarks.md). A value of its own: nothing outside is owned or read.
//
// Number fields are read as atoi reads them and held to their range; a field that is missing or no number is
// 0, a missing text is empty. Not thread-safe.
class ZANWatermark {
public:
    // The definition in UTF-8; null is an empty one.
    explicit ZANWatermark(const char* definition);
    // Keeps the wide form as well.
    explicit ZANWatermark(const wchar_t* definition);

    // True for exactly "True", false for any other text. The definition keeps what it says.
    void SetFirstPageOnly(std::string_view value) { isFirstPageOnly = value == "True"; }

    bool IsClear() const { return isClear; }
    std::int32_t XOffset() const { return xOffset; } // points from the page's centre
    std::int32_t YOffset() const { return yOffset; }
    int Red() const { return red; } // 0 to 255
    int Green() const { return green; }
    int Blue() const { return blue; }
    bool IsFirstPageOnly() const { return isFirstPageOnly; }
    std::int32_t Angle() const { return angle; }       // tenths of a degree, counter-clockwise
    std::int32_t FontSize() const { return fontSize; } // points
    const std::string& FontName() const { return fontName; }
    const std::string& Text() const { return text; } // UTF-8
    // As it was given, for saving.
    const std::string& Definition() const { return definition; }
    // Empty for a watermark that was made of narrow text.
    const std::wstring& WideDefinition() const { return wideDefinition; }

    // The text in the encoding that the font of this language needs, two uppercase hexadecimal digits a byte.
    // A character that the encoding lacks is "?". Computed at the first call and kept, whatever later calls
    // ask for: an object serves one description.
    const std::string& GetWMTextInHex(std::string_view language, std::string_view forFontName);

    // The PostScript that draws the watermark at every showpage, for a description of this language and a
    // page orientation of kPMPortrait to kPMReverseLandscape. Its length has no bound but the text's: the
    // caller refuses what is too long for a job.
    std::string Resource(const std::string& language, std::uint16_t orientation);

private:
    std::string definition;
    std::wstring wideDefinition;
    bool isClear = false;
    std::int32_t xOffset = 0;
    std::int32_t yOffset = 0;
    int red = 0;
    int green = 0;
    int blue = 0;
    bool isFirstPageOnly = false;
    std::int32_t angle = 0;
    std::int32_t fontSize = 0;
    std::string fontName;
    std::string text;
    std::string textInHex;
    bool hasTextInHex = false;
};

} // namespace torka
