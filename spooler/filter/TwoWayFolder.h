// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <csignal>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

// The folder of all queues' two-way files, as the filter writes it.

namespace torka::filter {

// Defers the end of a cancelled filter while this object lives, so that it can finish what it is writing.
class TerminationLater {
public:
    TerminationLater();
    TerminationLater(const TerminationLater&) = delete;
    TerminationLater& operator=(const TerminationLater&) = delete;
    ~TerminationLater();

private:
    sigset_t before{};
};

// Holds the lock file of a queue for the lifetime of this object. Defers the end of the job meanwhile.
class QueueLock {
public:
    // Replaces a lock that a killed filter left.
    explicit QueueLock(std::string_view queue);
    QueueLock(const QueueLock&) = delete;
    QueueLock& operator=(const QueueLock&) = delete;
    ~QueueLock() { Release(); }
    // Returns why there is no lock.
    const std::error_code& Failure() const { return failure; }
    void Release();

private:
    TerminationLater termination;
    std::filesystem::path file; // made before: Release() needs no memory
    std::error_code failure;
};

// Writes one of the queue's files, whole or not at all, readable for everybody.
std::error_code writeTwoWayFile(std::string_view queue, std::string_view suffix, std::string_view content);

// Removes one of this queue's two-way files, including the data file of a single request. Returns false for
// any other name.
bool removeTwoWayFile(std::string_view queue, std::string_view name);

// Removes data files of single requests that are older than an hour, all but the newest 100 of a queue, and
// partial files that killed filters left.
void sweepTwoWayFolder();

} // namespace torka::filter
