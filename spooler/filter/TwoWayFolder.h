#pragma once

#include <csignal>
#include <string>
#include <string_view>
#include <system_error>

// The folder of all queues' two-way files, as the filter writes it.

namespace torka::filter {

// A cancelled job ends the filter after what it is writing, while this lives.
class TerminationLater {
public:
    TerminationLater();
    TerminationLater(const TerminationLater&) = delete;
    TerminationLater& operator=(const TerminationLater&) = delete;
    ~TerminationLater();

private:
    sigset_t before{};
};

// The lock file of a queue, from its making to the end of this object. The job is not ended meanwhile.
class QueueLock {
public:
    // Takes the place of a lock that a killed filter left.
    explicit QueueLock(std::string queueName);
    QueueLock(const QueueLock&) = delete;
    QueueLock& operator=(const QueueLock&) = delete;
    ~QueueLock() { Release(); }
    // Why there is no lock.
    const std::error_code& Failure() const { return failure; }
    void Release();

private:
    TerminationLater termination;
    std::string queue;
    std::error_code failure;
};

// Writes one of the queue's files, whole or not at all, for everybody to read.
std::error_code writeTwoWayFile(std::string_view queue, std::string_view suffix, std::string_view content);

// Removes one of this queue's two-way files, the data file of a single request included; false for any other
// name.
bool removeTwoWayFile(std::string_view queue, std::string_view name);

// Removes data files of single requests that are older than an hour, all but the newest 100 of a queue, and
// parts of files that killed filters left.
void sweepTwoWayFolder();

} // namespace torka::filter
