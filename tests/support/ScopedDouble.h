// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <utility>

namespace torka::tests {

// Puts a double into a place of the process while it lives. `put` takes the ownership; at the end it gets
// null.
template <class Double, auto put>
class ScopedDouble {
public:
    ScopedDouble() {
        auto made = make();
        object = made.get();
        put(std::move(made));
    }
    ScopedDouble(const ScopedDouble&) = delete;
    ScopedDouble& operator=(const ScopedDouble&) = delete;
    ~ScopedDouble() { put(nullptr); }

    // Makes the double. A test can replace it to put a derived one.
    static inline std::unique_ptr<Double> (*make)() = [] { return std::make_unique<Double>(); };

    Double* operator->() const { return object; }
    Double& operator*() const { return *object; }

private:
    Double* object; // owned by the place
};

} // namespace torka::tests
