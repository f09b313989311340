// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

// Memory for keys, passwords and their containers: the one place that allocates, wipes and frees it.
//
// Blocks of allocateSecret lie in pages of their own, which core files omit (MADV_DONTDUMP) in every program
// that runs the code. A build with AddressSanitizer takes them from the heap, where it detects overruns. A
// short std::string lies in its object and not in such a block. Keep secrets in vectors with WipingAllocator,
// and wipe a string that held one with wipeText.

#if defined(__SANITIZE_ADDRESS__)
#define TORKA_HAS_ADDRESS_SANITIZER true
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TORKA_HAS_ADDRESS_SANITIZER true
#endif
#endif
#ifndef TORKA_HAS_ADDRESS_SANITIZER
#define TORKA_HAS_ADDRESS_SANITIZER false
#endif

namespace torka::platform {

inline constexpr bool hasAddressSanitizer = TORKA_HAS_ADDRESS_SANITIZER;

// Zeroes memory in a way that the compiler must not remove. Null is allowed.
inline void wipe(void* memory, std::size_t size) {
    if (memory != nullptr && size > 0) {
        ::explicit_bzero(memory, size);
    }
}

template <typename T>
void wipeValue(T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    wipe(&value, sizeof value);
}

// Wipes the whole capacity of a string or vector and empties it.
template <typename Text>
void wipeText(Text& text) {
    static_assert(std::is_trivially_copyable_v<typename Text::value_type>);
    text.resize(text.capacity());
    wipe(text.data(), text.size() * sizeof(typename Text::value_type));
    text.clear();
}

// Wipes the value when the scope ends. The value must outlive the guard.
template <typename T>
class WipeGuard {
public:
    explicit WipeGuard(T& guarded)
        : value(guarded) {}
    WipeGuard(const WipeGuard&) = delete;
    WipeGuard& operator=(const WipeGuard&) = delete;
    ~WipeGuard() {
        if constexpr (std::is_trivially_copyable_v<T>) {
            wipeValue(value);
        } else {
            wipeText(value);
        }
    }

private:
    T& value;
};

// Returns a block aligned for every type. Throws std::bad_alloc. Thread-safe.
void* allocateSecret(std::size_t size);
// The same with every byte zero.
void* allocateZeroedSecret(std::size_t size);
// Wipes and frees a block. REQUIRES: `size` is that of the allocation. Null is allowed.
void freeSecret(void* memory, std::size_t size) noexcept;

template <typename T>
struct WipingAllocator {
    using value_type = T;
    WipingAllocator() = default;
    template <typename Other>
    WipingAllocator(const WipingAllocator<Other>&) {}

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= alignof(std::max_align_t));
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(allocateSecret(count * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t count) noexcept { freeSecret(memory, count * sizeof(T)); }
    template <typename Other>
    bool operator==(const WipingAllocator<Other>&) const {
        return true;
    }
};

// Frees an array of such memory. makeSecretArray does not initialise the elements.
template <typename T>
struct SecretFree {
    std::size_t count = 0;
    void operator()(T* memory) const noexcept { freeSecret(memory, count * sizeof(T)); }
};
template <typename T>
using SecretArray = std::unique_ptr<T[], SecretFree<T>>;
template <typename T>
SecretArray<T> makeSecretArray(std::size_t count) {
    static_assert(std::is_trivial_v<T>);
    return SecretArray<T>(WipingAllocator<T>().allocate(count), SecretFree<T>{count});
}

using SecretBytes = std::vector<std::uint8_t, WipingAllocator<std::uint8_t>>;

// Hides this process from other processes of its user: makes it not dumpable and sets its limit for core
// files to 0. A sanitizer build stays dumpable, because the leak check traces its own process. Only our own
// programs call this; a foreign host decides for itself.
void protectProcess();

} // namespace torka::platform
