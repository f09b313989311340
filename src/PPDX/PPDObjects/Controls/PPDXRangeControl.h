// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXNumberControl.h"

namespace torka {

using RangeBounds = NumberBounds<long>;

// A whole number. SetValue rounds toward zero to a multiple of the increment, then clamps to the minimum,
// then to the maximum.
class PPDXRangeControl final : public PPDXNumberControl<long> {
public:
    PPDXRangeControl(const ControlDefinition& definition, const RangeBounds& rangeBounds)
        : PPDXNumberControl(CNTL_TYPE::range, definition, rangeBounds) {}

    // Given interface; no caller here
    PPDXRangeControl(Settings& settings, int index, const CString* prefix)
        : PPDXNumberControl(CNTL_TYPE::range, settings, index, prefix) {}
};

} // namespace torka
