#pragma once

#include "bidi/JobPropertiesModule.h"

#include <array>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// The pane's side of the module's interface, with a print server in memory. Loads the module by its path and
// uses only its public interface.

namespace torka::tests {

using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

// The module's entry points, found by name.
struct Module {
    static const Module& Loaded();

    JP1_1BeginSessionProc beginSession;
    JP1_1IsServerReadyProc isServerReady;
    JP1_1SetJobKeyValuesProc setJobKeyValues;
    JPSetJobReadOnlyKeysProc setReadOnlyKeys;
    JP1_1SetJobVeiledKeysProc setVeiledKeys;
    JP1_1SetWatermarksProc setWatermarks;
    JP1_1OpenUIProc openUI;
    JP1_1GetJobKeyValuesProc getJobKeyValues;
    JP1_1GetWatermarksProc getWatermarks;
    JP1_1FreeProc free;
    SDMAllocMemoryProc allocMemory;
    SDMTerminateProc terminate;
    SDMDllEndProc dllEndServer;
    JP1_1EndSessionProc endSession;
    JP1_1DllEndProc dllEnd;
};

// Supplies the server's values, counts the blocks that it returns, and runs a session. Only one object may
// exist at a time.
class FakePane {
public:
    FakePane();
    FakePane(const FakePane&) = delete;
    FakePane& operator=(const FakePane&) = delete;
    ~FakePane();

    // The server's values. An empty list stands for an absent record.
    std::wstring serverData;
    std::vector<SDMTrayInfo> trays;   // texts are not owned
    std::vector<SDMTonerInfo> toners; // texts are not owned
    Pairs information, help, lockedKeys;
    std::vector<std::wstring> presetNames;
    Pairs presetJob, presetTessel, presetValues; // of the first preset
    std::function<void()> whenAskedForTrays;     // called once

    // The pane's arguments and the module's results.
    Pairs settings, templateSettings, readOnly, veiled;
    std::vector<std::wstring> watermarks;
    bool hasWatermarks = false;
    SDMRESULT openResult = -1;
    std::int32_t result = -1;
    bool hasReturnedList = false;
    Pairs returned; // null texts are L"<null>"
    std::vector<std::wstring> returnedWatermarks;
    bool hasReturnedWatermarks = false;

    // All calls of one launch, in the pane's order. False when no session could begin.
    bool Run();
    std::wstring Value(const std::wstring& key) const;

    // With two-way communication off, most slots are empty, and results come from malloc.
    void SetTwoWay(bool on);
    std::array<SDMCallbackSlot, SDM_CALLBACK_SLOTS> table{};
    // The number of blocks that callbacks returned and nobody has freed.
    std::size_t BlocksOut() const { return blocks.size(); }

    void* Give(std::size_t bytes);
    wchar_t* Give(const std::wstring& text);
    SDMKeyValueList* Give(const Pairs& pairs);
    SDMRESULT TakeBack(void** pointer);

private:
    void TakeReturned(JPHANDLE session);

    std::set<void*> blocks;
    bool isTwoWay = true;
};

} // namespace torka::tests
