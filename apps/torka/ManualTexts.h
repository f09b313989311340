// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/CommandText.h"

#include <string_view>

// Texts of manual pages that belong to several commands.

namespace torka::tool {

// The texts of the tool itself.
CommandText generalText();

// What a job may lack; for `emit` and `print`.
extern const std::string_view leftOutDetails;

} // namespace torka::tool
