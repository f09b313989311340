// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/Wait.h"

#include "platform/System.h"

#include <cstdint>

namespace torka {

bool poll(const Polling& polling, const std::function<bool()>& done, const WaitObserver& observer,
          bool* cancelled) {
    if (cancelled) {
        *cancelled = false;
    }
    const bool isLimited = polling.checks != Polling::withoutLimit;
    const int sleeps = !isLimited ? 0 : polling.sleepAfterLast ? polling.checks : polling.checks - 1;
    for (std::int64_t check = 0; !isLimited || check < polling.checks; ++check) {
        if (done()) {
            return true;
        }
        if (isLimited && check == sleeps) {
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
