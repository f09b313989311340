// SPDX-License-Identifier: Apache-2.0
// Implements PosixSystem::ReadGuardedFile.

#include "platform/FixedPath.h"
#include "platform/LastError.h"
#include "platform/posix/PosixSystem.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <limits.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torka::platform {

namespace {

std::string ownerText(uid_t owner) {
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    const std::string number = std::to_string(owner);
    return getpwuid_r(owner, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr
               ? std::string(found->pw_name) + " (uid " + number + ")"
               : "uid " + number;
}

// Walks down a path from one open folder to the next. Checks each folder after opening it, so that nobody can
// replace it between check and use. Follows links itself and checks them too, because their owner chooses the
// target.
class GuardedWalk {
public:
    GuardedWalk(const std::filesystem::path& root, std::string_view path)
        : place(root.empty() ? "/" : root) {
        AddParts(path);
    }
    GuardedWalk(const GuardedWalk&) = delete;
    GuardedWalk& operator=(const GuardedWalk&) = delete;
    ~GuardedWalk() { Enter(-1); }

    // Returns the file, open for reading, or -1 with the failure.
    int Open(std::error_code& failure, std::string& refusal) {
        Enter(open(place.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        int file = -1;
        while (!failure && file < 0) {
            if (folder < 0) {
                failure = lastError();
            } else if (CheckFolder(failure, refusal)) {
                file = Step(failure, refusal);
            }
        }
        if (failure == std::errc::operation_not_permitted && refusal.empty()) {
            refusal = place.string() + ": " + failure.message();
        }
        return file;
    }

private:
    static constexpr int maximumLinks = 40;

    void AddParts(std::string_view path) {
        std::deque<std::string> added;
        while (!path.empty()) {
            const std::string_view part = path.substr(0, path.find('/'));
            if (!part.empty() && part != ".") {
                added.emplace_back(part);
            }
            path.remove_prefix(std::min(part.size() + 1, path.size()));
        }
        parts.insert(parts.begin(), added.begin(), added.end());
    }
    void Enter(int next) {
        if (folder >= 0) {
            close(folder);
        }
        folder = next;
    }

    bool Refuse(std::error_code& failure, std::string& refusal, const std::filesystem::path& what,
                const std::string& why) {
        failure = std::make_error_code(std::errc::operation_not_permitted);
        refusal = what.string() + ": " + why;
        return false;
    }
    bool CheckOwner(const struct stat& facts, const char* kind, const std::filesystem::path& what,
                    std::error_code& failure, std::string& refusal) {
        return facts.st_uid == 0 || facts.st_uid == geteuid() ||
               Refuse(failure, refusal, what,
                      std::string("the ") + kind + " belongs to " + ownerText(facts.st_uid) +
                          ", neither to root nor to the person who prints; make it root's (chown root)");
    }
    bool CheckFolder(std::error_code& failure, std::string& refusal) {
        struct stat facts {};
        if (fstat(folder, &facts) != 0) {
            failure = lastError();
            return false;
        }
        const bool othersMayWrite = (facts.st_mode & (S_IWGRP | S_IWOTH)) != 0;
        return CheckOwner(facts, "folder", place, failure, refusal) &&
               (!othersMayWrite || (facts.st_mode & S_ISVTX) != 0 ||
                Refuse(failure, refusal, place,
                       "others than its owner may write to the folder; take that right away (chmod go-w)"));
    }

    // Enters the next folder, follows the next link, or opens the file at the end.
    int Step(std::error_code& failure, std::string& refusal) {
        if (parts.empty()) {
            failure = std::make_error_code(std::errc::is_a_directory);
            return -1;
        }
        const std::string name = parts.front();
        parts.pop_front();
        const std::filesystem::path next = place / name;
        const int opened = openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
        struct stat facts {};
        if (opened < 0 || fstat(opened, &facts) != 0) {
            failure = lastError();
        } else if (S_ISLNK(facts.st_mode)) {
            FollowLink(opened, facts, next, failure, refusal);
        } else if (S_ISDIR(facts.st_mode)) {
            place = next;
            Enter(opened);
            return -1;
        } else if (!parts.empty()) {
            failure = std::make_error_code(std::errc::not_a_directory);
        } else {
            close(opened);
            return OpenFile(name, next, failure, refusal);
        }
        if (opened >= 0) {
            close(opened);
        }
        return -1;
    }

    void FollowLink(int link, const struct stat& facts, const std::filesystem::path& what,
                    std::error_code& failure, std::string& refusal) {
        std::array<char, PATH_MAX> target{};
        const ssize_t length = readlinkat(link, "", target.data(), target.size());
        if (!CheckOwner(facts, "link", what, failure, refusal)) {
            return;
        }
        if (length <= 0 || static_cast<std::size_t>(length) == target.size() || ++links > maximumLinks) {
            failure =
                length < 0 ? lastError() : std::make_error_code(std::errc::too_many_symbolic_link_levels);
            return;
        }
        AddParts({target.data(), static_cast<std::size_t>(length)});
        if (target.front() == '/') {
            place = "/";
            Enter(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
        }
    }

    int OpenFile(const std::string& name, const std::filesystem::path& what, std::error_code& failure,
                 std::string& refusal) {
        // O_NONBLOCK, because opening a pipe would wait for its writer.
        const int file =
            openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        struct stat facts {};
        if (file < 0 || fstat(file, &facts) != 0) {
            failure = lastError();
        } else if (!S_ISREG(facts.st_mode)) {
            failure = std::make_error_code(std::errc::invalid_argument);
        } else if (CheckOwner(facts, "file", what, failure, refusal) &&
                   (facts.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
            Refuse(failure, refusal, what,
                   "others than its owner may write to the file; take that right away (chmod 0644)");
        }
        if (failure && file >= 0) {
            close(file);
        }
        return failure ? -1 : file;
    }

    std::filesystem::path place; // path of the folder, for messages
    std::deque<std::string> parts;
    int folder = -1;
    int links = 0;
};

} // namespace

std::error_code PosixSystem::ReadGuardedFile(std::string_view fixedPath, std::size_t limit,
                                             SecretBytes& content, std::string& refusal) {
    content.clear();
    refusal.clear();
    std::error_code failure;
    GuardedWalk walk(options.root, belowRoot({}, fixedPath).native());
    const int file = walk.Open(failure, refusal);
    SecretBytes block(file < 0 ? 0 : limit + 1); // the additional byte detects a file that is too long
    std::size_t length = 0;
    while (!failure && length < block.size()) {
        const ssize_t count = read(file, block.data() + length, block.size() - length);
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            failure = lastError();
        }
        length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    if (file >= 0) {
        close(file);
    }
    if (!failure && length > limit) {
        failure = std::make_error_code(std::errc::file_too_large);
    }
    if (!failure) {
        block.resize(length);
        content = std::move(block);
    }
    return failure;
}

} // namespace torka::platform
