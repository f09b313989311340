// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/ServerFiles.h"

#include "platform/System.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <pwd.h>
#include <sstream>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace torka::tool {

namespace {

namespace fs = std::filesystem;

constexpr unsigned mayRead = 4;
constexpr unsigned mayWrite = 2;
constexpr unsigned mayPass = 1; // or execute

struct User {
    uid_t id = 0;
    gid_t group = 0;
};

std::optional<User> findUser(const std::string& name) {
    const passwd* entry = ::getpwnam(name.c_str());
    return entry == nullptr ? std::nullopt : std::optional(User{entry->pw_uid, entry->pw_gid});
}

// Whether the permissions give the user everything in `wanted`.
bool gives(const struct stat& file, const User& user, unsigned wanted) {
    const unsigned mode = file.st_mode;
    const unsigned granted =
        file.st_uid == user.id ? mode >> 6U : (file.st_gid == user.group ? mode >> 3U : mode);
    return user.id == 0 || (granted & wanted) == wanted;
}

std::string failure(const fs::path& path) {
    return path.string() + ": " + std::generic_category().message(errno);
}

// The first folder above the path that the user cannot pass; "" for none.
std::string closedFolder(const fs::path& path, const User& user) {
    fs::path folder;
    for (const fs::path& part : path.parent_path()) {
        folder /= part;
        struct stat status {};
        if (::stat(folder.c_str(), &status) == 0 && !gives(status, user, mayPass)) {
            return folder.string();
        }
    }
    return {};
}

std::string octal(unsigned mode) {
    std::ostringstream text;
    text << "0" << std::oct << mode;
    return text.str();
}

} // namespace

ServerSetup serverSetup() {
    constexpr std::size_t most = 1024 * 1024;
    ServerSetup setup;
    const char* root = std::getenv("CUPS_SERVERROOT");
    std::string text;
    if (platform::system().ReadFile(fs::path(root == nullptr ? "/etc/cups" : root) / "cups-files.conf", most,
                                    text)) {
        return setup;
    }
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        std::string value;
        if (words >> name >> value && name == "ServerBin") {
            setup.programs = value;
        } else if (name == "User" && !value.empty()) {
            setup.user = value;
        }
    }
    return setup;
}

fs::path filterPath(const ServerSetup& setup) { return setup.programs / "filter" / "torkafilter"; }

std::string filterProblem(const fs::path& filter, const std::string& user) {
    struct stat status {};
    if (::stat(filter.c_str(), &status) != 0) {
        return errno == ENOENT ? filter.string() + " is not installed" : failure(filter);
    }
    constexpr unsigned othersMayWrite = 0022;
    if (!S_ISREG(status.st_mode)) {
        return filter.string() + " is no file";
    }
    if (status.st_uid != 0 || (status.st_mode & othersMayWrite) != 0) {
        return filter.string() + " can be replaced by others than root, and the print server refuses it";
    }
    const std::optional<User> runner = findUser(user);
    if (!runner) {
        return "there is no user " + user + ", as whom the print server runs filters";
    }
    if (!gives(status, *runner, mayRead | mayPass)) {
        return user + " may not run " + filter.string();
    }
    const std::string closed = closedFolder(filter, *runner);
    return closed.empty() ? "" : user + " cannot pass the folder " + closed;
}

std::string folderProblem(const FolderRule& rule, const std::string& user, std::string& remedy) {
    const fs::path path = platform::system().Resolve(rule.path);
    const std::optional<User> owner = findUser(user);
    if (!owner) {
        return "there is no user " + user + ", as whom the print server runs filters";
    }
    remedy =
        "install -d -o " + (rule.isOwned ? user : "root") + " -m " + octal(rule.mode) + " " + path.string();
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            return failure(path);
        }
        if (!rule.isOwned) {
            return {}; // optional
        }
        fs::path above = path.parent_path();
        while (::stat(above.c_str(), &status) != 0 && above.has_relative_path()) {
            above = above.parent_path();
        }
        return gives(status, *owner, mayWrite | mayPass)
                   ? ""
                   : path.string() + " is missing, and " + user + " may not make it";
    }
    if (!S_ISDIR(status.st_mode)) {
        remedy = "move the file away";
        return path.string() + " is no folder";
    }
    if (const std::string closed = closedFolder(path / "x", *owner); !closed.empty() && closed != path) {
        remedy = "chmod o+x " + closed;
        return user + " cannot pass the folder " + closed;
    }
    if (!rule.isOwned) {
        remedy = "chmod o+rx " + path.string();
        return gives(status, *owner, mayRead | mayPass) ? "" : user + " may not read " + path.string();
    }
    constexpr unsigned permissions = 0777;
    constexpr unsigned othersMayWrite = 0022;
    const unsigned mode = status.st_mode & permissions;
    remedy = "chown " + user + " " + path.string() + " && chmod " + octal(rule.mode) + " " + path.string();
    if (status.st_uid != owner->id) {
        return path.string() + " does not belong to " + user;
    }
    if ((mode & othersMayWrite) != 0) {
        return path.string() + " can be written by others (mode " + octal(mode) +
               "), and the filter refuses it";
    }
    return (mode & rule.mode) == rule.mode
               ? ""
               : path.string() + " has mode " + octal(mode) + " in place of " + octal(rule.mode);
}

} // namespace torka::tool
