// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Interrupt.h"

#include "apps/torka/PersonsLanguage.h"
#include "platform/posix/PosixSystem.h"

#include <csignal>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace torka::tool {

namespace {

PosixSystem* waiting = nullptr;

void interrupt(int /*signal*/) {
    if (waiting != nullptr) {
        waiting->Cancel();
    }
}

} // namespace

Interruptible::Interruptible()
    : before(std::signal(SIGINT, interrupt)) {
    waiting = dynamic_cast<PosixSystem*>(&platform::system());
}

Interruptible::~Interruptible() {
    std::signal(SIGINT, before);
    waiting = nullptr;
    if (isatty(STDERR_FILENO) != 0) {
        std::fputs("\r\x1b[K", stderr);
    }
}

WaitObserver showingWait(std::string what) {
    return [text = std::move(what)](const WaitProgress& progress) {
        if (isatty(STDERR_FILENO) != 0) {
            const std::string seconds = std::to_string(progress.waited.count() / 1000);
            std::fprintf(stderr, "\r\x1b[K%s",
                         inPersonsLanguage("Waiting for " + text + ": " + seconds + " s").c_str());
        }
    };
}

} // namespace torka::tool
