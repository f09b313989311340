// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace torka::platform {

// Takes the memory of these pages from the system in one call. Otherwise the first touch of each page takes
// it, with a page fault. Measured on a virtual machine: 14 µs a page against 9 µs, of which 2 µs are the call
// and 7 µs the host's own work at the first touch. For memory that is about to be written whole.
//
// A hint that changes no content. The first touch takes what the call cannot, and everything before
// Linux 5.14.
void takePages(void* memory, std::size_t size) noexcept;

} // namespace torka::platform
