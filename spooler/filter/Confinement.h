// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

// Restricts the filter once it knows its job, because it reads data that anybody may send.

namespace torka::filter {

enum class Network {
    none,   // sockets of this machine only (AF_UNIX)
    allowed // for a request, which asks the queue's printer
};

// Removes rights from this process permanently. Forbids new privileges (no_new_privs) and core files, and
// limits processor time and memory. A list of system calls forbids new programs, new processes, every address
// family except those of `network`, changes to the system, and access to other processes. Threads stay
// possible.
//
// Returns what could not be restricted, for the log: a kernel or container without such lists still prints. A
// build with AddressSanitizer keeps its memory and its system calls, because the sanitizer needs them.
std::vector<std::string> confine(Network network);

} // namespace torka::filter
