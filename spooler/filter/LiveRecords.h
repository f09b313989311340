#pragma once

#include "platform/cups/CupsSupplies.h"
#include "spooler/filter/ControllerSource.h"
#include "spooler/filter/QueueChoices.h"

#include <vector>

// The records "TonerInfo", "TrayInfo" and "ServerInfo" from what a queue and its printer tell. All of it is
// outside data: lists are cut at 1,000 entries and texts at 255 characters, and what could end a field or a
// line of a record becomes a blank.

namespace torka::filter {

// `device` is what the printer itself told, `queue` what the print server keeps; each family of attributes is
// taken from the first that has it. A record that nothing is known for is left out; trays alone are named by
// the description, with media and levels unknown, when toner is known.
std::vector<ControllerRecord> liveRecords(const PrinterFacts& device, const PrinterFacts& queue,
                                          const QueueChoices& choices);

} // namespace torka::filter
