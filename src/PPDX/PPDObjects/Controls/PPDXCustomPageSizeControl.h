#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

namespace torka {

struct CustomPageSizeBounds { // points
    float minWidth = 0;
    float maxWidth = 0;
    float minHeight = 0;
    float maxHeight = 0;
};

// A page size of the user's own, in points. Always visible, its name always "Custom Page Size". The bounds
// are for the user interface; setting a size does not hold it to them.
class PPDXCustomPageSizeControl final : public PPDXControl {
public:
    // Of the definition, name and visibility are not read. Width and height start at 0.
    PPDXCustomPageSizeControl(const ControlDefinition& definition, const CustomPageSizeBounds& bounds);
    PPDXCustomPageSizeControl(Settings& settings, int index, const CString* prefix);
    ~PPDXCustomPageSizeControl() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    void Restore(Settings& settings, int index) override;
    // "WIDTH HEIGHT", six decimals each.
    CFStringRef CopyCurrentControlValueString() override;
    // Without a blank only the width is read.
    void SetCurrentControlWithCFString(CFStringRef text) override;

    float MinWidth() const { return minWidth; }
    float MaxWidth() const { return maxWidth; }
    float MinHeight() const { return minHeight; }
    float MaxHeight() const { return maxHeight; }
    float GetWidth() const { return width; }
    float GetHeight() const { return height; }
    void SetWidth(float points) { width = points; }
    void SetHeight(float points) { height = points; }
    void SetMinWidth(float points) { minWidth = points; }
    void SetMinHeight(float points) { minHeight = points; }
    void SetMaxWidth(float points) { maxWidth = points; }
    void SetMaxHeight(float points) { maxHeight = points; }

private:
    float width = 0;
    float height = 0;
    float minWidth;
    float maxWidth;
    float minHeight;
    float maxHeight;
};

} // namespace torka
