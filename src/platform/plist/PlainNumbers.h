// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <clocale>
#include <locale.h>

namespace torka::platform {

// libplist reads and writes reals in the thread's locale. A host application's locale may have a decimal
// comma. While an object lives, its thread has the locale "C".
class PlainNumbers {
public:
    PlainNumbers()
        : plain(newlocale(LC_ALL_MASK, "C", nullptr))
        , before(uselocale(plain)) {}
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;
    ~PlainNumbers() {
        uselocale(before);
        if (plain) {
            freelocale(plain);
        }
    }

private:
    locale_t plain;
    locale_t before;
};

} // namespace torka::platform
