// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"
#include "platform/cups/CupsQueue.h"

#include <filesystem>
#include <string>
#include <vector>

// The options that a person keeps for a queue (lpoptions(1)). Programs that use libcups add them to the jobs
// of that queue.
//
// They stand in the file .cups/lpoptions of the person's home folder; for root in the file lpoptions of the
// server's folder (CUPS_SERVERROOT, else /etc/cups), where they count for everybody. A line "Dest QUEUE" or
// "Default QUEUE" holds the options of a queue. libcups reads at most 8,191 bytes of a line and drops the
// lines of queues that its server does not know when it writes, so that the file is written here.

namespace torka::platform {

std::filesystem::path standingOptionsFile();

// Returns the options of the queue's line, without those of its instances. Empty without a file or a line.
// Fails for a file that cannot be read.
Result<JobOptions> standingOptions(const std::filesystem::path& file, const std::string& queue);

// Removes the named options from the queue's line and sets the others. Names compare without regard to the
// case of ASCII letters. Every other line stays byte for byte. Two callers take turns, and a reader finds the
// old or the new file whole. Fails, with nothing changed, when a value has a control character, the line
// would be too long, or the file cannot be read or written.
Result<void> changeStandingOptions(const std::filesystem::path& file, const std::string& queue,
                                   const std::vector<std::string>& removed, const JobOptions& added);

} // namespace torka::platform
