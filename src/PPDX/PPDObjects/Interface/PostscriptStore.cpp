// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PostscriptStore.h"

#include "platform/FreshMemory.h"

#include <algorithm>
#include <memory>

namespace torka {

namespace {
constexpr std::size_t smallestBlock = 16384;
constexpr std::size_t largestBlock = 32768;
} // namespace

unsigned char* PostscriptStore::NewBlock(std::size_t size) {
    blocks.push_back(std::make_unique_for_overwrite<unsigned char[]>(size));
    capacity += size;
    platform::takePages(blocks.back().get(), size);
    return blocks.back().get();
}

unsigned char* PostscriptStore::Room(std::size_t size, std::size_t alignment) {
    void* place = next;
    if (std::align(alignment, size, place, available) == nullptr) {
        // Block sizes grow with the content, so that a small description needs little memory.
        const std::size_t block = std::clamp(capacity / 4, smallestBlock, largestBlock);
        if (size > block / 4) {
            return NewBlock(size);
        }
        place = NewBlock(block);
        available = block;
    }
    auto* const room = static_cast<unsigned char*>(place);
    next = room + size;
    available -= size;
    return room;
}

const unsigned char* PostscriptStore::Keep(std::string_view bytes, std::string_view ending) {
    const std::size_t size = bytes.size() + ending.size();
    if (size == 0) {
        return nullptr;
    }
    unsigned char* const place = Room(size, 1);
    char* const text = reinterpret_cast<char*>(place);
    ending.copy(text + bytes.copy(text, bytes.size()), ending.size());
    return place;
}

} // namespace torka
