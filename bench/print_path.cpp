// SPDX-License-Identifier: Apache-2.0
// Measures the work from print settings to a ticket for the rich sample. Compares it with libcups on the same
// file in the same run: ppdOpenFile, marking and ppdEmitString. Names: TASK/cups and TASK/torka. The counter
// "kept_bytes" of ManyJobs gives the growth of the heap over 10,000 jobs of one process.

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "output/FeatureEmission.h"
#include "output/ZANJobTicket.h"
#include "pane/data/PDEData.h"
#include "platform/Log.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/posix/PosixSystem.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

// libcups marks its PPD functions as deprecated, but programs still use them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>

namespace {

using namespace torka;

const std::string& samplePath() {
    static const std::string path = TORKA_SOURCE_DIR "/samples/torka-production.ppd";
    return path;
}

// Drops the log.
class NoLog : public LogSink {
    void Line(std::string_view) override {}
};

class NoStore final : public PropertyListStore {
public:
    std::string Load() override { return {}; }
    SaveResult Save(std::string_view) override { return {}; }
};

// The objects of an open pane: the description, its data and the dialog's print settings.
struct OpenPane {
    ZANPPD model{FSRef{samplePath()}, kAcceptOrphans | kAcceptHidden, nullptr};
    std::shared_ptr<MemoryPrintSettings> settings = std::make_shared<MemoryPrintSettings>();
    PDEData data{&model, cfString("Press"), QueueAccess{}, [] { return std::make_unique<NoStore>(); }};

    OpenPane() {
        data.SetPrintSettings(settings);
        data.SetPageFormat(std::make_shared<MemoryPageFormat>());
        for (const auto& [key, value] :
             {std::pair{"*PageSize", "A4"}, {"*QVScale", "85"}, {"*Notes1", "a note"}}) {
            model.SetValueForKey(cfString(key), cfString(value));
        }
        data.SaveNonPSSettings();
        const CFDictionaryRef values = model.CopyAllValues();
        for (const auto& [key, value] : values->Pairs()) {
            settings->SetValue(key, value, false);
        }
    }

    // Turns the print settings into the ticket.
    CFDataRef Print() {
        const CFDictionaryRef values = settings->CopyAsDictionary();
        model.SetAllValues(values);
        data.RestoreNonPSSettings();
        PrintSettingsTicket dictionary(nullptr, settings);
        ZANJobTicket ticket(&dictionary, settings, cfString("ZAN.PSData"));
        data.OutPostscriptData(ticket, nullptr, EmissionPurpose::printJob);
        ticket.SavePPDForAllKeys(&model, cfString("torka"));
        return ticket.Save();
    }
};

void printOneJobCups(benchmark::State& state) {
    for (auto _ : state) {
        ppd_file_t* ppd = ppdOpenFile(samplePath().c_str());
        if (ppd == nullptr) {
            state.SkipWithError("libcups does not read the sample");
            return;
        }
        ppdMarkDefaults(ppd);
        ppdMarkOption(ppd, "PageSize", "A4");
        char* text = ppdEmitString(ppd, PPD_ORDER_ANY, 0.0F);
        benchmark::DoNotOptimize(text);
        std::free(text);
        ppdClose(ppd);
    }
}
BENCHMARK(printOneJobCups)->Name("PrintOneJob/cups")->Unit(benchmark::kMicrosecond);

void printOneJobTorka(benchmark::State& state) {
    OpenPane pane;
    std::int64_t size = 0;
    for (auto _ : state) {
        size = CFDataGetLength(pane.Print());
    }
    state.counters["ticket_bytes"] = static_cast<double>(size);
}
BENCHMARK(printOneJobTorka)->Name("PrintOneJob/torka")->Unit(benchmark::kMicrosecond);

// Also writes the ticket's file and waits until it is on the disk. libcups has no such file.
void printOneJobToFileTorka(benchmark::State& state) {
    OpenPane pane;
    const std::filesystem::path file = platform::system().PrivateFolder() / "ticket.plist";
    for (auto _ : state) {
        const CFDataRef xml = pane.Print();
        const auto bytes = CFDataGetBytes(xml);
        if (platform::system().WriteFile(file, {reinterpret_cast<const char*>(bytes.data()), bytes.size()},
                                         0600)) {
            state.SkipWithError("the ticket cannot be written");
            return;
        }
    }
}
BENCHMARK(printOneJobToFileTorka)->Name("PrintOneJobToFile/torka")->Unit(benchmark::kMicrosecond);

void manyJobs(benchmark::State& state) {
    OpenPane pane;
    std::size_t kept = 0;
    for (auto _ : state) {
        for (int i = 0; i < 100; ++i) { // makes the allocations that happen only once
            pane.Print();
        }
        const std::size_t before = mallinfo2().uordblks;
        for (int i = 0; i < 10'000; ++i) {
            pane.Print();
        }
        const std::size_t after = mallinfo2().uordblks;
        kept = after > before ? after - before : 0;
    }
    state.counters["kept_bytes"] = static_cast<double>(kept);
}
BENCHMARK(manyJobs)->Name("ManyJobs/torka")->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    setLogSink(std::make_shared<NoLog>());
    setSystem(std::make_unique<platform::PosixSystem>(platform::PosixSystemOptions{}));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
