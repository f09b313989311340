// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"

#include <string>
#include <string_view>

namespace torka {

class PPDXControl;

// Fails when the control does not take the value: a special option takes none, a check box True and False, a
// list its choices. `shown` stands for the value in the reason.
Result<void> checkSettingValue(const PPDXControl& control, std::string_view value, const std::string& shown);

} // namespace torka
