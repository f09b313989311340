// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/Splicer.h"

#include <cstdint>
#include <functional>
#include <string>

namespace torka {

struct SpliceOutcome {
    SpliceStatus status = SpliceStatus::ok;
    std::string errorText; // one line with what, where and why; "" for ok
    SpliceReport report;
};

// Gets the number of bytes read so far, at intervals. Returning false stops the work.
using SpliceProgress = std::function<bool(std::uint64_t bytesRead)>;

// Splices from one open descriptor to another in constant memory, for filters. Closes neither. The caller
// ignores SIGPIPE: a reader that has gone away then gives a status and does not end the process.
SpliceOutcome spliceDescriptor(int source, const Ticket& ticket, int target,
                               const SpliceProgress& progress = {});

// Writes the result beside `outputPath` and renames it when it is whole. On any status but ok, nothing is
// left and an earlier file of that name stays. A device or a pipe of that name is written directly. Both
// paths may name the same file.
SpliceOutcome spliceFile(const std::string& inputPath, const Ticket& ticket, const std::string& outputPath,
                         const SpliceProgress& progress = {});

} // namespace torka
