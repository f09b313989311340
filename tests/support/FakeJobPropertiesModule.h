// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"
#include "platform/memory/MemoryLibraryLoader.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace torka::tests {

// A Job Properties module without a library. The process's library loader offers it while the object lives.
// It keeps the settings that it receives and returns them after `edit` has changed them.
//
// Tracks its blocks. Freeing a block twice, or a foreign block, fails the test at once; a leaked block fails
// it at the end. Only one object may exist at a time.
class FakeJobPropertiesModule {
public:
    using Settings = std::vector<std::pair<std::wstring, std::wstring>>;
    static constexpr const char* path = "/bundles/libzanjp2.so";

    FakeJobPropertiesModule();
    FakeJobPropertiesModule(const FakeJobPropertiesModule&) = delete;
    FakeJobPropertiesModule& operator=(const FakeJobPropertiesModule&) = delete;
    ~FakeJobPropertiesModule();

    MemoryLibraryLoader& Loader() { return *loader; }

    // The module's results.
    SDMRESULT beginResult = 0;
    int readyAfter = 0; // number of calls that return "not ready"; negative for all
    SDMRESULT openResult = 0;
    std::int32_t windowResult = 0;
    SDMRESULT getResult = 0;
    bool returnsNull = false;               // returns null lists
    std::size_t allocationsLeft = SIZE_MAX; // number of times that SDMAllocMemory succeeds
    std::function<void()> edit;             // called while the window is open

    // A repeated key replaces the value and keeps its position.
    void Set(const std::wstring& key, const std::wstring& value);

    // The module's calls and arguments.
    std::vector<std::string> calls;
    Settings settings;
    std::vector<std::wstring> readOnlyKeys;
    std::vector<std::wstring> veiledKeys;
    std::vector<std::wstring> watermarks;
    std::string title;
    const SDMCallbackSlot* table = nullptr;
    std::map<void*, std::size_t> blocks; // size of each block

    template <typename Proc>
    Proc Callback(int slot) const {
        return reinterpret_cast<Proc>(table[slot].function);
    }
    void* Allocate(std::size_t size);
    void Free(void* block);

private:
    MemoryLibraryLoader* loader; // owned by the holder of libraryLoader()
};

} // namespace torka::tests
