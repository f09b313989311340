// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/JobSettings.h"
#include "jobproperties/core/ScriptRunner.h"
#include "jobproperties/core/Server.h"

#include <memory>
#include <string>
#include <vector>

// One run of the module: the server, the settings, and any script.

namespace torka::jobproperties {

class Session {
public:
    explicit Session(const SDMCallbackSlot* table)
        : server(table, this) {}

    // Returns false when the environment names a script that is invalid or that makes the session fail.
    // Writes the reason to the standard error stream.
    bool Begin();
    bool IsServerReady();
    // Locks the settings that the server locks. Called once, when the window opens.
    void TakeServerLocks();

    Server server;
    JobSettings settings;
    std::unique_ptr<ScriptRunner> script; // null: a user edits
    bool isOpen = false;                  // the window is open; the session cannot end then

private:
    int asked = 0; // number of queries for the server's readiness
};

// The open sessions, owned by the process. Only the pane's thread uses them.
class Sessions {
public:
    static Sessions& All();

    // Returns null when the session cannot begin.
    Session* Begin(const SDMCallbackSlot* table);
    // Returns null when no open session has the handle.
    Session* Find(const void* handle) const;
    // Returns false when there is no such session, or its window is open.
    bool End(const void* handle);
    // Ends all sessions. Returns false when a window is open, or when a script makes the module's end fail.
    bool EndAll();

private:
    std::vector<std::unique_ptr<Session>> sessions;
    bool endFails = false;
};

} // namespace torka::jobproperties
