#include "platform/memory/MemoryEventLoop.h"

#include "platform/System.h"

#include <algorithm>
#include <utility>

namespace torka::platform {

using Clock = std::chrono::steady_clock;

class MemoryEventLoop::Timer final : public EventLoopTimer {
public:
    Timer(Clock::time_point firstTime, Clock::duration pause, EventLoopTimerAction what)
        : due(firstTime)
        , interval(pause)
        , action(std::move(what)) {}
    void Remove() override { isActive = false; }

    // The time comes before the action, so that the action may remove the timer.
    void Fire(const EventLoopTimerRef& self) {
        due += interval;
        isActive = interval > Clock::duration::zero();
        const EventLoopTimerAction copy = action;
        copy(self);
    }

    Clock::time_point due;
    Clock::duration interval;
    EventLoopTimerAction action;
    bool isActive = true;
};

class MemoryEventLoop::Watcher final : public DescriptorWatch {
public:
    Watcher(MemoryEventLoop& owner, int watched, unsigned wanted, DescriptorAction what)
        : loop(owner)
        , events(wanted)
        , action(std::move(what))
        , place(loop.watches.emplace(watched, this)) {}
    ~Watcher() override { loop.watches.erase(place); }
    void Update(unsigned wanted) override { events = wanted; }

    MemoryEventLoop& loop;
    unsigned events;
    DescriptorAction action;
    std::multimap<int, Watcher*>::iterator place;
};

EventLoopTimerRef MemoryEventLoop::Install(EventTimerInterval delay, EventTimerInterval interval,
                                           EventLoopTimerAction action) {
    const auto first = system().Now() + std::chrono::duration_cast<Clock::duration>(delay);
    auto timer = std::make_shared<Timer>(first, std::chrono::duration_cast<Clock::duration>(interval),
                                         std::move(action));
    std::erase_if(timers, [](const std::weak_ptr<Timer>& known) { return known.expired(); });
    timers.push_back(timer);
    return timer;
}

std::unique_ptr<DescriptorWatch> MemoryEventLoop::Watch(int descriptor, unsigned events,
                                                        DescriptorAction action) {
    return std::make_unique<Watcher>(*this, descriptor, events, std::move(action));
}

std::size_t MemoryEventLoop::Turn() {
    const auto now = system().Now();
    std::vector<std::shared_ptr<Timer>> due;
    for (const std::weak_ptr<Timer>& known : timers) {
        const auto timer = known.lock();
        if (timer && timer->isActive && timer->due <= now) {
            due.push_back(timer);
        }
    }
    std::stable_sort(due.begin(), due.end(),
                     [](const auto& left, const auto& right) { return left->due < right->due; });
    std::size_t fired = 0;
    for (std::shared_ptr<Timer>& timer : due) {
        // An action before may have removed it, or dropped its last handle but this one.
        if (timer->isActive && timer.use_count() > 1) {
            timer->Fire(timer);
            ++fired;
        }
        timer.reset();
    }
    return fired;
}

void MemoryEventLoop::Run(std::chrono::milliseconds duration) {
    const auto end = system().Now() + duration;
    while (true) {
        Turn();
        const auto now = system().Now();
        if (now >= end) {
            return;
        }
        auto next = end;
        for (const std::weak_ptr<Timer>& known : timers) {
            const auto timer = known.lock();
            if (timer && timer->isActive) {
                next = std::min(next, timer->due);
            }
        }
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - now);
        // A millisecond at least, lest a timer that installs itself again for at once should hold the clock.
        system().Sleep(std::max(wait, std::chrono::milliseconds(1)));
        if (system().Now() == now) {
            return; // sleeps were cancelled: the clock stands
        }
    }
}

void MemoryEventLoop::Happen(int descriptor, unsigned events) {
    std::vector<Watcher*> told;
    const auto [first, last] = watches.equal_range(descriptor);
    for (auto place = first; place != last; ++place) {
        told.push_back(place->second);
    }
    for (Watcher* watcher : told) {
        const auto [from, to] = watches.equal_range(descriptor);
        const bool lives =
            std::any_of(from, to, [watcher](const auto& entry) { return entry.second == watcher; });
        const unsigned happened = lives ? events & (watcher->events | descriptorFailed) : 0U;
        if (happened != 0) {
            const DescriptorAction action = watcher->action;
            action(happened);
        }
    }
}

std::size_t MemoryEventLoop::Installed() const {
    return static_cast<std::size_t>(
        std::count_if(timers.begin(), timers.end(), [](const std::weak_ptr<Timer>& known) {
            const auto timer = known.lock();
            return timer && timer->isActive;
        }));
}

} // namespace torka::platform
