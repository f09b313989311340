// SPDX-License-Identifier: Apache-2.0
#include "platform/SecretMemory.h"

#include "platform/FreshMemory.h"

#include <cstring>
#include <memory_resource>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace torka::platform {

namespace {

// Allocates whole pages that core files omit.
class HiddenPages final : public std::pmr::memory_resource {
    void* do_allocate(std::size_t size, std::size_t /*alignment*/) override {
        void* pages = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED) {
            throw std::bad_alloc();
        }
        ::madvise(pages, size, MADV_DONTDUMP);
        return pages;
    }
    // The blocks in the pages were wiped when they were freed.
    void do_deallocate(void* pages, std::size_t size, std::size_t /*alignment*/) override {
        ::munmap(pages, size);
    }
    bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
};

// Larger blocks have pages of their own. Smaller ones stay, wiped, for the next one: a fresh page costs
// several times what its wipe costs. In bytes.
constexpr std::size_t maximumPooled = 262144;
constexpr std::size_t pageSize = 4096;

std::pmr::memory_resource& memoryFor(std::size_t size) {
    if constexpr (hasAddressSanitizer) {
        return *std::pmr::new_delete_resource();
    }
    // Never destroyed, because values of static storage may be freed after a static pool.
    static auto* pages = new HiddenPages;
    static auto* pool = new std::pmr::synchronized_pool_resource(
        {.max_blocks_per_chunk = 0, .largest_required_pool_block = maximumPooled}, pages);
    return size > maximumPooled ? static_cast<std::pmr::memory_resource&>(*pages) : *pool;
}

} // namespace

void* allocateSecret(std::size_t size) {
    void* memory = memoryFor(size).allocate(size);
    if (size > pageSize) {
        takePages(memory, size); // freeSecret touches every page, if nobody else does
    }
    return memory;
}

void* allocateZeroedSecret(std::size_t size) {
    void* memory = memoryFor(size).allocate(size);
    // The system hands out pages of zeroes, and gives them memory when they are first touched.
    if (hasAddressSanitizer || size <= maximumPooled) {
        std::memset(memory, 0, size);
    }
    return memory;
}

void freeSecret(void* memory, std::size_t size) noexcept {
    if (memory != nullptr) {
        wipe(memory, size);
        memoryFor(size).deallocate(memory, size);
    }
}

void protectProcess() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    if constexpr (!hasAddressSanitizer) {
        ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    }
}

} // namespace torka::platform
