// SPDX-License-Identifier: Apache-2.0
#include "platform/memory/MemoryEventLoop.h"

#include "platform/System.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace torka::platform {

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

std::unique_ptr<DescriptorWatch> MemoryEventLoop::Watch(int descriptor, unsigned events,
                                                        DescriptorAction action) {
    return std::make_unique<Watcher>(*this, descriptor, events, std::move(action));
}

void MemoryEventLoop::Run(std::chrono::milliseconds duration) {
    const auto end = system().Now() + duration;
    while (true) {
        Turn();
        const auto now = system().Now();
        if (now >= end) {
            return;
        }
        const auto next = std::min(end, timers.NextDue().value_or(end));
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - now);
        // Sleeps at least a millisecond: a timer that installs itself again without delay would stop the
        // clock.
        system().Sleep(std::max(wait, std::chrono::milliseconds(1)));
        if (system().Now() == now) {
            return; // sleeps are cancelled, and the clock does not move
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

} // namespace torka::platform
