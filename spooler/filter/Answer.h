#pragma once

#include "spooler/filter/ControllerSource.h"
#include "spooler/filter/ServerMessages.h"

#include <string>
#include <string_view>
#include <vector>

// How the filter's answers come to the pane: the two-way data file, the queue's PPD, the report of a failed
// connection.

namespace torka::filter {

// Writes the queue's data file under its lock, and the PPD's records. "" or one line that says what failed;
// the data file is then the one before.
std::string writeAnswer(const std::string& queue, const std::string& requestIdentifier,
                        const ControllerAnswer& answer);
// Writes the report for a request, and the record that the address is not good.
std::string reportUnreachable(const std::string& queue, const std::string& requestIdentifier,
                              const std::string& address);

// Sends the records that the queue's PPD does not hold already: a PPD that stays as it is need not be read
// anew by anybody. False when one is refused.
bool putRecords(const std::string& queue, std::vector<NamedPayload> records);

// Removes one of this queue's two-way files; false for any other name.
bool removeTwoWayFile(std::string_view queue, std::string_view name);
bool isConnectionErrorFile(std::string_view name);

} // namespace torka::filter
