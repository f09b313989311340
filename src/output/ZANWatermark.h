// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace torka {

// Size of the slot for a stored definition in the printer's preferences, in bytes with the terminator.
inline constexpr std::size_t watermarkDefinitionSize = 1024;

// One line of text that is printed rotated across the page. A definition string of comma-separated fields
// describes it (docs/watermarks.md). Owns copies of all its data.
//
// Reads number fields as atoi does and clamps them to their range. A missing or non-numeric field is 0, a
// missing text is empty. Not thread-safe.
class ZANWatermark {
public:
    // Takes the definition in UTF-8; null is an empty one.
    explicit ZANWatermark(const char* definition);

    // True for exactly "True", false for any other text. Does not change the definition.
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
    // The definition as it was given, for saving.
    const std::string& Definition() const { return definition; }

    // Returns the text in the encoding that this language's font needs, as two upper-case hexadecimal digits
    // per byte. A character that the encoding lacks is "?". Computed at the first call only; later arguments
    // have no effect, because an object serves one description.
    const std::string& GetWMTextInHex(std::string_view language, std::string_view forFontName);

    // Returns the PostScript that draws the watermark at every showpage, for a description of this language
    // and a page orientation of kPMPortrait to kPMReverseLandscape. Only the text limits its length: the
    // caller refuses a resource that is too long for a job.
    std::string Resource(const std::string& language, std::uint16_t orientation);

    // Given interface; no caller here
    // Also keeps the wide form.
    explicit ZANWatermark(const wchar_t* definition);

    // For the tests; no caller here
    // Empty for a watermark made from narrow text.
    const std::wstring& WideDefinition() const { return wideDefinition; }

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
