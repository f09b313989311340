#pragma once

#include "apps/torka/Description.h"

// The description as JSON: the public form that `torka show --json` prints, and the canonical dump that tests
// compare.

namespace torka::tool {

Json modelJson(const ZANPPD& description);
// Parts of it: the header values and the errors.
Json headerJson(const ZANPPD& description);
Json errorsJson(const ZANPPD& description);
// "popup" and so on.
const char* typeName(CNTL_TYPE type);

} // namespace torka::tool
