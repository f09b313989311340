#pragma once

#include "spooler/filter/ServerMessages.h"

#include <string>
#include <vector>

// The records that the filter keeps in its queue's PPD.

namespace torka::filter {

// What the PPD of a queue may hold of ours, in bytes of its lines. Every client fetches and reads the whole
// PPD.
inline constexpr std::size_t mostRecordBytes = std::size_t{1024} * 1024;

// Sends the records that the queue's PPD does not hold already: a PPD that stays as it is need not be read
// anew by anybody. Chunks that a longer record leaves behind its shorter successor are emptied.
//
// "" or why nothing was sent: a name or payload that no record can have, or the bound. A PPD that is beyond
// the bound takes what makes it shorter.
std::string putRecords(const std::string& queue, std::vector<NamedPayload> records);

} // namespace torka::filter
