#pragma once

#include "apps/torka/Command.h"

#include <string>

// Jobs of a queue, as a person at a terminal follows them.

namespace torka::tool {

// Waits until a job is over, with its state on a terminal's standard error. Interrupted, it cancels the job.
// `good` for a completed job, and for one that a server without job history lists no more, which standard
// error says; `findings`, with the reason on standard error, for any other end.
ExitStatus followJob(const std::string& queueName, int job);

} // namespace torka::tool
