// SPDX-License-Identifier: Apache-2.0
#include "File_Mac.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace torka {

namespace fs = std::filesystem;

namespace {

OSStatus statusOf(int error) {
    switch (error) {
    case 0:
        return noErr;
    case ENOENT:
    case ENOTDIR:
        return fnfErr;
    case EACCES:
    case EPERM:
    case EROFS:
        return permErr;
    default:
        return ioErr;
    }
}

// Calls `move` until all bytes are moved, and puts their number into `count`. `shortage` is the result when a
// call moves none.
template <typename Move>
OSStatus moveBytes(std::size_t wanted, long& count, OSStatus shortage, Move move) {
    while (static_cast<std::size_t>(count) < wanted) {
        const ssize_t moved = move(static_cast<std::size_t>(count));
        if (moved < 0 && errno == EINTR) {
            continue;
        }
        if (moved <= 0) {
            return moved < 0 ? ioErr : shortage;
        }
        count += moved;
    }
    return noErr;
}

} // namespace

FileMac::FileMac(const FSRef& reference)
    : file(reference)
    , isValid(!reference.path.empty()) {}

FileMac::~FileMac() = default;

bool FileMac::Fail(OSStatus error) {
    lastError = error;
    return error == noErr;
}

bool FileMac::exists() const {
    std::error_code error;
    return fs::exists(file.path, error);
}

std::string FileMac::getFileName() const { return fs::path(file.path).filename().string(); }

bool FileMac::getFileInfo(FileInfo& info) const {
    std::error_code error;
    const fs::file_status status = fs::status(file.path, error);
    if (error || !fs::exists(status)) {
        return false;
    }
    info.isFolder = fs::is_directory(status);
    info.size = fs::is_regular_file(status) ? fs::file_size(file.path, error) : 0;
    info.changed = fs::last_write_time(file.path, error);
    return !error;
}

bool FileMac::openDataFork(FilePermission permission) {
    std::error_code error;
    const fs::file_status status = fs::status(file.path, error);
    if (!valid() || !fs::exists(status)) {
        return Fail(!valid() ? paramErr : error ? statusOf(error.value()) : fnfErr);
    }
    if (!fs::is_regular_file(status)) {
        return Fail(fnOpnErr);
    }
    const int access = permission == fsRdPerm ? O_RDONLY : O_RDWR;
    dataFork.emplace(open(file.path.c_str(), access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!*dataFork) {
        const int reason = errno;
        dataFork.reset();
        return Fail(statusOf(reason));
    }
    return Fail(noErr);
}

bool FileMac::closeDataFork() {
    if (!dataFork) {
        return Fail(fnOpnErr);
    }
    const std::error_code failure = dataFork->Close();
    dataFork.reset();
    return Fail(failure ? ioErr : noErr);
}

bool FileMac::createDataFork() {
    if (!valid()) {
        return Fail(paramErr);
    }
    const platform::OpenFile made(open(file.path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    return Fail(made ? noErr : statusOf(errno));
}

std::uint64_t FileMac::dataForkSize() {
    std::error_code error;
    const std::uintmax_t size = dataFork ? fs::file_size(file.path, error) : 0;
    return error ? 0 : size;
}

OSStatus FileMac::dataForkRead(void* buffer, long& count) {
    const std::size_t wanted = count > 0 ? static_cast<std::size_t>(count) : 0;
    count = 0;
    if (!dataFork || buffer == nullptr) {
        return lastError = fnOpnErr;
    }
    return lastError = moveBytes(wanted, count, eofErr, [&](std::size_t done) {
               return ::read(dataFork->Descriptor(), static_cast<char*>(buffer) + done, wanted - done);
           });
}

OSStatus FileMac::dataForkReadWithOffset(void* buffer, long& count, std::int64_t offset) {
    if (dataFork && (offset < 0 || lseek(dataFork->Descriptor(), offset, SEEK_SET) < 0)) {
        count = 0;
        return lastError = paramErr;
    }
    return dataForkRead(buffer, count);
}

OSStatus FileMac::dataForkWrite(const void* buffer, long& count) {
    const std::size_t wanted = count > 0 ? static_cast<std::size_t>(count) : 0;
    count = 0;
    if (!dataFork || buffer == nullptr) {
        return lastError = fnOpnErr;
    }
    return lastError = moveBytes(wanted, count, ioErr, [&](std::size_t done) {
               return ::write(dataFork->Descriptor(), static_cast<const char*>(buffer) + done, wanted - done);
           });
}

bool FileMac::OpenResourceFork(FilePermission) { return Fail(resFNotFound); }

} // namespace torka
