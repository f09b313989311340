// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace torka::platform {

// Writes a property list as XML, byte for byte as libplist 2.2 does, without its tree of nodes. A carriage
// return is written as a reference, because an XML reader turns a literal one into a line feed.
// Returns nothing for what a list cannot hold: other types, characters that XML lacks, reals that are not
// finite, and lists beyond the limits of PlainForm.h.
std::optional<std::vector<std::uint8_t>> writeXml(const CFTypeRef& list);

} // namespace torka::platform
