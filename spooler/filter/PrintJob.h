// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/filter/FilterJob.h"

namespace torka::filter {

// Prints a job's document from `source` to `target`. Splices the document when the job names a ticket or its
// options name settings (OptionJob.h), else copies it unchanged. Fails the job with nothing printed when the
// ticket is missing, broken or somebody else's. Returns the filter's exit status. The server has then
// received the reason of a failure.
int printJob(const FilterJob& job, int source, int target);

} // namespace torka::filter
