// SPDX-License-Identifier: Apache-2.0
// Converts records of 1,000 entries into the module's structures and frees them. Compares this with a bare
// split of the same text into lines and fields, each copied into its own string.

#include "bidi/serverdata/ServerDataToBuffer.h"
#include "bidi/serverdata/ServerDataToSDM.h"
#include "bidi/serverdata/ServerRecords.h"

#include <benchmark/benchmark.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace torka;

constexpr std::size_t entryCountOfRecord = 1000;

std::wstring record(const std::wstring& (*entry)(std::size_t)) {
    std::wstring text = std::to_wstring(entryCountOfRecord) + L"\n";
    for (std::size_t i = 0; i < entryCountOfRecord; ++i) {
        text += entry(i);
    }
    return text;
}

const std::wstring& trayText() {
    static const std::wstring text = record([](std::size_t i) -> const std::wstring& {
        static std::wstring line;
        line = L"Tray " + std::to_wstring(i) + L" (large capacity)@Tray" + std::to_wstring(i) +
               L"@Coated, silk@SRA3@" + (i % 3 == 0 ? L"EMPTY" : L"Coated") + L"@White@" +
               std::to_wstring(i * 7 % 2000) + L"@2000\n";
        return line;
    });
    return text;
}

const std::wstring& tonerText() {
    static const std::wstring text = record([](std::size_t i) -> const std::wstring& {
        static std::wstring line;
        line = L"Spot color " + std::to_wstring(i) + L"@" + std::to_wstring(i % 101) + L"@10@" +
               (i % 5 == 0 ? L"NULL" : L"#00ffff") + L"@100@45000@1\n";
        return line;
    });
    return text;
}

const std::wstring& setText() {
    static const std::wstring text =
        record([](std::size_t i) -> const std::wstring& {
            static std::wstring line;
            line = L"*QVSetting" + std::to_wstring(i) + L"=Choice" + std::to_wstring(i * i) + L"\n";
            return line;
        }).substr(5);
    return text;
}

void splitBare(benchmark::State& state, const std::wstring& text, wchar_t separator) {
    for (auto _ : state) {
        std::vector<std::vector<std::wstring>> rows;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find(L'\n', at);
            std::vector<std::wstring>& row = rows.emplace_back();
            for (std::size_t from = at; from <= end;) {
                const std::size_t to = std::min(text.find(separator, from), end);
                row.push_back(text.substr(from, to - from));
                from = to + 1;
            }
            at = end + 1;
        }
        benchmark::DoNotOptimize(rows.data());
    }
}

void splitStream(benchmark::State& state, const std::wstring& text, wchar_t separator) {
    for (auto _ : state) {
        std::vector<std::vector<std::wstring>> rows;
        std::wistringstream lines(text);
        for (std::wstring line; std::getline(lines, line);) {
            std::vector<std::wstring>& row = rows.emplace_back();
            std::wistringstream fields(line);
            for (std::wstring field; std::getline(fields, field, separator);) {
                row.push_back(field);
            }
        }
        benchmark::DoNotOptimize(rows.data());
    }
}

template <typename Structure>
void read(benchmark::State& state, const std::wstring& text,
          bool (*convert)(std::wstring_view, const ModuleMemory&, Structure*&),
          void (ModuleMemory::*release)(Structure*) const) {
    const ModuleMemory memory;
    for (auto _ : state) {
        Structure* structure = nullptr;
        if (!convert(text, memory, structure) || structure->count != entryCountOfRecord) {
            state.SkipWithError("not read");
        }
        (memory.*release)(structure);
    }
}

void readViews(benchmark::State& state) {
    for (auto _ : state) {
        if (!readTrays(trayText())) {
            state.SkipWithError("not read");
        }
    }
}

void writeTrays(benchmark::State& state) {
    const ModuleMemory memory;
    SDMTrayInfoArray* trays = nullptr;
    GetTrayInfoToSDM(trayText(), memory, trays);
    for (auto _ : state) {
        if (TrayInfoToBuffer(trays).size() != trayText().size()) {
            state.SkipWithError("wrong text");
        }
    }
    memory.FreeTrays(trays);
}

} // namespace

int main(int argc, char** argv) {
    const auto add = [](const char* name, const auto& run) {
        benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMicrosecond);
    };
    add("trays-1000/bare-split", [](benchmark::State& state) { splitBare(state, trayText(), L'@'); });
    add("trays-1000/stream-split", [](benchmark::State& state) { splitStream(state, trayText(), L'@'); });
    add("trays-1000/torka",
        [](benchmark::State& state) { read(state, trayText(), GetTrayInfoToSDM, &ModuleMemory::FreeTrays); });
    add("trays-1000/torka-views", readViews);
    add("trays-1000/torka-written", writeTrays);
    add("toner-1000/bare-split", [](benchmark::State& state) { splitBare(state, tonerText(), L'@'); });
    add("toner-1000/torka", [](benchmark::State& state) {
        read(state, tonerText(), GetTonerInfoToSDM, &ModuleMemory::FreeToners);
    });
    add("set-1000/bare-split", [](benchmark::State& state) { splitBare(state, setText(), L'='); });
    add("set-1000/torka",
        [](benchmark::State& state) { read(state, setText(), PPDDefaultsToSDM, &ModuleMemory::FreeList); });
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
