// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>

// Waits for the spooler's side. A wait blocks the calling thread, polls at fixed intervals, and sleeps
// through platform::System, so that a person's Cancel ends it. A cancelled wait counts as failed.

namespace torka {

enum class WaitFor { commandJob, dataFile, lockFile, idlePrinter, moduleReady };

// The progress of a wait. The observer receives it before each sleep, to show it to a person.
struct WaitProgress {
    WaitFor what = WaitFor::commandJob;
    std::chrono::milliseconds waited{0};
    std::chrono::milliseconds limit{0}; // 0 for a wait without limit
};
using WaitObserver = std::function<void(const WaitProgress&)>;

// poll calls `done` up to `checks` times, `interval` apart, until it returns true. withoutLimit sets no
// maximum. With `sleepAfterLast`, poll also sleeps after the last check. Returns whether `done` returned
// true. False at once when a sleep is cancelled; `cancelled` is then true.
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
