#pragma once

#include "bidi/commands/Wait.h"

#include <memory>

namespace torka {

// Shows a person that the spooler is waited for, and lets them stop the wait.
//
// One presenter serves the process; it is chosen once at start with setWaitPresenter. Without one waits are
// silent.
class WaitPresenter {
public:
    WaitPresenter() = default;
    WaitPresenter(const WaitPresenter&) = delete;
    WaitPresenter& operator=(const WaitPresenter&) = delete;
    virtual ~WaitPresenter();
    // Waits may follow; a cancel of earlier ones is forgotten. Shows nothing yet: most waits are short.
    virtual void Begin() = 0;
    // Called about ten times a second while a wait lasts. The person's cancel ends the sleeps of
    // platform::System from then on.
    virtual void Show(const WaitProgress& progress) = 0;
    virtual void End() = 0;
};

void setWaitPresenter(std::unique_ptr<WaitPresenter> presenter);
WaitPresenter* waitPresenter(); // null: none was chosen

// Lies around whatever waits for the spooler. Those inside others show nothing of their own.
class ScopedWait {
public:
    ScopedWait();
    ScopedWait(const ScopedWait&) = delete;
    ScopedWait& operator=(const ScopedWait&) = delete;
    ~ScopedWait();
    // For the waits; it forwards to the presenter, at any time.
    static WaitObserver Observer();
    // The person has stopped the waits: the next one would end at once.
    static bool IsCancelled();
};

} // namespace torka
