#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

// Memory for keys, passwords and what holds them: the one place where it is taken, wiped and given back.
//
// Blocks of AllocateSecret lie in pages of their own that no core file shows (MADV_DONTDUMP), in whatever
// program the code runs; a build with AddressSanitizer takes them from the heap, where it sees overruns. The
// short form of a std::string lies in the object and not in a block: secrets belong into vectors with
// WipingAllocator, and a string that had one is wiped with WipeText.

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

// In a way that the compiler may not drop. Null is allowed.
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

// Wipes a string or vector with all the room that it has; it is empty afterwards.
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

// Aligned for every type. Throws std::bad_alloc. May be called from several threads.
void* allocateSecret(std::size_t size);
// Wipes the block first. `size` as it was asked for; null is allowed.
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

// An array of such memory, its elements not initialised.
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

// Keeps this process from other processes of its user and out of core files: not dumpable, no core file,
// whatever limit it was started with. A sanitizer build stays dumpable, since the leak check traces itself.
// For our own programs alone: in a foreign one it is not ours to decide.
void protectProcess();

} // namespace torka::platform
