// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/StandingOptions.h"

#include "platform/OpenFile.h"
#include "platform/cups/CupsHandles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <pwd.h>
#include <sstream>
#include <strings.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace torka::platform {

namespace {

constexpr std::size_t maximumLine = 8000; // bytes; libcups reads 8,191
constexpr std::size_t maximumFile = std::size_t{4} * 1024 * 1024;
constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0644; // as lpoptions(1) leaves it: options are no secret

Fault lastFault(const std::filesystem::path& path) {
    return {std::generic_category().message(errno), path.string()};
}

// A line of the file: what stands before the options, and the options.
struct DestLine {
    std::string beginning; // "Dest NAME" or "Default NAME"
    bool isDefault = false;
    std::string options;
};

// Nothing for the line of another queue, or of an instance of this one.
std::optional<DestLine> destLine(const std::string& line, const std::string& queue) {
    std::istringstream words(line);
    std::string keyword;
    std::string name;
    words >> keyword >> name;
    const bool isDefault = ::strcasecmp(keyword.c_str(), "Default") == 0;
    if ((!isDefault && ::strcasecmp(keyword.c_str(), "Dest") != 0) ||
        ::strcasecmp(name.c_str(), queue.c_str()) != 0) {
        return std::nullopt;
    }
    std::string rest;
    std::getline(words, rest);
    // A "#" begins a comment, unless a backslash stands before it, which libcups removes.
    for (std::size_t at = rest.find('#'); at != std::string::npos; at = rest.find('#', at)) {
        if (at == 0 || rest[at - 1] != '\\') {
            rest.resize(at);
        } else {
            rest.erase(at - 1, 1);
        }
    }
    return DestLine{keyword + " " + name, isDefault, rest};
}

JobOptions parsed(const std::string& text) {
    cups_option_t* list = nullptr;
    const int count = cupsParseOptions(text.c_str(), 0, &list);
    JobOptions options;
    for (int i = 0; i < count; ++i) {
        options.emplace_back(list[i].name, list[i].value);
    }
    cupsFreeOptions(count, list);
    return options;
}

bool isPlain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.' ||
           c == '_' || c == '-';
}

std::string optionText(const std::string& name, const std::string& value) {
    if (!value.empty() && std::ranges::all_of(value, isPlain)) {
        return " " + name + "=" + value;
    }
    std::string text = " " + name + "=\"";
    for (const char c : value) {
        text += c == '"' || c == '\\' || c == '#' ? "\\" : "";
        text += c;
    }
    return text + '"';
}

// "" for a file that is not there. A part of a file is a fault: whoever writes it back loses the rest.
Result<std::string> readWhole(const std::filesystem::path& path) {
    const OpenFile file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) {
        return errno == ENOENT ? Result<std::string>(std::string()) : lastFault(path);
    }
    std::string text;
    std::array<char, 16384> piece{};
    for (ssize_t count = 1; count != 0;) {
        count = ::read(file.Descriptor(), piece.data(), piece.size());
        if (count < 0 && errno != EINTR) {
            return lastFault(path);
        }
        text.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (text.size() > maximumFile) {
            return Fault{"is larger than a file of options", path.string()};
        }
    }
    return text;
}

bool isUnwritable(const std::pair<std::string, std::string>& option) {
    return option.first.empty() || !std::ranges::all_of(option.first, isPlain) ||
           std::ranges::any_of(option.second,
                               [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; });
}

void applyChanges(JobOptions& options, const std::vector<std::string>& removed, const JobOptions& added) {
    const auto remove = [&options](const std::string& name) {
        std::erase_if(options, [&name](const auto& option) {
            return ::strcasecmp(option.first.c_str(), name.c_str()) == 0;
        });
    };
    std::ranges::for_each(removed, remove);
    for (const auto& option : added) {
        remove(option.first);
        options.push_back(option);
    }
}

std::string lineOf(const DestLine& line, const JobOptions& options) {
    std::string text = line.beginning;
    for (const auto& [name, value] : options) {
        text += optionText(name, value);
    }
    return text;
}

