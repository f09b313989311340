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

// Told now and then how many bytes of the document were read; false stops the work.
using SpliceProgress = std::function<bool(std::uint64_t bytesRead)>;

// From one open descriptor to another, in constant memory, for filters. Neither is closed. A filter ignores
// SIGPIPE, so that a reader that went away is a status and not the end of the process.
SpliceOutcome spliceDescriptor(int source, const Ticket& ticket, int target,
                               const SpliceProgress& progress = {});

// The result is written beside `outputPath` and takes that name once it is whole; on any status but ok
// nothing is left and an earlier file of that name stands. A device or a pipe under that name is written to
// directly. Both paths may be the same file.
SpliceOutcome spliceFile(const std::string& inputPath, const Ticket& ticket, const std::string& outputPath,
                         const SpliceProgress& progress = {});

} // namespace torka
