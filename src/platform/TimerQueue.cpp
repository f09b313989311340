// SPDX-License-Identifier: Apache-2.0
#include "platform/TimerQueue.h"

#include "platform/System.h"

#include <algorithm>
#include <utility>

namespace torka::platform {

using Clock = std::chrono::steady_clock;

class TimerQueue::Timer final : public EventLoopTimer {
public:
    Timer(TimePoint firstTime, Clock::duration pause, EventLoopTimerAction what)
        : due(firstTime)
        , interval(pause)
        , action(std::move(what)) {}
    void Remove() override { isActive = false; }

    void Fire(const EventLoopTimerRef& self) {
        due += interval;
        isActive = interval > Clock::duration::zero();
        action(self);
    }

    TimePoint due;
    Clock::duration interval;
    EventLoopTimerAction action;
    bool isActive = true;
};

EventLoopTimerRef TimerQueue::Install(EventTimerInterval delay, EventTimerInterval interval,
                                      EventLoopTimerAction action) {
    const auto first = system().Now() + std::chrono::duration_cast<Clock::duration>(delay);
    auto timer = std::make_shared<Timer>(first, std::chrono::duration_cast<Clock::duration>(interval),
                                         std::move(action));
    std::erase_if(timers, [](const std::weak_ptr<Timer>& known) { return known.expired(); });
    timers.push_back(timer);
    return timer;
}

std::size_t TimerQueue::FireDue() {
    const auto now = system().Now();
    std::vector<std::pair<TimePoint, std::weak_ptr<Timer>>> due;
    for (const std::weak_ptr<Timer>& known : timers) {
        const auto timer = known.lock();
        if (timer && timer->isActive && timer->due <= now) {
            due.emplace_back(timer->due, known);
        }
    }
    std::stable_sort(due.begin(), due.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::size_t fired = 0;
    for (const auto& entry : due) {
        // A timer that fired earlier in this loop may have ended this one.
        const auto timer = entry.second.lock();
        if (timer && timer->isActive) {
            timer->Fire(timer);
            ++fired;
        }
    }
    return fired;
}

std::optional<TimerQueue::TimePoint> TimerQueue::NextDue() const {
    std::optional<TimePoint> next;
    for (const std::weak_ptr<Timer>& known : timers) {
        const auto timer = known.lock();
        if (timer && timer->isActive && (!next || timer->due < *next)) {
            next = timer->due;
        }
    }
    return next;
}

std::size_t TimerQueue::Installed() const {
    return static_cast<std::size_t>(
        std::count_if(timers.begin(), timers.end(), [](const std::weak_ptr<Timer>& known) {
            const auto timer = known.lock();
            return timer && timer->isActive;
        }));
}

} // namespace torka::platform
