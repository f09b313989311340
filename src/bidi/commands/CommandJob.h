// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <cstdint>
#include <string>
#include <string_view>

// Sends command jobs and waits for their completion.

namespace torka {

// Path of the queue's PPD, at most 1,023 bytes. The panel sets it at its start; isJobComple sets it after it
// has fetched the PPD again. Readers of the PPD's records use it.
const std::string& destinationPPD();
void setDestinationPPD(std::string_view path);

enum class CommandOutcome {
    completed,
    ended,         // the job is over, success unknown: check the record or file that the command writes
    queueNotReady, // the queue is stopped or rejects jobs; nothing was sent
    notSent,       // the printing system refused the job
    notCompleted,  // the job failed or did not end in time, or the wait was cancelled
};

// Details about the end of a command job.
struct CommandEnd {
    // Seconds since 1970. The time at which the job ended, according to the spooler; when the spooler does
    // not give it, the time at which the command was sent.
    std::int64_t overAt = 0;
    std::string reason; // the filter's reason for a failure; "" without a failure
};

// Sends a command job about records or the controller to the described printer and waits for it. Finds the
// job by its number when the printing system returned one, else by its title.
CommandOutcome sendCommandAndWait(const PMPrinter& sessionPrinter, std::string_view text,
                                  const std::string& title, const WaitObserver& observer = {},
                                  CommandEnd* end = nullptr);

// False for a queue that the spooler lists as stopped or as rejecting jobs.
bool queueTakesCommands(std::string_view queueName);

// Given interface; no caller here
// Waits for the command job with this title. Reads the spooler's list of jobs up to 360 times, 100 ms apart.
// True when the job completed; the queue's PPD has then been fetched again, and destinationPPD() is its path.
// False before the time is over when further waiting is useless: the job was stopped (its filter failed),
// cancelled or aborted, or its queue is stopped.
//
// Also true when a listed job disappears from the list while its queue remains, because a spooler may keep no
// history. The caller has to check the results of such a job.
bool isJobComple(std::string_view jobTitle, const WaitObserver& observer = {});

} // namespace torka
