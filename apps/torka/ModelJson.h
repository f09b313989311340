// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/JsonSink.h"

// Writes a description as JSON. `torka show --json` prints this public form, and tests compare it.

namespace torka::tool {

void writeModel(JsonSink& sink, const ZANPPD& description);
// The same as a tree.
Json modelJson(const ZANPPD& description);
// Two parts of it: the header values and the errors.
Json headerJson(const ZANPPD& description);
Json errorsJson(const ZANPPD& description);
// The type's name in JSON, for example "popup".
const char* typeName(CNTL_TYPE type);

} // namespace torka::tool
