// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PostscriptStore.h"

#include <algorithm>

namespace torka {

namespace {
constexpr std::size_t smallestBlock = 4096;
constexpr std::size_t largestBlock = 32768;
} // namespace

unsigned char* PostscriptStore::NewBlock(std::size_t size) {
    blocks.push_back(std::make_unique_for_overwrite<unsigned char[]>(size));
    capacity += size;
    return blocks.back().get();
}

const unsigned char* PostscriptStore::Keep(std::string_view bytes, std::string_view ending) {
    const std::size_t size = bytes.size() + ending.size();
    if (size == 0) {
        return nullptr;
    }
    const auto fill = [&](unsigned char* place) {
        char* const text = reinterpret_cast<char*>(place);
        ending.copy(text + bytes.copy(text, bytes.size()), ending.size());
        return place;
    };
    if (size > available) {
        // Block sizes grow with the content, so that a small description needs little memory.
        const std::size_t block = std::clamp(capacity / 4, smallestBlock, largestBlock);
        if (size > block / 4) {
            return fill(NewBlock(size));
        }
        next = NewBlock(block);
        available = block;
    }
    unsigned char* const place = next;
    next += size;
    available -= size;
    return fill(place);
}

} // namespace torka
