// SPDX-License-Identifier: Apache-2.0
// Compares the constraint store with libcups on the same descriptions in the same run. Names: TASK/SIZE/cups
// and TASK/SIZE/torka. Both sides begin with the description's defaults.

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "bench/Descriptions.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

// libcups marks its PPD functions as deprecated, but programs still use them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/cups.h>
#include <cups/ppd.h>

namespace {

using torka::UIConstraints;

double heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

struct Option {
    std::string keyword; // with its asterisk
    std::vector<std::string> choices;
};

// Reads the choices and constraint lines of a generated description line by line.
struct Lines {
    std::vector<Option> options;
    std::vector<std::vector<std::string>> constraints;

    explicit Lines(const std::string& path) {
        std::ifstream file(path);
        std::string line;
        std::string open;
        while (std::getline(file, line)) {
            std::istringstream words(line);
            std::string first;
            words >> first;
            if (first == "*OpenUI") {
                words >> open;
                open.erase(open.find('/'));
                options.push_back({open, {}});
            } else if (first == "*UIConstraints:") {
                constraints.emplace_back(std::istream_iterator<std::string>(words),
                                         std::istream_iterator<std::string>());
            } else if (!open.empty() && first == open) {
                std::string choice;
                words >> choice;
                options.back().choices.push_back(choice.substr(0, choice.find('/')));
            }
        }
        if (options.empty() || constraints.empty()) {
            throw std::runtime_error("no description in " + path);
        }
    }
};

std::unique_ptr<UIConstraints> fillStore(const Lines& lines) {
    auto store = std::make_unique<UIConstraints>();
    for (const Option& option : lines.options) {
        for (const std::string& choice : option.choices) {
            store->KVSInsert(option.keyword, choice);
        }
        store->UpdateKVCache(option.keyword, option.choices.front());
    }
    for (const auto& c : lines.constraints) {
        store->Add(c.at(0), c.at(1), c.at(2), c.at(3), false);
    }
    store->Resolve();
    return store;
}

// One description, open on both sides until the program ends.
struct Description {
    explicit Description(const std::string& size)
        : path(torka::bench::descriptionPath(size))
        , lines(path) {
        double before = heapInUse();
        ppd = ppdOpenFile(path.c_str());
        if (ppd == nullptr || ppd->num_consts != static_cast<int>(lines.constraints.size())) {
            throw std::runtime_error("libcups does not read the whole of " + path);
        }
        cupsHeap = heapInUse() - before;
        ppdMarkDefaults(ppd);
        before = heapInUse();
        store = fillStore(lines);
        storeHeap = heapInUse() - before;

        // The choice to resolve is the first one that conflicts with the defaults.
        for (const Option& option : lines.options) {
            for (const std::string& choice : option.choices) {
                if (changeChoice.empty() && store->IsKVConstrained(option.keyword, choice)) {
                    changeKeyword = option.keyword;
                    changeChoice = choice;
                }
            }
        }
    }

