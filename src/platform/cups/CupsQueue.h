#pragma once

#include <string>
#include <utility>
#include <vector>

// Jobs with documents, and queues of one's own making.

namespace torka::platform {

using JobOptions = std::vector<std::pair<std::string, std::string>>;

// Sends a file as a job: its number; 0 with the server's reason in `error`.
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

// Adds a queue, or changes it, and lets it take jobs. A job that fails ends there and does not stop the
// queue: the next person's job has nothing to do with it. "" or the server's reason.
std::string addQueue(const std::string& name, const std::string& deviceUri, const std::string& ppdPath);

// Why nothing can be named so as a queue, "" when it can: 1 to 127 bytes without blanks, control characters,
// "/", "\", "?", quotes and "#".
std::string queueNameProblem(const std::string& name);

} // namespace torka::platform
