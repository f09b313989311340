// SPDX-License-Identifier: Apache-2.0
// Measures reading a description's file into its model, and the model's functions that an open pane calls.
// Compares them with libcups on the same files in the same run. Names: TASK/SIZE/cups and TASK/SIZE/torka.

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bench/Descriptions.h"
#include "bench/FirstRun.h"
#include "platform/Log.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// libcups marks its PPD functions as deprecated, but programs still use them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>

// These functions see every heap block, including those of libcups. They give the peak of a task's memory,
// and not only the memory that it leaves behind.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {
std::size_t heapNow = 0;
std::size_t heapPeak = 0;

void* counted(void* block) {
    heapNow += block ? malloc_usable_size(block) : 0;
    heapPeak = heapNow > heapPeak ? heapNow : heapPeak;
    return block;
}
} // namespace

extern "C" void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }
extern "C" void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }
extern "C" void* realloc(void* block, std::size_t size) {
    heapNow -= block ? malloc_usable_size(block) : 0;
    return counted(__libc_realloc(block, size));
}
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return counted(__libc_memalign(alignment, size));
}
extern "C" void free(void* block) {
    heapNow -= block ? malloc_usable_size(block) : 0;
    __libc_free(block);
}

namespace {

using torka::ZANPPD;

constexpr torka::_PARSE_OPTIONS_ acceptAll = torka::kAcceptOrphans | torka::kAcceptHidden;

// Drops the log.
class NoLog : public torka::LogSink {
    void Line(std::string_view) override {}
};

using torka::bench::descriptionPath;

using CupsDescription = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

CupsDescription openCups(const std::string& size) {
    CupsDescription ppd(ppdOpenFile(descriptionPath(size).c_str()), &ppdClose);
    if (!ppd) {
        throw std::runtime_error("libcups does not read " + descriptionPath(size));
    }
    return ppd;
}

std::unique_ptr<ZANPPD> openTorka(const std::string& size) {
    auto model = std::make_unique<ZANPPD>(torka::FSRef{descriptionPath(size)}, acceptAll, nullptr);
    if (!model->Errors()->Empty()) {
        throw std::runtime_error("errors in " + descriptionPath(size));
    }
    return model;
}

// Runs the task once more and returns the rise of the heap's peak in KiB.
template <class Task>
double heapPeakOf(Task task) {
    const std::size_t before = heapNow;
    heapPeak = heapNow;
    const auto kept = task();
    benchmark::DoNotOptimize(kept.get());
    return static_cast<double>(heapPeak - before) / 1024.0;
}

void parseCups(benchmark::State& state, const std::string& size) {
    for (auto _ : state) {
        CupsDescription ppd = openCups(size);
        state.PauseTiming(); // excludes closing the model
        ppd.reset();
        state.ResumeTiming();
    }
    state.counters["peakKiB"] = heapPeakOf([&] { return openCups(size); });
}

void parseTorka(benchmark::State& state, const std::string& size) {
    for (auto _ : state) {
        std::unique_ptr<ZANPPD> model = openTorka(size);
        state.PauseTiming();
        model.reset();
        state.ResumeTiming();
    }
    state.counters["peakKiB"] = heapPeakOf([&] { return openTorka(size); });
}

// "emit": the feature code of every option's current choice.
void emitCups(benchmark::State& state, const std::string& size) {
    const CupsDescription ppd = openCups(size);
    ppdMarkDefaults(ppd.get());
    std::size_t bytes = 0;
    for (auto _ : state) {
        char* text = ppdEmitString(ppd.get(), PPD_ORDER_ANY, 0.0F);
        bytes = text ? std::string_view(text).size() : 0;
        std::free(text);
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}

void emitTorka(benchmark::State& state, const std::string& size) {
    const std::unique_ptr<ZANPPD> model = openTorka(size);
    std::string text;
    for (auto _ : state) {
        text.clear();
        model->GetControls()->ForEach([&](torka::PPDXControl* control) {
            const std::size_t before = text.size();
            text.resize(before + static_cast<std::size_t>(control->PostScript(nullptr)));
            control->PostScript(reinterpret_cast<unsigned char*>(text.data()) + before);
        });
        benchmark::DoNotOptimize(text.data());
    }
    state.counters["bytes"] = static_cast<double>(text.size());
}

// "pane": asks by text for every choice of every option whether it is forbidden, as a pane does to disable
// choices.
void paneTorka(benchmark::State& state, const std::string& size) {
    const std::unique_ptr<ZANPPD> model = openTorka(size);
    int forbidden = 0;
    int asked = 0;
    for (auto _ : state) {
        forbidden = asked = 0;
        model->GetControls()->ForEach([&](torka::PPDXControl* control) {
            if (control->Type() != torka::CNTL_TYPE::popup) {
                return;
            }
            auto* popup = static_cast<torka::PPDXPopupControl*>(control);
            for (auto* item = popup->FirstItem(); item; item = popup->NextItem()) {
                forbidden += model->IsKVConstrained(control->Keyword(), item->keyword.Buffer()) ? 1 : 0;
                ++asked;
            }
        });
    }
    state.counters["forbidden"] = forbidden;
    state.counters["asked"] = asked;
}

// "cold": the first parse of a process, in processor time.
double coldParse(const std::string& who, const std::string& size) {
    const std::clock_t begin = std::clock();
    CupsDescription theirs(nullptr, &ppdClose);
    std::unique_ptr<ZANPPD> ours;
    if (who == "cups") {
        theirs = openCups(size);
    } else {
        ours = openTorka(size);
    }
    return 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

// "values": takes all values and sets them again by key, as a pane does to save and restore them.
void valuesTorka(benchmark::State& state, const std::string& size) {
    const std::unique_ptr<ZANPPD> model = openTorka(size);
    for (auto _ : state) {
        model->SetAllValues(model->CopyAllValues());
    }
}

} // namespace

int main(int argc, char** argv) {
    torka::setLogSink(std::make_shared<NoLog>());
    if (argc == 4 && std::string_view(argv[1]) == "--first") {
        std::printf("%.4f\n", coldParse(argv[2], argv[3]));
        return 0;
    }
    const std::pair<const char*, std::function<void(benchmark::State&, const std::string&)>> tasks[] = {
        {"parse/%s/cups", parseCups}, {"parse/%s/torka", parseTorka}, {"emit/%s/cups", emitCups},
        {"emit/%s/torka", emitTorka}, {"pane/%s/torka", paneTorka},   {"values/%s/torka", valuesTorka}};
    for (const std::string size : {"small", "medium", "large"}) {
        for (const auto& [pattern, task] : tasks) {
            std::string name = pattern;
            name.replace(name.find("%s"), 2, size);
            benchmark::RegisterBenchmark(name.c_str(), [task = task, size](benchmark::State& state) {
                task(state, size);
            })->Unit(benchmark::kMillisecond);
        }
        for (const std::string who : {"cups", "torka"}) {
            benchmark::RegisterBenchmark(("cold/" + size + "/" + who).c_str(), torka::bench::firstRun,
                                         who + " " + size)
                ->UseManualTime()
                ->Iterations(51)
                ->Unit(benchmark::kMillisecond);
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
