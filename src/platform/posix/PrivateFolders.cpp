// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PrivateFolders.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace torka::platform {

namespace {

constexpr std::string_view prefix = "torka-";
constexpr std::size_t nameLength = prefix.size() + 6;
// A younger folder may not be locked yet, because a process locks its folder after making it.
constexpr std::time_t youngest = 60; // seconds

// The data of the signal handler. They are set once, before the handler is installed.
std::array<char, PATH_MAX> folderOfProcess{};
int lockOfProcess = -1; // the folder, open and locked

// Calls only functions that are safe in a signal handler, and needs no memory and no further descriptor. The
// folder holds only files.
void removeFiles(int folder) {
    // Offsets in an entry of getdents64(2).
    constexpr std::size_t lengthOffset = 16; // two bytes
    constexpr std::size_t nameOffset = 19;
    alignas(std::max_align_t) std::array<char, 4096> block{};
    lseek(folder, 0, SEEK_SET);
    for (;;) {
        const long count = syscall(SYS_getdents64, folder, block.data(), block.size());
        if (count <= 0) {
            return;
        }
        for (long at = 0; at < count;) {
            unsigned short length = 0;
            std::memcpy(&length, block.data() + at + lengthOffset, sizeof length);
            unlinkat(folder, block.data() + at + nameOffset, 0); // fails harmlessly for "." and ".."
            at += length;
        }
    }
}

bool isLeftOver(const std::string& path, std::string_view name, int& folder) {
    struct stat facts {};
    if (!name.starts_with(prefix) || name.size() != nameLength) {
        return false;
    }
    folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    return folder >= 0 && fstat(folder, &facts) == 0 && facts.st_uid == geteuid() &&
           (facts.st_mode & 0777) == 0700 && facts.st_mtime + youngest < std::time(nullptr) &&
           flock(folder, LOCK_EX | LOCK_NB) == 0;
}

// Not with std::filesystem: its iterators end the process when they find no memory.
void removeLeftOver(const std::filesystem::path& parent) {
    const std::unique_ptr<DIR, int (*)(DIR*)> list(opendir(parent.c_str()), closedir);
    if (!list) {
        return;
    }
    while (const dirent* entry = readdir(list.get())) {
        const std::string path = parent.native() + '/' + entry->d_name;
        int folder = -1;
        if (isLeftOver(path, entry->d_name, folder)) {
            removeFiles(folder);
            rmdir(path.c_str());
        }
        if (folder >= 0) {
            close(folder);
        }
    }
}

void removeAndEnd(int signal) {
    removeFolderOfProcess();
    std::signal(signal, SIG_DFL);
    raise(signal); // takes effect when the handler returns
}

} // namespace

std::filesystem::path makePrivateFolder(const std::filesystem::path& parent) {
    removeLeftOver(parent);
    std::string name = (parent / prefix).string() + "XXXXXX";
    if (name.size() >= folderOfProcess.size() || mkdtemp(name.data()) == nullptr) {
        return {};
    }
    const int folder = open(name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) {
        rmdir(name.c_str());
        return {};
    }
    flock(folder, LOCK_EX | LOCK_NB);
    name.copy(folderOfProcess.data(), name.size());
    folderOfProcess[name.size()] = '\0';
    lockOfProcess = folder;
    return name;
}

void removeFolderOfProcess() noexcept {
    if (lockOfProcess >= 0) {
        removeFiles(lockOfProcess);
        rmdir(folderOfProcess.data());
    }
}

void removePrivateFolder(const std::filesystem::path& folder) noexcept {
    if (lockOfProcess >= 0 && folder.native() == folderOfProcess.data()) {
        const int lock = lockOfProcess;
        removeFolderOfProcess();
        lockOfProcess = -1;
        close(lock);
        return;
    }
    try {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    } catch (const std::bad_alloc&) { // the next process of this user removes it
    }
}

void removePrivateFolderOnSignals() {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
            action = {};
            action.sa_handler = removeAndEnd;
            sigaction(signal, &action, nullptr);
        }
    }
}

} // namespace torka::platform
