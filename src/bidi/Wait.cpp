#include "bidi/Wait.h"

#include "platform/System.h"

namespace torka {

bool poll(const Polling& polling, const std::function<bool()>& done, const WaitObserver& observer,
          bool* cancelled) {
    if (cancelled) {
        *cancelled = false;
    }
    const int sleeps = polling.sleepAfterLast ? polling.checks : polling.checks - 1;
    for (int check = 0; check < polling.checks; ++check) {
        if (done()) {
            return true;
        }
        if (check == sleeps) {
            return false;
        }
        if (observer) {
            observer({polling.what, check * polling.interval, sleeps * polling.interval});
        }
        if (!system().Sleep(polling.interval)) {
            if (cancelled) {
                *cancelled = true;
            }
            return false;
        }
    }
    return false;
}

} // namespace torka
