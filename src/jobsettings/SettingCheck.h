// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobsettings/OptionText.h"
#include "platform/Result.h"

#include <optional>
#include <string>
#include <string_view>

// What a control takes from a text that a person wrote, for the options of jobs and for the command line.

namespace torka {

class PPDXControl;
class PPDXCustomPageSizeControl;

// Fails when the control does not take the value: a special option takes none, a check box the forms of
// truthOf, a list its choices, a number a number, a custom size a size within its bounds. `shown` stands for
// the value in the reason.
Result<void> checkSettingValue(const PPDXControl& control, std::string_view value, const std::string& shown);
// Nothing for a text that is no size, and for a size outside the control's bounds.
std::optional<OptionSize> sizeFor(const PPDXCustomPageSizeControl& control, std::string_view value);
// A value that checkSettingValue lets pass, in the form that the control reads: True or False, numbers
// without "+", sizes as "WIDTH HEIGHT" in points, anything else unchanged.
std::string controlText(const PPDXControl& control, std::string_view value);
// How the number that the control holds differs from the value that was just set, because of its bounds and
// steps; "" when it does not.
std::string changedNumber(const PPDXControl& control, std::string_view value, const std::string& shown);

// Whether the text has the fields of a watermark's definition, and fits its size.
bool isWatermarkDefinition(std::string_view text);

} // namespace torka
