// SPDX-License-Identifier: Apache-2.0
#include "platform/FreshMemory.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

namespace torka::platform {

void takePages(void* memory, std::size_t size) noexcept {
    static const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t before = reinterpret_cast<std::uintptr_t>(memory) % pageSize;
    ::madvise(static_cast<char*>(memory) - before, before + size, MADV_POPULATE_WRITE);
}

} // namespace torka::platform