    std::string path;
    Lines lines;
    ppd_file_t* ppd = nullptr;
    std::unique_ptr<UIConstraints> store;
    double cupsHeap = 0;
    double storeHeap = 0;
    std::string changeKeyword;
    std::string changeChoice;
};

Description& description(const std::string& size) {
    static std::map<std::string, std::unique_ptr<Description>> open;
    std::unique_ptr<Description>& entry = open[size];
    if (entry == nullptr) {
        entry = std::make_unique<Description>(size);
    }
    return *entry;
}

// "sweep": asks for every choice of every option whether it is forbidden.
void sweepCups(benchmark::State& state, const std::string& size) {
    Description& d = description(size);
    ppdMarkDefaults(d.ppd);
    int forbidden = 0;
    for (auto _ : state) {
        forbidden = 0;
        for (const Option& option : d.lines.options) {
            for (const std::string& choice : option.choices) {
                cups_option_t* options = nullptr;
                const int count =
                    cupsGetConflicts(d.ppd, option.keyword.c_str() + 1, choice.c_str(), &options);
                cupsFreeOptions(count, options);
                forbidden += count > 0 ? 1 : 0;
            }
        }
    }
    state.counters["forbidden"] = forbidden;
}

void sweepTorka(benchmark::State& state, const std::string& size) {
    Description& d = description(size);
    int forbidden = 0;
    for (auto _ : state) {
        forbidden = 0;
        for (const Option& option : d.lines.options) {
            for (const std::string& choice : option.choices) {
                forbidden += d.store->IsKVConstrained(option.keyword, choice) ? 1 : 0;
            }
        }
    }
    state.counters["forbidden"] = forbidden;
}

// "set": sets each option in turn to its second choice, and asks for the conflicts after each.
void setCups(benchmark::State& state, const std::string& size) {
    Description& d = description(size);
    int conflicts = 0;
    for (auto _ : state) {
        ppdMarkDefaults(d.ppd);
        conflicts = 0;
        for (const Option& option : d.lines.options) {
            ppdMarkOption(d.ppd, option.keyword.c_str() + 1,
                          option.choices[std::min<std::size_t>(1, option.choices.size() - 1)].c_str());
            conflicts += ppdConflicts(d.ppd);
        }
    }
    state.counters["conflicts"] = conflicts;
    ppdMarkDefaults(d.ppd);
}

void setTorka(benchmark::State& state, const std::string& size, bool wholeSelection) {
    Description& d = description(size);
    const auto setDefaults = [&] {
        for (const Option& option : d.lines.options) {
            d.store->UpdateKVCache(option.keyword, option.choices.front());
        }
    };
    const torka::CStringSoup& strings = *d.store->GetConstraintStrings();
    torka::ConstraintsEngine& engine = *d.store->GetEngine();
    std::size_t conflicts = 0;
    for (auto _ : state) {
        setDefaults();
        conflicts = 0;
        for (const Option& option : d.lines.options) {
            const std::string& choice = option.choices[std::min<std::size_t>(1, option.choices.size() - 1)];
            d.store->UpdateKVCache(option.keyword, choice);
            torka::KVCache change;
            change.Insert(strings.Find(option.keyword), strings.Find(choice));
            conflicts +=
                engine.Test(wholeSelection ? *d.store->GetCurrentSelections() : change).conflicts.size();
        }
    }
    state.counters["conflicts"] = static_cast<double>(conflicts);
    setDefaults();
}

// "resolve": sets one choice that conflicts with the defaults, and changes other options until no conflict
// remains.
void resolveCups(benchmark::State& state, const std::string& size) {
    Description& d = description(size);
    ppdMarkDefaults(d.ppd);
    int solved = 0;
    int changes = 0;
    for (auto _ : state) {
        cups_option_t* options = nullptr;
        int count = 0;
        solved = cupsResolveConflicts(d.ppd, d.changeKeyword.c_str() + 1, d.changeChoice.c_str(), &count,
                                      &options);
        changes = count;
        cupsFreeOptions(count, options);
    }
    state.counters["solved"] = solved;
    state.counters["changes"] = changes;
}

void resolveTorka(benchmark::State& state, const std::string& size) {
    Description& d = description(size);
    const torka::CStringSoup& strings = *d.store->GetConstraintStrings();
    bool solved = false;
    std::size_t changes = 0;
    for (auto _ : state) {
        torka::KVCache change;
        change.Insert(strings.Find(d.changeKeyword), strings.Find(d.changeChoice));
        solved = d.store->GetEngine()->Solve(change, true).conflicts.size() == 0;
        changes = change.size();
    }
    state.counters["solved"] = solved ? 1 : 0;
    state.counters["changes"] = static_cast<double>(changes);
}

// "fill": libcups reads the description; the store is filled from lines that were read before. The work
// differs, but the result bounds the store's share in reading a description.
void fillCups(benchmark::State& state, const std::string& size) {
    Description& d = description(size);
    for (auto _ : state) {
        ppd_file_t* ppd = ppdOpenFile(d.path.c_str());
        benchmark::DoNotOptimize(ppd);
        ppdClose(ppd);
    }
    state.counters["heap_KiB"] = d.cupsHeap / 1024;
}

void fillTorka(benchmark::State& state, const std::string& size) {
    Description& d = description(size);
    for (auto _ : state) {
        benchmark::DoNotOptimize(fillStore(d.lines));
    }
    state.counters["heap_KiB"] = d.storeHeap / 1024;
}

// "wildcard": reads one constraint between two keys of 5,000 options each, which means 25 million pairs, and
// then asks for every option of the first key.
void wildcardTorka(benchmark::State& state) {
    constexpr int count = 5000;
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("Choice" + std::to_string(i));
    }
    double lineBytes = 0;
    int forbidden = 0;
    for (auto _ : state) {
        UIConstraints store;
        for (const std::string& name : names) {
            store.KVSInsert("*One", name);
            store.KVSInsert("*Two", name);
        }
        const double before = heapInUse();
        store.Add("*One", "", "*Two", "", false);
        store.Resolve();
        store.UpdateKVCache("*Two", "Choice42");
        forbidden = 0;
        for (const std::string& name : names) {
            forbidden += store.IsKVConstrained("*One", name) ? 1 : 0;
        }
        lineBytes = heapInUse() - before;
    }
    state.counters["line_KiB"] = lineBytes / 1024;
    state.counters["forbidden"] = forbidden;
}

void registerBoth(const std::string& task, const std::string& size,
                  const std::function<void(benchmark::State&, const std::string&)>& cups,
                  const std::function<void(benchmark::State&, const std::string&)>& torka,
                  bool slow = false) {
    const std::string name = task + "/" + size;
    auto* peer = benchmark::RegisterBenchmark((name + "/cups").c_str(),
                                              [=](benchmark::State& state) { cups(state, size); });
    auto* ours = benchmark::RegisterBenchmark((name + "/torka").c_str(),
                                              [=](benchmark::State& state) { torka(state, size); });
    peer->Unit(benchmark::kMillisecond);
    ours->Unit(benchmark::kMillisecond);
    if (slow) {
        peer->Iterations(1);
    }
}

} // namespace

int main(int argc, char** argv) {
    const auto setChange = [](benchmark::State& state, const std::string& size) {
        setTorka(state, size, false);
    };
    const auto setWhole = [](benchmark::State& state, const std::string& size) {
        setTorka(state, size, true);
    };
    for (const char* size : {"small", "medium", "large"}) {
        const bool large = std::string(size) == "large";
        registerBoth("sweep", size, sweepCups, sweepTorka, large);
        registerBoth("set", size, setCups, setChange, large);
        benchmark::RegisterBenchmark((std::string("set/") + size + "/torka-whole-selection").c_str(),
                                     [=](benchmark::State& state) { setWhole(state, size); })
            ->Unit(benchmark::kMillisecond);
        registerBoth("resolve", size, resolveCups, resolveTorka);
        registerBoth("fill", size, fillCups, fillTorka);
    }
    benchmark::RegisterBenchmark("wildcard/5000x5000/torka", wildcardTorka)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
