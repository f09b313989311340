// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/ModuleMemory.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

namespace torka::jobproperties {

namespace {

// Stored before each block. A block may hold a password, so freeing wipes it.
struct alignas(std::max_align_t) BlockHead {
    std::size_t bytes;
};

// Collects blocks while a list is built. Frees them unless the list is finished.
class Blocks {
public:
    Blocks() = default;
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;
    ~Blocks() { std::for_each(taken.begin(), taken.end(), freeBlock); }

    // Returns a zeroed array of `count` elements. Returns null for none, and when memory runs out;
    // HasFailed() is then true.
    template <typename Element>
    Element* Array(std::size_t count) {
        if (count == 0) {
            return nullptr;
        }
        taken.reserve(taken.size() + 1);
        void* block = allocateBlock(count * sizeof(Element));
        if (block == nullptr) {
            failed = true;
            return nullptr;
        }
        taken.push_back(block);
        std::memset(block, 0, count * sizeof(Element));
        return static_cast<Element*>(block);
    }
    wchar_t* Text(const std::wstring& text) {
        wchar_t* block = Array<wchar_t>(text.size() + 1);
        if (block != nullptr) {
            std::copy(text.begin(), text.end(), block);
        }
        return block;
    }
    bool HasFailed() const { return failed; }
    void Release() { taken.clear(); }

private:
    std::vector<void*> taken;
    bool failed = false;
};

} // namespace

void* allocateBlock(std::size_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() - sizeof(BlockHead)) {
        return nullptr;
    }
    void* block = std::malloc(sizeof(BlockHead) + bytes);
    return block == nullptr ? nullptr : new (block) BlockHead{bytes} + 1;
}

void freeBlock(void* block) {
    if (block == nullptr) {
        return;
    }
    BlockHead* head = static_cast<BlockHead*>(block) - 1;
    ::explicit_bzero(block, head->bytes);
    std::free(head);
}

SDMKeyValueList* newSettingList(const std::vector<WideEntry>& entries) {
    Blocks blocks;
    auto* list = blocks.Array<SDMKeyValueList>(1);
    auto* items = blocks.Array<SDMKeyValue>(entries.size());
    for (std::size_t i = 0; i < entries.size() && !blocks.HasFailed(); ++i) {
        items[i].szKey = entries[i].key ? blocks.Text(*entries[i].key) : nullptr;
        items[i].szValue = entries[i].value ? blocks.Text(*entries[i].value) : nullptr;
    }
    if (blocks.HasFailed()) {
        return nullptr;
    }
    *list = {entries.size(), items};
    blocks.Release();
    return list;
}

JPWatermarkList* newWatermarkList(const std::vector<std::wstring>& definitions) {
    Blocks blocks;
    auto* list = blocks.Array<JPWatermarkList>(1);
    auto** texts = blocks.Array<wchar_t*>(definitions.size());
    for (std::size_t i = 0; i < definitions.size() && !blocks.HasFailed(); ++i) {
        texts[i] = blocks.Text(definitions[i]);
    }
    if (blocks.HasFailed()) {
        return nullptr;
    }
    *list = {definitions.size(), texts};
    blocks.Release();
    return list;
}

} // namespace torka::jobproperties
