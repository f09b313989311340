// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PostscriptStore.h"

#include <algorithm>
#include <cstring>

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

const unsigned char* PostscriptStore::Keep(std::string_view bytes) {
    if (bytes.empty()) {
        return nullptr;
    }
    unsigned char* place = next;
    if (bytes.size() > available) {
        // Block sizes grow with the content, so that a small description needs little memory.
        const std::size_t block = std::clamp(capacity / 4, smallestBlock, largestBlock);
        if (bytes.size() > block / 4) {
            place = NewBlock(bytes.size());
            std::memcpy(place, bytes.data(), bytes.size());
            return place;
        }
        place = NewBlock(block);
        next = place;
        available = block;
    }
    std::memcpy(place, bytes.data(), bytes.size());
    next += bytes.size();
    available -= bytes.size();
    return place;
}

} // namespace torka
