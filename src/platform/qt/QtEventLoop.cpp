// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtEventLoop.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

namespace torka::platform {

namespace {

int milliseconds(EventTimerInterval interval) {
    const double whole = std::ceil(std::max(interval.count(), 0.0) * 1000.0);
    return static_cast<int>(std::min(whole, static_cast<double>(std::numeric_limits<int>::max())));
}

} // namespace

class QtEventLoop::Timer final : public EventLoopTimer, public std::enable_shared_from_this<Timer> {
public:
    Timer(std::weak_ptr<Hub> owner, EventTimerInterval pause, EventLoopTimerAction what)
        : hub(std::move(owner))
        , interval(pause)
        , action(std::move(what)) {}
    ~Timer() override { Stop(); }
    void Remove() override { Stop(); }

    bool Start(EventTimerInterval delay);
    void Fire();

private:
    void Stop();

    std::weak_ptr<Hub> hub;
    EventTimerInterval interval;
    EventLoopTimerAction action;
    int identifier = 0; // 0 while not running
    bool hasFired = false;
};

// Receives the events of all timers, so that no object is destroyed within its own event.
class QtEventLoop::Hub final : public QObject {
public:
    std::unordered_map<int, Timer*> timers;

protected:
    void timerEvent(QTimerEvent* event) override {
        const auto place = timers.find(event->timerId());
        if (place != timers.end()) {
            place->second->Fire();
        }
    }
};

bool QtEventLoop::Timer::Start(EventTimerInterval delay) {
    const auto owner = hub.lock();
    identifier = owner ? owner->startTimer(milliseconds(delay), Qt::PreciseTimer) : 0;
    if (identifier != 0) {
        owner->timers.emplace(identifier, this);
    }
    return identifier != 0;
}

void QtEventLoop::Timer::Stop() {
    const auto owner = hub.lock();
    const int ended = std::exchange(identifier, 0);
    if (owner && ended != 0) {
        owner->timers.erase(ended);
        owner->killTimer(ended);
    }
}

void QtEventLoop::Timer::Fire() {
    const auto self = shared_from_this(); // the action may drop the last handle
    if (interval <= EventTimerInterval::zero()) {
        Stop();
    } else if (!std::exchange(hasFired, true)) {
        Stop();
        Start(interval);
    }
    action(self);
}

// Creates a notifier only for the events asked for: Qt allows one notifier of a type for a descriptor, so
// that two watches of a descriptor must differ in their types.
class QtEventLoop::Watcher final : public DescriptorWatch {
public:
    Watcher(QObject& hubObject, int watched, unsigned events, DescriptorAction what)
        : owner(hubObject)
        , descriptor(watched)
        , action(std::move(what)) {
        Update(events);
    }
    // A notifier's signal may destroy the watcher.
    ~Watcher() override {
        for (QSocketNotifier* notifier : {readable, writable}) {
            if (notifier != nullptr) {
                notifier->setEnabled(false);
                notifier->disconnect();
                notifier->deleteLater();
            }
        }
    }
    void Update(unsigned events) override {
        Enable(readable, QSocketNotifier::Read, descriptorReadable, events);
        Enable(writable, QSocketNotifier::Write, descriptorWritable, events);
    }

private:
    // A descriptor that hung up is readable; the read reports the failure.
    void Enable(QSocketNotifier*& notifier, QSocketNotifier::Type type, unsigned kind, unsigned events) {
        const bool wanted = (events & kind) != 0;
        if (notifier == nullptr && wanted) {
            notifier = new QSocketNotifier(descriptor, type, &owner);
            QObject::connect(notifier, &QSocketNotifier::activated, notifier, [this, kind] {
                const DescriptorAction copy = action; // the action may destroy the watcher
                copy(kind);
            });
        } else if (notifier != nullptr) {
            notifier->setEnabled(wanted);
        }
    }

    QObject& owner;
    int descriptor;
    DescriptorAction action;
    QSocketNotifier* readable = nullptr; // owned by the hub
    QSocketNotifier* writable = nullptr;
};

QtEventLoop::QtEventLoop()
    : hub(std::make_shared<Hub>()) {}

QtEventLoop::~QtEventLoop() = default;

EventLoopTimerRef QtEventLoop::Install(EventTimerInterval delay, EventTimerInterval interval,
                                       EventLoopTimerAction action) {
    const auto timer = std::make_shared<Timer>(hub, interval, std::move(action));
    return timer->Start(delay) ? timer : nullptr;
}

std::unique_ptr<DescriptorWatch> QtEventLoop::Watch(int descriptor, unsigned events,
                                                    DescriptorAction action) {
    return std::make_unique<Watcher>(*hub, descriptor, events, std::move(action));
}

} // namespace torka::platform
