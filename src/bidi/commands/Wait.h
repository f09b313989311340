#pragma once

#include <chrono>
#include <functional>

// Waits for the spooler's side. They hold the calling thread, poll at fixed intervals, and sleep through
// platform::System, so that a person's Cancel ends a wait: it then counts as failed.

namespace torka {

enum class WaitFor { commandJob, dataFile, lockFile, idlePrinter, moduleReady };

// Where a wait stands, told before each sleep so that a person can see it.
struct WaitProgress {
    WaitFor what = WaitFor::commandJob;
    std::chrono::milliseconds waited{0};
    std::chrono::milliseconds limit{0}; // 0: waits without limit
};
using WaitObserver = std::function<void(const WaitProgress&)>;

// Calls `done` up to `checks` times (without limit: as often as it takes), `interval` apart, until it answers
// true: whether it did. With `sleepAfterLast` it also sleeps after a last check in vain. False at once when a
// sleep was cancelled; `cancelled` tells that apart.
struct Polling {
    static constexpr int withoutLimit = 0;

    WaitFor what;
    int checks;
    std::chrono::milliseconds interval;
    bool sleepAfterLast;
};
bool poll(const Polling& polling, const std::function<bool()>& done, const WaitObserver& observer,
          bool* cancelled = nullptr);

} // namespace torka
