// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/TicketReader.h"
#include "spooler/filter/FilterJob.h"

#include <optional>
#include <string>
#include <vector>

// Builds the ticket of a job that names none from the job's options. docs/options.md describes the options.

namespace torka::filter {

// What happens to a protected or masked note among the options, which are public.
enum class SecretNotes {
    refused, // a protected note stops the job; a masked one is taken
    leftOut  // another job has the ticket of this one, which prints without any, also without preset ones
};

struct OptionJob {
    Ticket ticket;
    std::vector<std::string> told; // what the sender should know about the job, one sentence each
    std::string refusal;           // why the job must not print; "" when it prints
};

// Returns nothing for a job whose options name no setting of ours, and for a queue with another description.
// Reads no description when every option is one of the print server's own, or names the page size.
std::optional<OptionJob> readOptionJob(const FilterJob& job, SecretNotes secrets);

} // namespace torka::filter
