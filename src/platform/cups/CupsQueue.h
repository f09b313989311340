// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

// Sends jobs with documents; lists, adds and removes queues.

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

// "" when the print server answers; else "Cannot reach the print server at ADDRESS", with the way to another
// one, or that it takes connections and never answers. Waits ten seconds for the connection and ten for the
// answer at most.
std::string serverProblem();
// "" when the print server has the queue; else why it cannot be used: no answer, no such queue, or the
// server's own reason. An empty name means the server's default queue.
std::string queueProblem(const std::string& queueName);
// The server's default queue; "" without one.
std::string defaultQueue();
// From now on libcups asks nobody for a password: a request that needs one fails.
void neverAskForPasswords();
// Whether the print server runs on this machine: it is reached through a domain socket or the loopback.
bool isServerLocal();

struct QueueState {
    std::string name;
    std::string deviceUri; // without a password
    std::string makeAndModel;
    int state = 0; // destinationState… (Spooler.h)
    bool acceptsJobs = false;
    std::string message;
    std::vector<std::string> reasons; // printer-state-reasons
};
// nullopt when the server does not answer.
std::optional<std::vector<QueueState>> listQueues();
std::optional<QueueState> queueState(const std::string& queueName);

// The printers of a class, its own before those of its classes; none for a queue that is no class. nullopt
// when the server does not tell them.
std::optional<std::vector<std::string>> printersOfClass(const std::string& queueName);
// The queue whose description the server gives, as cupsGetPPD finds it: the first printer of a class, else
// the queue itself. nullopt when the server does not tell it.
std::optional<std::string> describedQueue(const std::string& queueName);

// Why libcups, and so the print server, cannot read a description; "" when it can.
std::string descriptionProblem(const std::string& path);

// Adds or changes a queue and lets it accept jobs. A job that fails is aborted and does not stop the queue,
// so that other people's jobs still print. Returns "" or the server's reason.
std::string addQueue(const std::string& name, const std::string& deviceUri, const std::string& ppdPath);

// Removes a queue and its jobs. Returns "" or the server's reason.
std::string removeQueue(const std::string& name);

// The reason why a queue cannot have this name; "" for a valid name. A name has 1 to 127 bytes without
// blanks, control characters, "/", "\", "?", quotes and "#".
std::string queueNameProblem(const std::string& name);

} // namespace torka::platform
