#pragma once

#include "bidi/commands/SpoolerCommands.h"
#include "spooler/filter/ControllerSource.h"

#include <string>
#include <string_view>

// How the filter's answers come to the pane: the two-way data files, the queue's PPD, the report of a failed
// connection.

namespace torka::filter {

struct AskedBy {
    std::string queue;
    UpdateRequest request; // as it was sent
    std::string address;   // of the controller: the request's, or that of the queue's device
    std::string language;  // in which the controller is asked, "" for its own
};

// Asks, and writes what came of it: the data files of the request and of its queue under the queue's lock,
// and the PPD's records; or the report of a failed connection. Before, the address at which the queue's
// device was found as a service is written where the pane looks for it, or removed when it is not found any
// more. "" or one line that says what failed; the queue's data file is then the one before. A report of an
// earlier request of this identifier is removed first.
std::string answerRequest(const AskedBy& asked, ControllerSource& source);

bool isConnectionErrorFile(std::string_view name);

} // namespace torka::filter
