// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Blocks that cross the module's border. All come from one allocator, so JP1_1Free frees both the blocks of
// SDMAllocMemory and those that the module returns. A returned list consists of separate blocks. Its receiver
// frees them, innermost first.

namespace torka::jobproperties {

// One entry as it leaves the module: an absent text becomes null.
struct WideEntry {
    std::optional<std::wstring> key;
    std::optional<std::wstring> value;
};

void* allocateBlock(std::size_t bytes); // null when memory runs out
void freeBlock(void* block);            // null is allowed

// Return null when memory runs out, without a leak.
SDMKeyValueList* newSettingList(const std::vector<WideEntry>& entries);
JPWatermarkList* newWatermarkList(const std::vector<std::wstring>& definitions);

} // namespace torka::jobproperties
