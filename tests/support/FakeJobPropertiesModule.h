#pragma once

#include "bidi/JobPropertiesModule.h"
#include "platform/memory/MemoryLibraryLoader.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace torka::tests {

// A Job Properties module without a library: the process's library loader offers it while this lives. It
// keeps what it is handed, and returns it as `edit` leaves it.
//
// Counts its blocks: one that is freed twice or is not its own fails the test at once, one that is left fails
// it at the end. One at a time.
class FakeJobPropertiesModule {
public:
    using Settings = std::vector<std::pair<std::wstring, std::wstring>>;
    static constexpr const char* path = "/bundles/libzanjp2.so";

    FakeJobPropertiesModule();
    FakeJobPropertiesModule(const FakeJobPropertiesModule&) = delete;
    FakeJobPropertiesModule& operator=(const FakeJobPropertiesModule&) = delete;
    ~FakeJobPropertiesModule();

    MemoryLibraryLoader& Loader() { return *loader; }

    // How it answers.
    SDMRESULT beginResult = 0;
    int readyAfter = 0; // questions answered with no; negative: all
    SDMRESULT openResult = 0;
    std::int32_t windowResult = 0;
    SDMRESULT getResult = 0;
    SDMRESULT endResult = 0;
    bool returnsNull = false;   // lists that are null
    bool hasMemory = true;      // for SDMAllocMemory
    std::function<void()> edit; // called while the window is open

    // What it was told; settings of one key stand where the first did.
    std::vector<std::string> calls;
    Settings settings;
    std::vector<std::wstring> readOnlyKeys;
    std::vector<std::wstring> veiledKeys;
    std::vector<std::wstring> watermarks;
    std::string title;
    const SDMCallbackSlot* table = nullptr;
    std::map<void*, std::size_t> blocks; // sizes

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