Result<void> replaceFile(const std::filesystem::path& file, const std::string& text) {
    std::error_code ignored;
    // A link stays one.
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(file, ignored);
    const std::filesystem::path& target = resolved.empty() ? file : resolved;
    std::string temporary = target.string() + ".XXXXXX";
    const OpenFile made(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!made) {
        return lastFault(target);
    }
    struct stat former {};
    const mode_t mode = ::stat(target.c_str(), &former) == 0 ? former.st_mode & 0777U : fileMode;
    std::size_t written = 0;
    bool isGood = true;
    while (isGood && written < text.size()) {
        const ssize_t count = ::write(made.Descriptor(), text.data() + written, text.size() - written);
        isGood = count > 0 || (count < 0 && errno == EINTR);
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    if (!isGood || ::fchmod(made.Descriptor(), mode) != 0 || ::fsync(made.Descriptor()) != 0 ||
        ::rename(temporary.c_str(), target.c_str()) != 0) {
        const Fault fault = lastFault(target);
        ::unlink(temporary.c_str());
        return fault;
    }
    return {};
}

} // namespace

std::filesystem::path standingOptionsFile() {
    if (::getuid() == 0) {
        const char* const folder = std::getenv("CUPS_SERVERROOT");
        return std::filesystem::path(folder == nullptr ? "/etc/cups" : folder) / "lpoptions";
    }
    const char* const home = std::getenv("HOME");
    if (home != nullptr && *home != '\0') {
        return std::filesystem::path(home) / ".cups/lpoptions";
    }
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
    return std::filesystem::path(found == nullptr ? "/" : found->pw_dir) / ".cups/lpoptions";
}

Result<JobOptions> standingOptions(const std::filesystem::path& file, const std::string& queue) {
    const Result<std::string> kept = readWhole(file);
    if (!kept) {
        return kept.Why();
    }
    std::istringstream lines(*kept);
    JobOptions options;
    for (std::string line; std::getline(lines, line);) {
        if (const auto dest = destLine(line, queue)) {
            applyChanges(options, {}, parsed(dest->options));
        }
    }
    return options;
}

Result<void> changeStandingOptions(const std::filesystem::path& file, const std::string& queue,
                                   const std::vector<std::string>& removed, const JobOptions& added) {
    if (const auto bad = std::ranges::find_if(added, isUnwritable); bad != added.end()) {
        return Fault{bad->first + " has a name or a value that cannot be kept: it has a control character"};
    }
    ::mkdir(file.parent_path().c_str(), folderMode);
    const OpenFile folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder || ::flock(folder.Descriptor(), LOCK_EX) != 0) {
        return lastFault(file.parent_path());
    }
    const Result<std::string> before = readWhole(file);
    if (!before) {
        return before.Why();
    }
    DestLine own{"Dest " + queue, false, {}};
    JobOptions options;
    std::vector<std::string> lines;
    std::size_t place = 0;
    bool isFound = false;
    std::istringstream text(*before);
    for (std::string line; std::getline(text, line);) {
        const auto dest = destLine(line, queue);
        if (!dest) {
            lines.push_back(line);
            continue;
        }
        place = isFound ? place : lines.size();
        isFound = true;
        own = own.isDefault ? own : *dest;
        applyChanges(options, {}, parsed(dest->options));
    }
    applyChanges(options, removed, added);
    const std::string line = lineOf(own, options);
    if (line.size() > maximumLine) {
        return Fault{"the options of a queue have " + std::to_string(maximumLine) + " bytes at most"};
    }
    if (own.isDefault || !options.empty()) {
        lines.insert(isFound ? lines.begin() + static_cast<std::ptrdiff_t>(place) : lines.end(), line);
    }
    std::string after;
    for (const std::string& each : lines) {
        after += each + "\n";
    }
    return after == *before ? Result<void>() : replaceFile(file, after);
}

} // namespace torka::platform
