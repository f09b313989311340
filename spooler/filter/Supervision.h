// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

// CUPS treats a filter that SIGKILL or SIGTERM ended as successful. A job whose filter the kernel ended for
// lack of memory would be "completed" with half a document. A small process therefore watches the process
// that works.

namespace torka::filter {

// Runs `work` in a process of its own and returns its exit status. When a signal ended that process, reports
// the signal to the server and returns 1, which stops the job.
//
// The waiting process holds neither the document nor the connection to the next filter. It passes SIGTERM on
// and ends after the working process; when it is killed, the working process gets SIGTERM. When no process
// can be made, `work` runs in this one.
int supervise(const std::function<int()>& work);

} // namespace torka::filter
