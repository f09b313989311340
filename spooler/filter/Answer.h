// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/SpoolerCommands.h"
#include "platform/Result.h"
#include "spooler/filter/ControllerSource.h"

#include <string>
#include <string_view>

// Delivers the filter's answers to the pane: the two-way data files, the queue's PPD, and the report of a
// failed connection.

namespace torka::filter {

struct AskedBy {
    std::string queue;
    UpdateRequest request; // as it was sent
    std::string address;   // of the controller: from the request, or of the queue's device
    std::string language;  // the language of the answer, "" for the controller's own
};

// Asks the controller and writes the result. Removes the report of an earlier request with this identifier
// first. Then writes the address of the device's service where the pane looks for it, or removes it when the
// service is not found. After an answer, writes the data files of the request and of its queue under the
// queue's lock, and the PPD's records. Without an answer, writes the report of a failed connection.
// When a data file cannot be written, the queue keeps its earlier one.
Result<void> answerRequest(const AskedBy& asked, ControllerSource& source);

bool isConnectionErrorFile(std::string_view name);

} // namespace torka::filter
