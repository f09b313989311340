// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixSystem.h"

#include "platform/FixedPath.h"
#include "platform/TextEncoding.h"
#include "platform/posix/PrivateFolders.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <poll.h>
#include <pwd.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <uuid/uuid.h>

namespace torka::platform {

namespace {

// The variable's value; "" when it is unset, or the process has more rights than its user.
std::string environment(const char* name) {
    const char* value = secure_getenv(name);
    return value ? value : "";
}

struct User {
    std::string name;
    std::string home;
};

User currentUser() {
    std::vector<char> buffer(16 * 1024);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) {
        return {};
    }
    return {found->pw_name ? found->pw_name : "", found->pw_dir ? found->pw_dir : ""};
}

bool isFolder(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

// The locale of a category, in the order of precedence of POSIX.
std::string localeOf(const char* category) {
    for (const char* name : {"LC_ALL", category, "LANG"}) {
        std::string value = environment(name);
        if (!value.empty()) {
            return value;
        }
    }
    return {};
}

void addLanguage(std::vector<std::string>& languages, std::string_view localeName) {
    std::string tag = languageTag(localeName);
    if (!tag.empty() && std::find(languages.begin(), languages.end(), tag) == languages.end()) {
        languages.push_back(std::move(tag));
    }
}

} // namespace

PosixSystem::PosixSystem(PosixSystemOptions chosen)
    : options(std::move(chosen))
    , cancelEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (options.root.empty() && options.rootFromEnvironment) {
        const std::filesystem::path asked = environment("TORKA_SYSTEM_ROOT");
        if (asked.is_absolute()) {
            options.root = asked;
        }
    }
}

PosixSystem::~PosixSystem() {
    if (cancelEvent >= 0) {
        close(cancelEvent);
    }
    if (!privateFolder.empty()) {
        removePrivateFolder(privateFolder);
    }
}

std::filesystem::path PosixSystem::Resolve(std::string_view fixedPath) const {
    return belowRoot(options.root, fixedPath);
}

std::filesystem::path PosixSystem::TemporaryFolder() const {
    if (!options.temporaryFolder.empty()) {
        return options.temporaryFolder;
    }
    const std::filesystem::path asked = environment("TMPDIR");
    return asked.is_absolute() && isFolder(asked) ? asked : "/tmp";
}

std::filesystem::path PosixSystem::PrivateFolder() {
    if (privateFolder.empty()) {
        privateFolder = makePrivateFolder(TemporaryFolder());
    }
    return privateFolder;
}

std::filesystem::path PosixSystem::HomeFolder() const {
    const std::string asked = environment("HOME");
    if (!asked.empty()) {
        return asked;
    }
    const User user = currentUser();
    return user.home.empty() ? "/" : user.home;
}

std::filesystem::path PosixSystem::ConfigFolder() const {
    const std::filesystem::path asked = environment("XDG_CONFIG_HOME");
    return asked.is_absolute() ? asked : HomeFolder() / ".config";
}

std::string PosixSystem::UserName() const {
    if (!options.userName.empty()) {
        return options.userName;
    }
    const User user = currentUser();
    return user.name.empty() ? std::to_string(geteuid()) : user.name;
}

std::vector<std::string> PosixSystem::PreferredLanguages() const {
    if (!options.languages.empty()) {
        return options.languages;
    }
    std::vector<std::string> languages;
    const std::string messages = localeOf("LC_MESSAGES");
    // As in GNU gettext, LANGUAGE has no effect while messages are in the C locale.
    if (!languageTag(messages).empty()) {
        const std::string list = environment("LANGUAGE");
        for (std::string_view rest = list; !rest.empty();) {
            const std::size_t colon = std::min(rest.find(':'), rest.size());
            addLanguage(languages, rest.substr(0, colon));
            rest.remove_prefix(std::min(colon + 1, rest.size()));
        }
    }
    addLanguage(languages, messages);
    if (languages.empty()) {
        languages.emplace_back("en");
    }
    return languages;
}

bool PosixSystem::MeasuresInMetric() const {
    const std::string tag = languageTag(localeOf("LC_MEASUREMENT"));
    const std::string_view territory = std::string_view(tag).substr(tag.rfind('-') + 1);
    return territory != "US" && territory != "LR" && territory != "MM"; // CLDR: the three without it
}

HostApplication PosixSystem::Host() const {
    HostApplication host = options.host;
    if (host.processName.empty()) {
        std::error_code ignored;
        host.processName = std::filesystem::read_symlink("/proc/self/exe", ignored).filename().string();
    }
    return host;
}

CFStringEncoding PosixSystem::NarrowEncoding() const { return kCFStringEncodingUTF8; }

std::string PosixSystem::CreateUuidString() {
    uuid_t uuid;
    uuid_generate_random(uuid);
    std::array<char, UUID_STR_LEN> text{};
    uuid_unparse_upper(uuid, text.data());
    return text.data();
}

bool PosixSystem::Sleep(std::chrono::milliseconds duration) {
    if (options.wait) {
        return options.wait(duration);
    }
    // The limit of a year keeps the sum in range.
    const auto end = Now() + std::clamp<std::chrono::milliseconds>(duration, std::chrono::milliseconds(0),
                                                                   std::chrono::hours(24 * 365));
    // poll ignores a negative descriptor and then only waits.
    pollfd event{cancelEvent, POLLIN, 0};
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Now()).count();
        const auto step = std::clamp<std::int64_t>(left, 0, std::numeric_limits<int>::max());
        const int ready = poll(&event, 1, static_cast<int>(step));
        if (ready > 0) {
            return false;
        }
        if (left <= 0 && (ready == 0 || errno != EINTR)) {
            return true;
        }
    }
}

void PosixSystem::Cancel() {
    const std::uint64_t one = 1;
    // The write fails only when the counter is at its maximum; the descriptor is readable then as well.
    [[maybe_unused]] const ssize_t written = write(cancelEvent, &one, sizeof one);
}

void PosixSystem::ClearCancel() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(cancelEvent, &count, sizeof count);
}

} // namespace torka::platform
