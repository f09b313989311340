// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"

#include <string>
#include <utility>
#include <vector>

// Sends jobs with documents and adds queues.

namespace torka::platform {

using JobOptions = std::vector<std::pair<std::string, std::string>>;

// Sends a file as a job. Returns the job's number, or the server's reason.
Result<int> submitFile(const std::string& queueName, const std::string& path, const std::string& title,
                       const JobOptions& options);

struct JobStatus {
    int state = 0;       // RFC 8011, 5.3.7: 3 pending to 9 completed; 0 when the server does not answer
    std::string message; // the last message of the filters and the backend, or why there is no answer
    // The server answers but lists no such job: there never was one, or the server keeps no history.
    bool isGone = false;
    // Stopped, cancelled, aborted or completed. A stopped job counts, because it waits until somebody
    // restarts it.
    bool IsOver() const { return state >= 6; }
};
JobStatus jobStatus(int job);
// Returns "" or the server's reason for not cancelling it.
std::string cancelJob(const std::string& queueName, int job);

// Adds or changes a queue and lets it accept jobs. A job that fails is aborted and does not stop the queue,
// so that other people's jobs still print. Returns "" or the server's reason.
std::string addQueue(const std::string& name, const std::string& deviceUri, const std::string& ppdPath);

// The reason why a queue cannot have this name; "" for a valid name. A name has 1 to 127 bytes without
// blanks, control characters, "/", "\", "?", quotes and "#".
std::string queueNameProblem(const std::string& name);

} // namespace torka::platform
