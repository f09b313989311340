// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobsettings/OptionSettings.h"

#include <string>

namespace torka::filter {

// Returns the choices that libcups marks in the PPD at a path for these options, as the print server's own
// filters do before they write feature code. Names may have an asterisk. Empty when the PPD cannot be opened.
ServerChoices markedChoices(const std::string& ppdPath, const OptionMap& options);

} // namespace torka::filter
