// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/TwoWayFolder.h"

#include "bidi/commands/BidiFilePaths.h"
#include "platform/System.h"
#include "spooler/filter/PrivateFolder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <vector>

namespace torka::filter {

namespace {

using std::filesystem::file_time_type;

constexpr unsigned everybodyReads = 0644;
constexpr unsigned everybodyPasses = 0755;
constexpr std::chrono::hours oldestAnswer(1);
constexpr std::size_t maximumAnswers = 100; // per queue
constexpr std::chrono::minutes oldestPart(10);
constexpr std::string_view partPrefix = ".torka-"; // from platform::System::WriteFile

struct Answer {
    file_time_type written;
    std::filesystem::path path;
};

void removeFile(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

} // namespace

TerminationLater::TerminationLater() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, &before);
}

TerminationLater::~TerminationLater() { sigprocmask(SIG_SETMASK, &before, nullptr); }

QueueLock::QueueLock(std::string_view queue)
    : file(twoWayPlace(queue, lockFileSuffix))
    , failure(writeTwoWayFile(queue, lockFileSuffix, "")) {}

void QueueLock::Release() { removeFile(file); }

std::error_code writeTwoWayFile(std::string_view queue, std::string_view suffix, std::string_view content) {
    if (const std::error_code error = makeFolder(platform::system().Resolve(twoWayFolder), everybodyPasses)) {
        return error;
    }
    return platform::system().WriteFile(twoWayPlace(queue, suffix), content, everybodyReads);
}

bool removeTwoWayFile(std::string_view queue, std::string_view name) {
    const bool isOfQueue = name.starts_with(queue);
    const std::string_view suffix = isOfQueue ? name.substr(queue.size()) : std::string_view();
    const bool isRequestFile =
        suffix.starts_with(requestMark) && suffix.ends_with(dataFileSuffix) &&
        suffix == requestFileSuffix(suffix.substr(1, suffix.size() - 1 - dataFileSuffix.size()));
    if (!isRequestFile && suffix != dataFileSuffix && suffix != lockFileSuffix &&
        suffix != bonjourFileSuffix) {
        return false;
    }
    std::error_code error;
    return std::filesystem::remove(twoWayPlace(queue, suffix), error);
}

void sweepTwoWayFolder() {
    std::map<std::string, std::vector<Answer>> answers; // by queue
    const auto now = file_time_type::clock::now();
    const std::filesystem::path folder = platform::system().Resolve(twoWayFolder);
    for (const std::string& name : namesIn(folder)) {
        const std::filesystem::path path = folder / name;
        std::error_code unknown;
        const file_time_type written = std::filesystem::last_write_time(path, unknown);
        const std::size_t mark = name.find(requestMark);
        if (unknown) {
            continue;
        }
        if (name.starts_with(partPrefix) && now - written > oldestPart) {
            removeFile(path);
        } else if (mark != std::string::npos && name.ends_with(dataFileSuffix)) {
            answers[name.substr(0, mark)].push_back({written, path});
        }
    }
    for (auto& [queue, files] : answers) {
        std::ranges::sort(files, std::greater<>(), &Answer::written);
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (i >= maximumAnswers || now - files[i].written > oldestAnswer) {
                removeFile(files[i].path);
            }
        }
    }
}

} // namespace torka::filter
