// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <string_view>
#include <vector>

namespace torka {

// Stores the PostScript bytes of one description, the names of its choices and the choices themselves. The
// controls point into it.
//
// Bytes never move and live as long as the store. Small values share blocks. A value that would waste much of
// a block gets a block of its own size. As a memory resource, it frees nothing before its end.
class PostscriptStore final : public std::pmr::memory_resource {
public:
    PostscriptStore() = default;
    PostscriptStore(const PostscriptStore&) = delete;
    PostscriptStore& operator=(const PostscriptStore&) = delete;

    // Stores the bytes and then those of `ending`. Returns null for no bytes.
    const unsigned char* Keep(std::string_view bytes, std::string_view ending = {});

private:
    void* do_allocate(std::size_t size, std::size_t alignment) override { return Room(size, alignment); }
    void do_deallocate(void*, std::size_t, std::size_t) override {}
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }
    unsigned char* Room(std::size_t size, std::size_t alignment);
    unsigned char* NewBlock(std::size_t size);

    std::vector<std::unique_ptr<unsigned char[]>> blocks;
    unsigned char* next = nullptr; // the free part of the shared block
    std::size_t available = 0;
    std::size_t capacity = 0;
};

} // namespace torka
