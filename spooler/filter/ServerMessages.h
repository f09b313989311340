// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Sends the filter's messages to the print server on standard error.

namespace torka::filter {

// Send lines of less than 1,023 bytes for any text. People see an error as the state of the job and the
// queue. A warning stays there when the job completes, whatever its backend says. Both are cut where they are
// too long; lines for debugging then hold the whole text. An empty line precedes both.
void tellError(std::string_view text);
void tellWarning(std::string_view text);
void tellDebug(std::string_view text);
// Waits until the server has read all messages, 2 seconds at most. Call it before the filter ends with a
// failure: the server sets the job's state to "Filter failed" when it sees the end before the reason.
void waitUntilRead();

// Sends records of the queue's PPD, by name and payload. The server stores them when the job ends, even when
// the filter was killed before. The order of the messages makes an incomplete record absent. `emptied` names
// chunks that are no longer used; they go last. Returns false when a name or a payload is refused; the others
// are sent.
using NamedPayload = std::pair<std::string, std::string>;
bool sendRecords(const std::vector<NamedPayload>& records, const std::vector<std::string>& emptied = {});

// Returns the messages that sendRecords writes, each a line with its end.
bool recordMessages(const std::vector<NamedPayload>& records, std::vector<std::string>& messages,
                    const std::vector<std::string>& emptied = {});

} // namespace torka::filter
