// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/posix/InstalledSystem.h"

// Where a process is put together: the one place that says which adapters the tool, the filter, the print
// dialog and the plug-in work with. What belongs to a toolkit or to one command is chosen where that lives.

namespace torka::platform {

struct AdapterOptions {
    PosixSystemOptions system = installedSystem();
    bool network = false;   // echo requests and names of hosts
    bool spooler = false;   // the print server's queues and jobs
    bool libraries = false; // libraries loaded at run time
};

// Chooses the system of this machine and what the options ask for; what they do not ask for stays as it is.
// REQUIRES: no call into an adapter is running.
void chooseAdapters(AdapterOptions options);

} // namespace torka::platform
