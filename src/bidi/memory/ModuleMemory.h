// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"

#include <cstddef>
#include <string_view>

namespace torka {

// The allocator of the blocks that a callback returns to the Job Properties module: the module's own, or
// malloc for a table whose free callback calls free. A value that owns nothing. REQUIRES: the module stays
// loaded while it is used.
class ModuleMemory {
public:
    using Allocate = void* (*)(SDMHANDLE handle, std::size_t size);
    using Release = void (*)(void* block);

    // Uses malloc and free.
    ModuleMemory();
    ModuleMemory(Allocate allocateBlock, Release releaseBlock, SDMHANDLE dataServer = nullptr)
        : allocate(allocateBlock)
        , release(releaseBlock)
        , handle(dataServer) {}

    // Zero-filled room for `count` values, at least one. Null when memory runs out or the size overflows.
    template <typename T>
    T* NewArray(std::size_t count) const {
        return static_cast<T*>(NewZeroed(count, sizeof(T)));
    }
    // A copy with its terminator, in a block of at least `leastUnits` units. Null when memory runs out.
    wchar_t* NewText(std::wstring_view text, std::size_t leastUnits = 0) const;
    // Null is allowed.
    void Free(void* block) const {
        if (block) {
            release(block);
        }
    }

    // Free a structure with everything in it, innermost block first. Every pointer may be null. FreeList
    // wipes a setting's value before it frees it: at most as many units as the exchange record has bytes for
    // a value.
    void FreeList(SDMKeyValueList* list) const;
    void FreeToners(SDMTonerInfoArray* toners) const;
    void FreeTrays(SDMTrayInfoArray* trays) const;
    void FreeWatermarks(JPWatermarkList* watermarks) const;
    void FreeNames(wchar_t** names, std::size_t count) const;

private:
    void FreeValue(wchar_t* value) const;
    void* NewZeroed(std::size_t count, std::size_t size) const;

    Allocate allocate;
    Release release;
    SDMHANDLE handle;
};

} // namespace torka
