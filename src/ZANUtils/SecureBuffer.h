#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

// Memory for keys and plain texts: wiped before it is given back, in a way that the compiler may not drop.
//
// SecureBuffer holds bytes of any length; growing wipes the block that is left behind. WipeGuard does the
// same for a value that lives elsewhere, on the stack or in an object.

namespace torka {

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

// Wipes the value when the scope ends. The value must outlive the guard.
template <typename T>
class WipeGuard {
public:
    explicit WipeGuard(T& guarded)
        : value(guarded) {}
    WipeGuard(const WipeGuard&) = delete;
    WipeGuard& operator=(const WipeGuard&) = delete;
    ~WipeGuard() { wipeValue(value); }

private:
    T& value;
};

template <typename T>
struct WipingAllocator {
    using value_type = T;
    WipingAllocator() = default;
    template <typename Other>
    WipingAllocator(const WipingAllocator<Other>&) {}

    T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T* memory, std::size_t count) {
        wipe(memory, count * sizeof(T));
        std::allocator<T>().deallocate(memory, count);
    }
    template <typename Other>
    bool operator==(const WipingAllocator<Other>&) const {
        return true;
    }
};

// Shrinking does not wipe the bytes cut off until the block itself goes; they stay inside this buffer's
// memory.
using SecureBuffer = std::vector<std::uint8_t, WipingAllocator<std::uint8_t>>;

} // namespace torka
