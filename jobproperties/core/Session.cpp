// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/Session.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <utility>

namespace torka::jobproperties {

namespace {

// The window opens without live data after this many queries, which come every 100 ms.
constexpr int patience = 50;

} // namespace

bool Session::Begin() {
    const char* path = std::getenv("TORKA_JP_SCRIPT");
    if (path == nullptr || *path == '\0') {
        return true;
    }
    Script read = Script::FromFile(path);
    if (!read.error.empty()) {
        std::cerr << "Job Properties: script " << path << ": " << read.error << '\n';
        return false;
    }
    script = std::make_unique<ScriptRunner>(std::move(read), std::string(path) + ".report", server, settings);
    return !script->BeginFails();
}

bool Session::IsServerReady() {
    if (script) {
        return script->IsReady();
    }
    return !server.IsTwoWay() || ++asked > patience || server.Data() || server.Toners() || server.Trays();
}

void Session::TakeServerLocks() {
    if (const auto locked = server.LockedKeys()) {
        settings.LockKeys(locked.value, Lock::Server);
    }
}

Sessions& Sessions::All() {
    static Sessions sessions;
    return sessions;
}

Session* Sessions::Begin(const SDMCallbackSlot* table) {
    auto session = std::make_unique<Session>(table);
    const bool hasBegun = session->Begin();
    endFails = session->script && session->script->EndFails();
    if (!hasBegun) {
        return nullptr;
    }
    sessions.push_back(std::move(session));
    return sessions.back().get();
}

Session* Sessions::Find(const void* handle) const {
    const auto found = std::find_if(sessions.begin(), sessions.end(),
                                    [&](const auto& session) { return session.get() == handle; });
    return found == sessions.end() ? nullptr : found->get();
}

bool Sessions::End(const void* handle) {
    return std::erase_if(sessions, [&](const auto& session) {
               return session.get() == handle && !session->isOpen;
           }) > 0;
}

bool Sessions::EndAll() {
    std::erase_if(sessions, [](const auto& session) { return !session->isOpen; });
    return !std::exchange(endFails, false) && sessions.empty();
}

} // namespace torka::jobproperties
