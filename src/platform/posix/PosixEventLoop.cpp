// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixEventLoop.h"

#include "platform/System.h"

#include <poll.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace torka::platform {

class PosixEventLoop::Watcher final : public DescriptorWatch {
public:
    Watcher(PosixEventLoop& owner, int watched, unsigned wanted, DescriptorAction what)
        : loop(owner)
        , number(owner.nextWatcher++)
        , descriptor(watched)
        , events(wanted)
        , action(std::move(what)) {
        loop.watchers.emplace(number, this);
    }
    ~Watcher() override { loop.watchers.erase(number); }
    void Update(unsigned wanted) override { events = wanted; }

    PosixEventLoop& loop;
    const std::uint64_t number;
    const int descriptor;
    unsigned events;
    DescriptorAction action;
};

namespace {

short pollEvents(unsigned events) {
    const int wanted = ((events & descriptorReadable) != 0 ? POLLIN : 0) |
                       ((events & descriptorWritable) != 0 ? POLLOUT : 0);
    return static_cast<short>(wanted);
}

unsigned descriptorEvents(short happened) {
    return ((happened & POLLIN) != 0 ? unsigned{descriptorReadable} : 0U) |
           ((happened & POLLOUT) != 0 ? unsigned{descriptorWritable} : 0U) |
           ((happened & (POLLERR | POLLHUP | POLLNVAL)) != 0 ? unsigned{descriptorFailed} : 0U);
}

} // namespace

std::unique_ptr<DescriptorWatch> PosixEventLoop::Watch(int descriptor, unsigned events,
                                                       DescriptorAction action) {
    return std::make_unique<Watcher>(*this, descriptor, events, std::move(action));
}

void PosixEventLoop::Turn(std::chrono::milliseconds longest) {
    std::vector<pollfd> polled;
    std::vector<std::uint64_t> numbers;
    for (const auto& [number, watcher] : watchers) {
        polled.push_back({watcher->descriptor, pollEvents(watcher->events), 0});
        numbers.push_back(number);
    }
    const int ready = ::poll(polled.data(), polled.size(), static_cast<int>(longest.count()));
    for (std::size_t i = 0; ready > 0 && i < polled.size() && !isStopped; ++i) {
        const auto place = watchers.find(numbers[i]);
        const unsigned happened = descriptorEvents(polled[i].revents);
        if (happened != 0 && place != watchers.end()) {
            const DescriptorAction action = place->second->action; // a copy: it may destroy the watcher
            action(happened);
        }
    }
}

void PosixEventLoop::Run(std::chrono::milliseconds duration) {
    constexpr std::chrono::milliseconds longestPoll{1000};
    isStopped = false;
    const auto end = system().Now() + duration;
    while (!isStopped && system().Now() < end) {
        const auto next = std::min(end, timers.NextDue().value_or(end));
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - system().Now());
        Turn(std::clamp(wait, std::chrono::milliseconds(0), longestPoll));
        timers.FireDue();
    }
}

} // namespace torka::platform
