// SPDX-License-Identifier: Apache-2.0
// Measures the work of a click on "full properties" before the module's window opens, with the 800-option
// description: collects the default settings of every control, writes them into the exchange record, and
// takes unchanged settings back. Compares this with libcups on the same file in the same run: reads the
// marked choice of every option, and marks all options. Names: TASK/cups and TASK/torka.

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "pane/data/PDEData.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Log.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/posix/PosixSystem.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>

// libcups marks its PPD functions as deprecated, but programs still use them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>

namespace {

using namespace torka;

const std::string largePath = TORKA_BENCH_PPDS "/large.ppd";

class NoLog : public LogSink {
    void Line(std::string_view) override {}
};

class NoStore final : public PropertyListStore {
public:
    std::string Load() override { return {}; }
    SaveResult Save(std::string_view) override { return {}; }
};

struct OpenPane {
    ZANPPD model{FSRef{largePath}, kAcceptOrphans | kAcceptHidden, nullptr};
    PDEData data{&model, cfString("Press"), QueueAccess{}, [] { return std::make_unique<NoStore>(); }};
    UI_Panel panel{&data};

    OpenPane() {
        data.SetPrintSettings(std::make_shared<MemoryPrintSettings>());
        data.SetPageFormat(std::make_shared<MemoryPageFormat>());
    }
};

using Marked = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

Marked openMarked() {
    Marked ppd(ppdOpenFile(largePath.c_str()), &ppdClose);
    if (!ppd) {
        throw std::runtime_error("libcups does not read " + largePath);
    }
    ppdMarkDefaults(ppd.get());
    return ppd;
}

void DefaultSettings_torka(benchmark::State& state) {
    OpenPane pane;
    KeyValueList list;
    for ([[maybe_unused]] auto _ : state) {
        pane.panel.GetDefaultSettings(list);
        benchmark::DoNotOptimize(list.List());
    }
    state.counters["settings"] = static_cast<double>(list.Count());
}
BENCHMARK(DefaultSettings_torka)->Name("DefaultSettings/torka")->Unit(benchmark::kMicrosecond);

// The cheapest equivalent with libcups: keyword and marked choice of every option, as wide text.
void DefaultSettings_cups(benchmark::State& state) {
    const Marked ppd = openMarked();
    std::size_t settings = 0;
    for ([[maybe_unused]] auto _ : state) {
        KeyValueList list;
        for (ppd_option_t* option = ppdFirstOption(ppd.get()); option; option = ppdNextOption(ppd.get())) {
            const ppd_choice_t* choice = ppdFindMarkedChoice(ppd.get(), option->keyword);
            list.AppendNarrow(option->keyword, choice ? choice->choice : "");
        }
        benchmark::DoNotOptimize(list.List());
        settings = list.Count();
    }
    state.counters["settings"] = static_cast<double>(settings);
}
BENCHMARK(DefaultSettings_cups)->Name("DefaultSettings/cups")->Unit(benchmark::kMicrosecond);

void ReturnedSettings_torka(benchmark::State& state) {
    OpenPane pane;
    KeyValueList list;
    pane.panel.GetDefaultSettings(list);
    for ([[maybe_unused]] auto _ : state) {
        pane.panel.SetUpdatedSettings(list.List());
    }
}
BENCHMARK(ReturnedSettings_torka)->Name("ReturnedSettings/torka")->Unit(benchmark::kMicrosecond);

void ReturnedSettings_cups(benchmark::State& state) {
    const Marked ppd = openMarked();
    for ([[maybe_unused]] auto _ : state) {
        for (ppd_option_t* option = ppdFirstOption(ppd.get()); option; option = ppdNextOption(ppd.get())) {
            if (const ppd_choice_t* choice = ppdFindMarkedChoice(ppd.get(), option->keyword)) {
                ppdMarkOption(ppd.get(), option->keyword, choice->choice);
            }
        }
    }
}
BENCHMARK(ReturnedSettings_cups)->Name("ReturnedSettings/cups")->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    setLogSink(std::make_shared<NoLog>());
    setSystem(std::make_unique<PosixSystem>(PosixSystemOptions{}));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    setSystem(nullptr);
    return 0;
}
