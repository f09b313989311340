// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/PrivateFolder.h"

#include "bidi/commands/BidiFilePaths.h"
#include "platform/LastError.h"
#include "platform/System.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace torka::filter {

namespace {

std::filesystem::path place() { return platform::system().Resolve(cachesFolder); }

// The path of a file in the folder. operator/ of libstdc++ 12 frees what it does not own when memory runs
// out.
std::string fileIn(std::string_view name) {
    std::string path = place().string();
    if (!path.ends_with('/')) {
        path += '/';
    }
    return path.append(name);
}

// Rejects a folder that others can write: they could fill it.
bool isTrustworthy(const struct stat& facts) {
    return S_ISDIR(facts.st_mode) && (facts.st_uid == ::geteuid() || facts.st_uid == 0) &&
           (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

FileResult<OpenFile> openFolder() {
    OpenFile folder(::open(place().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat facts {};
    if (!folder || ::fstat(folder.Descriptor(), &facts) != 0) {
        return platform::lastError();
    }
    if (!isTrustworthy(facts)) {
        return std::make_error_code(std::errc::permission_denied);
    }
    return folder;
}

// The folder in which a file of this name may be opened or made.
FileResult<OpenFile> openFolderFor(std::string_view name) {
    return isFileName(name) ? openFolder() : std::make_error_code(std::errc::invalid_argument);
}

FileResult<OpenFile> openOwn(std::string_view name, int access) {
    const FileResult<OpenFile> folder = openFolderFor(name);
    if (!folder) {
        return folder.Why();
    }
    OpenFile file(::openat(folder->Descriptor(), std::string(name).c_str(),
                           access | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat facts {};
    if (!file || ::fstat(file.Descriptor(), &facts) != 0) {
        return platform::lastError();
    }
    if (!S_ISREG(facts.st_mode) || facts.st_uid != ::geteuid()) {
        return std::make_error_code(std::errc::permission_denied);
    }
    return file;
}

} // namespace

std::error_code makeFolder(const std::filesystem::path& folder, unsigned mode) {
    constexpr unsigned parentMode = 0755;
    if (::mkdir(folder.c_str(), mode) != 0) {
        const std::error_code error = platform::lastError();
        if (error == std::errc::file_exists) {
            return {};
        }
        if (error != std::errc::no_such_file_or_directory || folder.parent_path() == folder) {
            return error;
        }
        if (const std::error_code failure = makeFolder(folder.parent_path(), parentMode)) {
            return failure;
        }
        if (::mkdir(folder.c_str(), mode) != 0 && errno != EEXIST) {
            return platform::lastError();
        }
    }
    ::chmod(folder.c_str(), mode); // restores the bits that the umask removed
    return {};
}

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    struct Closer {
        void operator()(DIR* open) const { ::closedir(open); }
    };
    const std::unique_ptr<DIR, Closer> listed(::opendir(folder.c_str()));
    std::vector<std::string> names;
    for (const dirent* entry = listed ? ::readdir(listed.get()) : nullptr; entry != nullptr;
         entry = ::readdir(listed.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return names;
}

std::error_code PrivateFolder::Prepare() {
    constexpr unsigned mode = 0711;
    if (const std::error_code error = makeFolder(place().parent_path(), mode)) { // without the last "/"
        return error;
    }
    const FileResult<OpenFile> folder = openFolder();
    return folder ? std::error_code() : folder.Why();
}

FileResult<OpenFile> PrivateFolder::Open(std::string_view name) { return openOwn(name, O_RDONLY); }

FileResult<OpenFile> PrivateFolder::OpenForChange(std::string_view name) {
    return openOwn(name, O_RDWR | O_APPEND);
}

FileResult<OpenFile> PrivateFolder::Create(std::string_view name, std::string_view content) {
    if (const FileResult<OpenFile> folder = openFolderFor(name); !folder) {
        return folder.Why();
    }
    const std::string target = fileIn(name);
    std::string temporary = fileIn(".torka-XXXXXX");
    // From here to the removal of this file nothing needs memory.
    OpenFile file(::mkostemp(temporary.data(), O_APPEND | O_CLOEXEC)); // mode 0600
    if (!file) {
        return platform::lastError();
    }
    std::error_code error;
    const ssize_t written = ::write(file.Descriptor(), content.data(), content.size());
    if (written >= 0 && static_cast<std::size_t>(written) != content.size()) {
        error = std::make_error_code(std::errc::no_space_on_device);
    } else if (written < 0 || ::flock(file.Descriptor(), LOCK_EX) != 0 ||
               ::link(temporary.c_str(), target.c_str()) != 0) { // never replaces another file
        error = platform::lastError();
    }
    ::unlink(temporary.c_str());
    if (error) {
        return error;
    }
    return file;
}

FileResult<OpenFile> PrivateFolder::Lock(std::string_view name) {
    if (const std::error_code error = Prepare()) {
        return error;
    }
    if (!isFileName(name)) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    OpenFile lock(::open(fileIn(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock || ::flock(lock.Descriptor(), LOCK_EX) != 0) {
        return platform::lastError();
    }
    return lock;
}

FileResult<std::string> PrivateFolder::Read(std::string_view name, std::size_t limit) {
    const FileResult<OpenFile> file = Open(name);
    if (!file) {
        return file.Why();
    }
    std::string content;
    for (;;) {
        char block[4096];
        const ssize_t count = ::read(file->Descriptor(), block, sizeof block);
        if (count == 0) {
            return content;
        }
        if (count < 0 && errno != EINTR) {
            return platform::lastError();
        }
        content.append(block, count > 0 ? static_cast<std::size_t>(count) : 0);
        if (content.size() > limit) {
            return std::make_error_code(std::errc::file_too_large);
        }
    }
}

std::error_code PrivateFolder::Write(std::string_view name, std::string_view content, unsigned mode) {
    const FileResult<OpenFile> folder = openFolderFor(name);
    return folder ? platform::system().WriteFile(fileIn(name), content, mode) : folder.Why();
}

bool PrivateFolder::Exists(std::string_view name) {
    struct stat facts {};
    return isFileName(name) && ::lstat(fileIn(name).c_str(), &facts) == 0;
}

bool PrivateFolder::Remove(std::string_view name) {
    return isFileName(name) && ::unlink(fileIn(name).c_str()) == 0;
}

std::int64_t PrivateFolder::Changed(std::string_view name) {
    struct stat facts {};
    return isFileName(name) && ::lstat(fileIn(name).c_str(), &facts) == 0 ? facts.st_mtime : 0;
}

std::vector<PrivateFolder::Entry> PrivateFolder::List() {
    std::vector<Entry> entries;
    for (const std::string& name : namesIn(place())) {
        struct stat facts {};
        if (::lstat(fileIn(name).c_str(), &facts) == 0 && S_ISREG(facts.st_mode)) {
            entries.push_back({name, static_cast<std::size_t>(facts.st_size), facts.st_mtime});
        }
    }
    return entries;
}

} // namespace torka::filter
