// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"
#include "spooler/filter/ServerMessages.h"

#include <string>
#include <vector>

// Writes the records that the filter keeps in its queue's PPD.

namespace torka::filter {

// The maximum size of our records in a queue's PPD, in bytes of their lines. Every client fetches and reads
// the whole PPD.
inline constexpr std::size_t maximumRecordBytes = std::size_t{1024} * 1024;

// Sends the records that the queue's PPD does not yet hold: clients need not read an unchanged PPD again.
// When a shorter record replaces a longer one, empties the chunks that are left over.
//
// Sends nothing and fails for a name or payload that no record can have, and beyond the maximum. A PPD beyond
// the maximum still accepts a change that makes it shorter.
Result<void> putRecords(const std::string& queue, std::vector<NamedPayload> records);

} // namespace torka::filter
