// SPDX-License-Identifier: Apache-2.0
// PosixSystem's functions for whole files.

#include "platform/LastError.h"
#include "platform/OpenFile.h"
#include "platform/posix/PosixSystem.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torka::platform {

namespace {

constexpr mode_t folderMode = 0700;

// Refuses a path with a NUL, where the system would cut it.
bool isUsablePath(const std::filesystem::path& path) {
    return !path.empty() && path.native().find('\0') == std::string::npos;
}

std::error_code writeAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(file, content.data(), content.size());
        if (written < 0 && errno != EINTR) {
            return lastError();
        }
        if (written == 0) {
            return std::make_error_code(std::errc::io_error);
        }
        content.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return {};
}

bool isDeviceOrPipe(const std::filesystem::path& path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 && !S_ISREG(facts.st_mode) && !S_ISDIR(facts.st_mode);
}

std::error_code writeInto(const std::filesystem::path& path, std::string_view content) {
    OpenFile file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) {
        return lastError();
    }
    const std::error_code failure = writeAll(file.Descriptor(), content);
    return failure ? failure : file.Close();
}

std::error_code fillFile(int opened, std::string_view content, unsigned mode) {
    OpenFile file(opened);
    if (const std::error_code failure = writeAll(file.Descriptor(), content)) {
        return failure;
    }
    if (fchmod(file.Descriptor(), static_cast<mode_t>(mode & 0777)) != 0) {
        return lastError();
    }
    return file.Close();
}

} // namespace

std::error_code PosixSystem::MakeFolder(const std::filesystem::path& path) {
    if (!isUsablePath(path)) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    std::filesystem::path folder;
    for (const std::filesystem::path& part : path) {
        folder /= part;
        if (mkdir(folder.c_str(), folderMode) != 0 && errno != EEXIST) {
            return lastError();
        }
    }
    std::error_code failure;
    return std::filesystem::is_directory(path, failure)
               ? std::error_code()
               : (failure ? failure : std::make_error_code(std::errc::not_a_directory));
}

std::error_code PosixSystem::WriteFile(const std::filesystem::path& path, std::string_view content,
                                       unsigned mode) {
    if (!isUsablePath(path) || !path.has_filename()) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    if (isDeviceOrPipe(path)) {
        return writeInto(path, content);
    }
    std::string neighbour = (path.parent_path() / ".torka-XXXXXX").string();
    const int file = mkostemp(neighbour.data(), O_CLOEXEC);
    if (file < 0) {
        return lastError();
    }
    std::error_code failure = fillFile(file, content, mode);
    if (!failure && rename(neighbour.c_str(), path.c_str()) != 0) {
        failure = lastError();
    }
    if (failure) {
        unlink(neighbour.c_str());
    }
    return failure;
}

std::error_code PosixSystem::ReadFile(const std::filesystem::path& path, std::size_t limit,
                                      std::string& content) {
    content.clear();
    if (!isUsablePath(path)) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    const OpenFile file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat facts {};
    if (!file || fstat(file.Descriptor(), &facts) != 0) {
        return lastError();
    }
    if (S_ISDIR(facts.st_mode)) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    if (!S_ISREG(facts.st_mode)) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    const auto told = static_cast<std::uintmax_t>(facts.st_size);
    if (told > limit) {
        return std::make_error_code(std::errc::file_too_large);
    }
    // Reads until the end of the file: it may grow meanwhile, and files in /proc report no size.
    std::size_t length = 0;
    std::string read(static_cast<std::size_t>(told) + 1, '\0');
    while (true) {
        if (length == read.size()) {
            read.resize(read.size() + std::max<std::size_t>(read.size(), 4096));
        }
        const ssize_t count = ::read(file.Descriptor(), read.data() + length, read.size() - length);
        if (count < 0 && errno != EINTR) {
            return lastError();
        }
        if (count == 0) {
            break;
        }
        length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        if (length > limit) {
            return std::make_error_code(std::errc::file_too_large);
        }
    }
    read.resize(length);
    content = std::move(read);
    return {};
}

} // namespace torka::platform
