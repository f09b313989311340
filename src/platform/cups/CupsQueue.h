#pragma once

#include <string>
#include <utility>
#include <vector>

// Sends jobs with documents and adds queues.

namespace torka::platform {

using JobOptions = std::vector<std::pair<std::string, std::string>>;

// Sends a file as a job. Returns the job's number, or 0 with the server's reason in `error`.
int submitFile(const std::string& queueName, const std::string& path, const std::string& title,
               const JobOptions& options, std::string& error);

struct JobStatus {
    int state = 0;       // as IPP numbers them: 3 pending to 9 completed; 0 when the server does not answer
    std::string message; // what the filters and the backend said last, or why there is no answer
    bool isGone =
        false; // the server answers, and lists no such job: it never was, or its history is not kept
    // Stopped, cancelled, aborted or completed: a stopped job waits for somebody who starts it again.
    bool IsOver() const { return state >= 6; }
};
JobStatus jobStatus(int job);
void cancelJob(const std::string& queueName, int job);

// Adds or changes a queue and lets it accept jobs. A job that fails is aborted and does not stop the queue,
// so that other people's jobs still print. Returns "" or the server's reason.
std::string addQueue(const std::string& name, const std::string& deviceUri, const std::string& ppdPath);

// The reason why a queue cannot have this name; "" for a valid name. A name has 1 to 127 bytes without
// blanks, control characters, "/", "\", "?", quotes and "#".
std::string queueNameProblem(const std::string& name);

} // namespace torka::platform
