#pragma once

#include <string>
#include <vector>

// What the filter gives up once it knows its job: it reads what anybody may send.

namespace torka::filter {

enum class Network {
    none,   // sockets of this machine only (AF_UNIX)
    allowed // for a request, which asks the queue's printer
};

// Takes from this process, for good: new rights (no_new_privs), core files, time and memory without bound,
// and by a list of system calls new programs, processes, every address family but those of `network`, and
// what changes the system or looks into other processes. Threads stay possible.
//
// Tells what could not be taken, for the log: a kernel or container without such lists still prints. A build
// with AddressSanitizer keeps its memory and its calls, which the sanitizer needs.
std::vector<std::string> confine(Network network);

} // namespace torka::filter
