#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <cstdint>
#include <string>
#include <string_view>

// Command jobs: sending one, and waiting for its completion.

namespace torka {

// Path of the queue's PPD, at most 1,023 bytes. Set by the panel at its start and by isJobComple, which has
// it fetched again; read by whoever reads the PPD's records.
const std::string& destinationPPD();
void setDestinationPPD(std::string_view path);

// Waits for the command job with this title: up to 360 looks at the spooler's jobs, 100 ms apart. True when
// it completed; the queue's PPD has then been fetched again and its path is destinationPPD(). False before
// the time is over when the job was stopped (its filter failed), cancelled or aborted, or its queue is
// stopped: nothing would come of waiting.
//
// True as well for a job that was known and is listed no more while its queue is: a spooler may keep no
// history. How such a job ended is told by what it left behind.
bool isJobComple(std::string_view jobTitle, const WaitObserver& observer = {});

enum class CommandOutcome {
    completed,
    ended, // over, in a spooler that does not tell how: the record or file that the command writes does
    queueNotReady, // stopped, or takes no jobs: nothing was sent
    notSent,       // the printing system refused the job
    notCompleted,  // failed, was given up, or the wait was cancelled
};

// What is known of a command job beside its outcome.
struct CommandEnd {
    // Seconds since 1970 at which the job was over, as the spooler tells; where it does not, those at which
    // the command was sent.
    std::int64_t overAt = 0;
    std::string reason; // why it failed, as its filter said; "" when it did not
};

// Sends a command job to a queue and waits for it, by the number that its sending gave where there is one.
CommandOutcome sendCommandAndWait(const PMPrinter& printer, std::string_view text, const std::string& title,
                                  const WaitObserver& observer = {}, CommandEnd* end = nullptr);

// False for a queue that the spooler lists as stopped or as taking no jobs.
bool queueTakesCommands(std::string_view queueName);

} // namespace torka
