// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/SettingText.h"

#include "apps/common/OutsideText.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace torka::tool {

namespace {

// Closes every descriptor but standard input.
class Source {
public:
    explicit Source(const std::string& path)
        : descriptor(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    ~Source() {
        if (descriptor > STDIN_FILENO) {
            ::close(descriptor);
        }
    }
    int Descriptor() const { return descriptor; }

private:
    int descriptor;
};

using SecretText = std::vector<char, platform::WipingAllocator<char>>;

// Reads until the end, or until the buffer is full. Returns an error number.
int readAll(int descriptor, SecretText& buffer, std::size_t& length) {
    length = 0;
    while (length < buffer.size()) {
        const ssize_t count = ::read(descriptor, buffer.data() + length, buffer.size() - length);
        if (count == 0) {
            return 0;
        }
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        length += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return 0;
}

Result<SettingText> readFrom(const std::string& path) {
    const std::string place = path == "-" ? "standard input" : path;
    const Source source(path);
    SecretText buffer(maximumSettingBytes + 2); // a line feed, and one byte to notice a longer text
    std::size_t length = 0;
    const int error = source.Descriptor() < 0 ? errno : readAll(source.Descriptor(), buffer, length);
    if (error != 0) {
        return Fault{"cannot be read: " + std::generic_category().message(error), place};
    }
    if (length > 0 && buffer[length - 1] == '\n') {
        --length;
    }
    const std::string_view text(buffer.data(), length);
    if (length > maximumSettingBytes) {
        return Fault{"holds more than " + std::to_string(maximumSettingBytes) + " bytes", place};
    }
    if (text.find('\0') != std::string_view::npos || !apps::isUtf8(text)) {
        return Fault{"holds no UTF-8 text", place};
    }
    SettingText result;
    result.bytes.assign(text);
    result.isHidden = true;
    return result;
}

} // namespace

Result<SettingText> readSettingText(std::string_view given) {
    if (given.starts_with('@') && !given.starts_with("@@")) {
        return readFrom(std::string(given.substr(1)));
    }
    SettingText result;
    result.bytes = given.starts_with("@@") ? given.substr(1) : given;
    return result;
}

} // namespace torka::tool
