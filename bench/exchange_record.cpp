// SPDX-License-Identifier: Apache-2.0
// Fills the exchange record with 1,000 settings and reads it back, as a launch and the module's return do.
// Compares this with copies of the whole record.

#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesState.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>

namespace {

using namespace torka;

KeyValueList& settings() {
    static KeyValueList list;
    if (list.Count() == 0) {
        for (int i = 0; i < 1000; ++i) {
            const std::wstring number = std::to_wstring(i);
            list.Append(L"*QVSettingOfFeature" + number,
                        i % 10 == 0 ? L"Größe " + number : L"Choice" + number);
        }
    }
    return list;
}

void copyRecord(benchmark::State& state) {
    const auto from = std::make_unique<SharedMemoryList>();
    const auto to = std::make_unique<SharedMemoryList>();
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), sizeof(SharedMemoryList));
        benchmark::DoNotOptimize(to.get());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyRecord)->Name("copy/memcpy");

// The pane's part: writes the settings into the record and reads them again.
void fillAndRead(benchmark::State& state) {
    const auto record = std::make_unique<SharedMemoryList>();
    for (auto _ : state) {
        writeSettings(*record, settings().List());
        KeyValueList back;
        Create_SDMList_From_SharedMemoryList(back, *record);
        auto* items = back.List().items;
        benchmark::DoNotOptimize(items);
    }
}
BENCHMARK(fillAndRead)->Name("fill and read/ours");

// The module's part: also copies the record, and compares the values when the settings come from a preset.
void returnAndRead(benchmark::State& state) {
    const auto record = std::make_unique<SharedMemoryList>();
    for (auto _ : state) {
        gotServerPresetFromJP = state.range(0) != 0;
        Create_SharedMemoryList_From_SDMList(*record, settings().List());
        KeyValueList back;
        Create_SDMList_From_SharedMemoryList(back, *record);
        auto* items = back.List().items;
        benchmark::DoNotOptimize(items);
    }
}
BENCHMARK(returnAndRead)->Name("fill, keep and read/ours")->ArgName("preset")->Arg(0)->Arg(1);

} // namespace

BENCHMARK_MAIN();
