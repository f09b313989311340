// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

namespace torka {

struct CustomPageSizeBounds { // points
    float minWidth = 0;
    float maxWidth = 0;
    float minHeight = 0;
    float maxHeight = 0;
};

// A user-defined page size, in points. Always visible and always named "Custom Page Size". The bounds are for
// the user interface; setting a size does not enforce them.
class PPDXCustomPageSizeControl final : public PPDXControl {
public:
    // Ignores name and visibility of the definition. Width and height start at 0.
    PPDXCustomPageSizeControl(const ControlDefinition& definition, const CustomPageSizeBounds& bounds);
    ~PPDXCustomPageSizeControl() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    void Restore(Settings& settings, int index) override;
    // Returns "WIDTH HEIGHT", with six decimals each.
    CFStringRef CopyCurrentControlValueString() const override;
    // Reads only the width from a text without a blank.
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

    // Given interface; no caller here
    PPDXCustomPageSizeControl(Settings& settings, int index, const CString* prefix);

private:
    float width = 0;
    float height = 0;
    float minWidth;
    float maxWidth;
    float minHeight;
    float maxHeight;
};

} // namespace torka
