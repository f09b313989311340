#pragma once

#include "jobproperties/core/JobSettings.h"
#include "jobproperties/core/ScriptRunner.h"
#include "jobproperties/core/Server.h"

#include <memory>
#include <string>
#include <vector>

// One run of the module: the server, the settings, and the script if there is one.

namespace torka::jobproperties {

class Session {
public:
    explicit Session(const SDMCallbackSlot* table)
        : server(table, this) {}

    // False when the environment names a script that cannot be obeyed or that wants the session to fail;
    // tells why on the standard error stream.
    bool Begin();
    bool IsServerReady();
    // What the server itself locks; asked once, as the window opens.
    void TakeServerLocks();

    Server server;
    JobSettings settings;
    std::unique_ptr<ScriptRunner> script; // null: a person edits
    bool isOpen = false;                  // its window is; the session cannot end then

private:
    int asked = 0; // how often whether the server is ready
};

// The sessions that have begun and not ended, owned by the process. One thread, the pane's, uses them.
class Sessions {
public:
    static Sessions& All();

    // Null when the session could not begin.
    Session* Begin(const SDMCallbackSlot* table);
    // Null when the handle is that of no session that goes on.
    Session* Find(const void* handle) const;
    // False when there is no such session, or its window is open.
    bool End(const void* handle);
    // Ends them all. False when a window is open, or a script wanted the module's end to fail.
    bool EndAll();

private:
    std::vector<std::unique_ptr<Session>> sessions;
    bool endFails = false;
};

} // namespace torka::jobproperties
