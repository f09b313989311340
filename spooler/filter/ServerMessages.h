#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What the filter tells the print server on its standard error stream.

namespace torka::filter {

// One line each, whatever the text holds. An error is what people see as the state of the job and the queue.
void tellError(std::string_view text);
void tellDebug(std::string_view text);
// Waits until the server has read what it was told, 2 seconds at most. Before a filter ends with a failure:
// the server calls the job's state "Filter failed" when it sees the end before the reason.
void waitUntilRead();

// Records of the queue's PPD, by name and payload. The server puts them there when the job ends, also when
// the filter was killed half-way: the messages go in an order in which a record that did not come whole is
// absent. `emptied` are chunks of no use any more, told last. False when a name or a payload is refused; the
// others are sent.
using NamedPayload = std::pair<std::string, std::string>;
bool sendRecords(const std::vector<NamedPayload>& records, const std::vector<std::string>& emptied = {});

// The messages that sendRecords writes, each a line with its end.
bool recordMessages(const std::vector<NamedPayload>& records, std::vector<std::string>& messages,
                    const std::vector<std::string>& emptied = {});

} // namespace torka::filter
