// SPDX-License-Identifier: Apache-2.0
#include "bidi/memory/ModuleMemory.h"

#include "bidi/memory/SharedMemoryList.h"
#include "platform/SecretMemory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>

namespace torka {

namespace {

void* allocateWithMalloc(SDMHANDLE, std::size_t size) { return std::malloc(size); }

} // namespace

ModuleMemory::ModuleMemory()
    : ModuleMemory(allocateWithMalloc, std::free) {}

void* ModuleMemory::NewZeroed(std::size_t count, std::size_t size) const {
    count = std::max<std::size_t>(count, 1);
    if (count > std::numeric_limits<std::ptrdiff_t>::max() / size) {
        return nullptr;
    }
    void* block = allocate(handle, count * size);
    if (block) {
        std::memset(block, 0, count * size);
    }
    return block;
}

wchar_t* ModuleMemory::NewText(std::wstring_view text, std::size_t leastUnits) const {
    auto* copy = NewArray<wchar_t>(std::max(text.size() + 1, leastUnits));
    if (copy) {
        std::copy(text.begin(), text.end(), copy);
    }
    return copy;
}

// Wipes no more than the record's size of a value, because a module's text may lack its terminator.
void ModuleMemory::FreeValue(wchar_t* value) const {
    if (value) {
        platform::wipe(value, ::wcsnlen(value, exchangeValueSize) * sizeof(wchar_t));
    }
    Free(value);
}

void ModuleMemory::FreeList(SDMKeyValueList* list) const {
    if (!list) {
        return;
    }
    for (std::size_t i = 0; list->items && i < list->count; ++i) {
        Free(list->items[i].szKey);
        FreeValue(list->items[i].szValue);
    }
    Free(list->items);
    Free(list);
}

void ModuleMemory::FreeToners(SDMTonerInfoArray* toners) const {
    if (!toners) {
        return;
    }
    for (std::size_t i = 0; toners->items && i < toners->count; ++i) {
        Free(toners->items[i].name);
        Free(toners->items[i].color);
    }
    Free(toners->items);
    Free(toners);
}

void ModuleMemory::FreeTrays(SDMTrayInfoArray* trays) const {
    if (!trays) {
        return;
    }
    for (std::size_t i = 0; trays->items && i < trays->count; ++i) {
        const SDMTrayInfo& tray = trays->items[i];
        for (wchar_t* text :
             {tray.name, tray.key, tray.mediaName, tray.mediaSize, tray.mediaType, tray.mediaColor}) {
            Free(text);
        }
    }
    Free(trays->items);
    Free(trays);
}

void ModuleMemory::FreeWatermarks(JPWatermarkList* watermarks) const {
    if (!watermarks) {
        return;
    }
    if (watermarks->definitions) {
        for (std::size_t i = 0; i < watermarks->count; ++i) {
            Free(watermarks->definitions[i]);
        }
    }
    Free(watermarks->definitions);
    Free(watermarks);
}

void ModuleMemory::FreeNames(wchar_t** names, std::size_t count) const {
    for (std::size_t i = 0; names && i < count; ++i) {
        Free(names[i]);
    }
    Free(names);
}

} // namespace torka
