#pragma once

#include "spooler/filter/FilterJob.h"

namespace torka::filter {

// Prints a job's document from `source` to `target`: unchanged when the job names no ticket, spliced when it
// does. A ticket that is missing, somebody else's or broken fails the job with nothing printed. The answer is
// the filter's exit status; the reason of a failure was told to the server.
int printJob(const FilterJob& job, int source, int target);

} // namespace torka::filter
