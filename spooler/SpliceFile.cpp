// SPDX-License-Identifier: Apache-2.0
#include "spooler/SpliceFile.h"

#include "platform/OpenFile.h"

#include <cerrno>
#include <cstdio>
#include <optional>
#include <random>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torka {

namespace {

constexpr std::size_t readSize = std::size_t{128} * 1024; // bytes per read

SpliceOutcome failure(SpliceStatus status, const std::string& path, const char* what, int error) {
    return {status, path + ": " + what + ": " + std::generic_category().message(error), {}};
}

// Reads at least one byte. Returns 0 at the end, and nothing after an error; errno then holds the error.
std::optional<std::size_t> readSome(int descriptor, std::vector<char>& buffer) {
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno == EAGAIN) {
            pollfd ready{descriptor, POLLIN, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
}

// A file beside its later place. The destructor removes it, unless it has taken the place.
class Neighbour {
public:
    Neighbour(int opened, std::string made)
        : target(opened)
        , name(std::move(made)) {}
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;
    ~Neighbour() {
        if (!isPlaced) {
            ::unlink(name.c_str());
        }
    }
    bool TakePlace(const std::string& path) {
        isPlaced = std::rename(name.c_str(), path.c_str()) == 0;
        return isPlaced;
    }

    platform::OpenFile target;

private:
    std::string name;
    bool isPlaced = false;
};

// Creates a new file beside `path`. Returns its descriptor and name.
std::optional<std::pair<int, std::string>> createNeighbour(const std::string& path) {
    std::random_device random;
    for (int attempt = 0; attempt < 16; ++attempt) {
        std::string name = path + "." + std::to_string(random()) + ".part";
        const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            return std::pair(descriptor, std::move(name));
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return std::nullopt;
}

bool isDeviceOrPipe(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

SpliceOutcome withPath(SpliceOutcome outcome, const std::string& inputPath, const std::string& outputPath) {
    if (outcome.status != SpliceStatus::ok) {
        const bool isOutput = outcome.status == SpliceStatus::writeFailed;
        outcome.errorText = (isOutput ? outputPath : inputPath) + ": " + outcome.errorText;
    }
    return outcome;
}

} // namespace

SpliceOutcome spliceDescriptor(int source, const Ticket& ticket, int target, const SpliceProgress& progress) {
    DescriptorSink sink(target);
    Splicer splicer(ticket, sink);
    std::vector<char> buffer(readSize);
    std::uint64_t bytesRead = 0;
    SpliceStatus status = SpliceStatus::ok;
    while (status == SpliceStatus::ok) {
        const std::optional<std::size_t> count = readSome(source, buffer);
        if (!count) {
            const int error = errno;
            return {SpliceStatus::readFailed,
                    "the document cannot be read: " + std::generic_category().message(error),
                    splicer.Report()};
        }
        if (*count == 0) {
            status = splicer.Finish();
            break;
        }
        bytesRead += *count;
        status = splicer.Write({buffer.data(), *count});
        if (status == SpliceStatus::ok && progress && !progress(bytesRead)) {
            return {SpliceStatus::stopped, "stopped before the document's end", splicer.Report()};
        }
    }
    return {status, splicer.ErrorText(), splicer.Report()};
}

SpliceOutcome spliceFile(const std::string& inputPath, const Ticket& ticket, const std::string& outputPath,
                         const SpliceProgress& progress) {
    const platform::OpenFile input(::open(inputPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!input) {
        return failure(SpliceStatus::readFailed, inputPath, "cannot be opened", errno);
    }
    if (isDeviceOrPipe(outputPath)) {
        const platform::OpenFile target(::open(outputPath.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        if (!target) {
            return failure(SpliceStatus::writeFailed, outputPath, "cannot be opened", errno);
        }
        return withPath(spliceDescriptor(input.Descriptor(), ticket, target.Descriptor(), progress),
                        inputPath, outputPath);
    }
    auto created = createNeighbour(outputPath);
    if (!created) {
        return failure(SpliceStatus::writeFailed, outputPath, "no file can be made beside it", errno);
    }
    Neighbour neighbour(created->first, std::move(created->second));
    SpliceOutcome outcome =
        spliceDescriptor(input.Descriptor(), ticket, neighbour.target.Descriptor(), progress);
    if (outcome.status == SpliceStatus::ok) {
        // Closing the file may be the first call that reports a full disk.
        if (const std::error_code error = neighbour.target.Close()) {
            outcome.status = SpliceStatus::writeFailed;
            outcome.errorText = "the document cannot be written: " + error.message();
        } else if (!neighbour.TakePlace(outputPath)) {
            outcome.status = SpliceStatus::writeFailed;
            outcome.errorText =
                "the document cannot take its name: " + std::generic_category().message(errno);
        }
    }
    return withPath(std::move(outcome), inputPath, outputPath);
}

} // namespace torka
