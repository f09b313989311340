#pragma once

#include <functional>

// CUPS counts a filter that SIGKILL or SIGTERM ended as one that did its work: a job whose filter the kernel ended
// for want of memory would be "completed" with half a document. So a small process watches the one that works.

namespace torka::filter {

// Runs `work` in a process of its own and gives its exit status. When a signal ended it, tells the server which
// one and gives 1, by which the job stops.
//
// The process that waits holds neither the document nor the connection to the next filter, and the one that works
// ends with it. A cancelled job ends both: the server signals the whole process group. Where no process can be
// made, `work` runs in this one.
int supervise(const std::function<int()>& work);

} // namespace torka::filter
