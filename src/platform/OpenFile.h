// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LastError.h"

#include <system_error>
#include <unistd.h>

namespace torka::platform {

// An open file, folder or socket. The destructor closes it, which ends its locks.
class OpenFile {
public:
    explicit OpenFile(int opened)
        : descriptor(opened) {}
    OpenFile(OpenFile&& other) noexcept
        : descriptor(other.descriptor) {
        other.descriptor = -1;
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    OpenFile& operator=(OpenFile&&) = delete;
    ~OpenFile() {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
    explicit operator bool() const { return descriptor >= 0; }
    int Descriptor() const { return descriptor; }
    // Some file systems report a failed write only when the file is closed.
    std::error_code Close() {
        const int result = ::close(descriptor);
        descriptor = -1;
        return result == 0 ? std::error_code() : lastError();
    }

private:
    int descriptor;
};

} // namespace torka::platform
