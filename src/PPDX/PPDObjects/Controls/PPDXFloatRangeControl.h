// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXNumberControl.h"

namespace torka {

using FloatRangeBounds = NumberBounds<float>;

// A decimal number. SetValue clamps to the minimum, then to the maximum; NaN becomes the minimum. The
// increment is only for the user interface.
class PPDXFloatRangeControl final : public PPDXNumberControl<float> {
public:
    PPDXFloatRangeControl(const ControlDefinition& definition, const FloatRangeBounds& rangeBounds)
        : PPDXNumberControl(CNTL_TYPE::floatRange, definition, rangeBounds) {}

    // Given interface; no caller here
    PPDXFloatRangeControl(Settings& settings, int index, const CString* prefix)
        : PPDXNumberControl(CNTL_TYPE::floatRange, settings, index, prefix) {}
};

} // namespace torka
