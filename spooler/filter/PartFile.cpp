// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/PartFile.h"

#include "bidi/commands/BidiFilePaths.h"
#include "platform/LastError.h"
#include "platform/System.h"
#include "spooler/ByteSink.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace torka::filter {

namespace {

// The sweep of the folder removes old files whose names begin so.
constexpr std::string_view leftoverPrefix = ".torka-";

std::string pathInFolder(std::string_view name) {
    return (platform::system().Resolve(cachesFolder) / name).string();
}

} // namespace

PartFile::PartFile(OpenFile opened, std::string temporaryPath)
    : file(std::move(opened))
    , temporary(std::move(temporaryPath)) {}

PartFile::~PartFile() {
    if (file && !temporary.empty()) {
        ::unlink(temporary.c_str());
    }
}

FileResult<PartFile> PartFile::Create() {
    OpenFile unnamed(::open(pathInFolder("").c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    return unnamed ? PartFile(std::move(unnamed), "") : CreateNamed();
}

FileResult<PartFile> PartFile::CreateNamed() {
    std::string path = pathInFolder(std::string(leftoverPrefix) + "XXXXXX");
    OpenFile named(::mkostemp(path.data(), O_CLOEXEC)); // mode 0600
    if (!named) {
        return platform::lastError();
    }
    return PartFile(std::move(named), std::move(path));
}

std::error_code PartFile::Append(int source) const {
    if (::lseek(source, 0, SEEK_SET) < 0) {
        return platform::lastError();
    }
    DescriptorSink sink(Descriptor());
    std::array<char, std::size_t{128} * 1024> buffer{};
    for (;;) {
        const ssize_t count = ::read(source, buffer.data(), buffer.size());
        if (count == 0) {
            return {};
        }
        if (count < 0 && errno != EINTR) {
            return platform::lastError();
        }
        const std::size_t some = count > 0 ? static_cast<std::size_t>(count) : 0;
        if (const int error = sink.Write({buffer.data(), some}); error != 0) {
            return {error, std::generic_category()};
        }
    }
}

std::error_code PartFile::TakeName(std::string_view name) {
    // fsync may be the first call that reports a full disk.
    if (::fsync(Descriptor()) != 0) {
        return platform::lastError();
    }
    if (temporary.empty()) {
        // A link replaces no file, a renaming does.
        std::string path = pathInFolder(std::string(leftoverPrefix) + "part");
        ::unlink(path.c_str()); // of a process that was killed here
        const std::string opened = "/proc/self/fd/" + std::to_string(Descriptor());
        if (::linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            FileResult<PartFile> copy = CreateNamed(); // where /proc is not there
            const std::error_code error = copy ? copy->Append(Descriptor()) : copy.Why();
            return error ? error : copy->TakeName(name);
        }
        temporary = std::move(path);
    }
    if (::rename(temporary.c_str(), pathInFolder(name).c_str()) != 0) {
        return platform::lastError();
    }
    temporary.clear();
    return {};
}

} // namespace torka::filter
