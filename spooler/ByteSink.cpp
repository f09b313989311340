// SPDX-License-Identifier: Apache-2.0
#include "spooler/ByteSink.h"

#include <cerrno>

#include <poll.h>
#include <unistd.h>

namespace torka {

int DescriptorSink::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            pollfd ready{descriptor, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace torka
