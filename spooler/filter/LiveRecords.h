// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cups/CupsSupplies.h"
#include "spooler/filter/ControllerSource.h"
#include "spooler/filter/QueueChoices.h"

#include <vector>

// Makes the records "TonerInfo", "TrayInfo" and "ServerInfo" from the facts of a queue and its printer. The
// facts are outside data: lists end after 1,000 entries and texts after 255 characters. A character that
// could end a field or a line of a record becomes a blank.

namespace torka::filter {

// `device` holds the printer's own facts, `queue` those of the print server. Each family of attributes comes
// from the first that has it. A record without any facts is omitted. When toner is known and trays are not,
// the trays of the description are listed, with unknown media and levels.
std::vector<ControllerRecord> liveRecords(const PrinterFacts& device, const PrinterFacts& queue,
                                          const QueueChoices& choices);

} // namespace torka::filter
