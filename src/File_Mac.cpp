// SPDX-License-Identifier: Apache-2.0
#include "File_Mac.h"

#include <cerrno>
#include <system_error>
#include <utility>

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
    dataFork.reset(std::fopen(file.path.c_str(), permission == fsRdPerm ? "rbe" : "r+be"));
    if (!dataFork) {
        return Fail(statusOf(errno));
    }
    std::setvbuf(dataFork.get(), nullptr, _IONBF, 0); // reads are large
    return Fail(noErr);
}

bool FileMac::closeDataFork() {
    if (!dataFork) {
        return Fail(fnOpnErr);
    }
    return Fail(std::fclose(dataFork.release()) == 0 ? noErr : ioErr);
}

bool FileMac::createDataFork() {
    if (!valid()) {
        return Fail(paramErr);
    }
    const std::unique_ptr<std::FILE, Closer> made(std::fopen(file.path.c_str(), "abe"));
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
    const std::size_t got = std::fread(buffer, 1, wanted, dataFork.get());
    count = static_cast<long>(got);
    const bool isFault = std::ferror(dataFork.get()) != 0;
    std::clearerr(dataFork.get());
    return lastError = isFault ? ioErr : got < wanted ? eofErr : noErr;
}

OSStatus FileMac::dataForkReadWithOffset(void* buffer, long& count, std::int64_t offset) {
    if (dataFork && (offset < 0 || std::fseek(dataFork.get(), static_cast<long>(offset), SEEK_SET) != 0)) {
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
    count = static_cast<long>(std::fwrite(buffer, 1, wanted, dataFork.get()));
    return lastError = static_cast<std::size_t>(count) < wanted ? ioErr : noErr;
}

bool FileMac::OpenResourceFork(FilePermission) { return Fail(resFNotFound); }

} // namespace torka
