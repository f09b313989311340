// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/Wait.h"

#include <memory>

namespace torka {

// Shows a wait for the spooler, and lets the person stop it.
//
// One presenter serves the process. setWaitPresenter sets it once at start. Without one, waits show nothing.
class WaitPresenter {
public:
    WaitPresenter() = default;
    WaitPresenter(const WaitPresenter&) = delete;
    WaitPresenter& operator=(const WaitPresenter&) = delete;
    virtual ~WaitPresenter();
    // Begins a time in which waits may follow. Forgets an earlier cancel. Shows nothing yet, because most
    // waits are short.
    virtual void Begin() = 0;
    // Called about ten times a second during a wait. After the person's cancel the sleeps of platform::System
    // end at once.
    virtual void Show(const WaitProgress& progress) = 0;
    virtual void End() = 0;
};

void setWaitPresenter(std::unique_ptr<WaitPresenter> presenter);
WaitPresenter* waitPresenter(); // null for none

// A scope around code that waits for the spooler. A nested scope shows nothing of its own.
class ScopedWait {
public:
    ScopedWait();
    ScopedWait(const ScopedWait&) = delete;
    ScopedWait& operator=(const ScopedWait&) = delete;
    ~ScopedWait();
    // The observer for the waits. It forwards to the presenter, at any time.
    static WaitObserver Observer();
    // Whether the person has stopped the waits. Further waits end at once.
    static bool IsCancelled();
};

} // namespace torka
