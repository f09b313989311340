#pragma once

#include "bidi/JobPropertiesModule.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Blocks that cross the module's border. All come from one allocator, so that JP1_1Free frees what
// SDMAllocMemory gave and what the module returns. Lists that are returned consist of blocks of their own,
// freed innermost first by whoever takes them.

namespace torka::jobproperties {

// One entry as it leaves the module: a text that is absent leaves as null.
struct WideEntry {
    std::optional<std::wstring> key;
    std::optional<std::wstring> value;
};

void* allocateBlock(std::size_t bytes); // null when there is no memory
void freeBlock(void* block);            // null is allowed

// Null when there is no memory; nothing is left behind then.
SDMKeyValueList* newSettingList(const std::vector<WideEntry>& entries);
JPWatermarkList* newWatermarkList(const std::vector<std::wstring>& definitions);

} // namespace torka::jobproperties
