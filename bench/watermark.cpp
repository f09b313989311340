// SPDX-License-Identifier: Apache-2.0
// Compares a watermark's resource with the same text from the C library: a "%02X" for each byte, and one
// snprintf into a buffer of the job's limit.

#include "output/WatermarkEncoding.h"
#include "output/ZANWatermark.h"
#include "platform/Printing.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <string>

namespace {

using namespace torka;

struct Sample {
    const char *language, *font, *text;
    WatermarkFontKind kind;
};

const Sample samples[] = {
    {"English", "Helvetica-Bold", "CONFIDENTIAL \u2013 do not copy", WatermarkFontKind::latin},
    {"Russian", "Helvetica", "\u0421\u0435\u043a\u0440\u0435\u0442\u043d\u043e",
     WatermarkFontKind::latinExtended},
    {"Chinese", "AdobeSongStd-Light", "\u673a\u5bc6\u6587\u4ef6", WatermarkFontKind::chinese},
    {"Japanese", "Ryumin-Light-90ms-RKSJ-H", "\u793e\u5916\u79d8", WatermarkFontKind::japanese},
};

const Sample& sample(const benchmark::State& state) { return samples[state.range(0)]; }

std::string definition(const Sample& each) {
    return std::string("0,0,0,255,0,0,0,0,0,450,0,0,48,") + each.font + "," + each.text;
}

// Starts from the stored definition, as a print does.
void resourceOfDefinition(benchmark::State& state) {
    const std::string text = definition(sample(state));
    const std::string language = sample(state).language;
    std::size_t size = 0;
    for (auto _ : state) {
        ZANWatermark watermark(text.c_str());
        const std::string resource = watermark.Resource(language, kPMLandscape);
        size = resource.size();
        benchmark::DoNotOptimize(resource.data());
    }
    state.counters["bytes"] = static_cast<double>(size);
}
BENCHMARK(resourceOfDefinition)->DenseRange(0, 3);

void resourceWithSnprintf(benchmark::State& state) {
    const Sample& each = sample(state);
    ZANWatermark watermark(definition(each).c_str());
    std::string format = watermark.Resource(each.language, kPMLandscape);
    const std::string hex = watermark.GetWMTextInHex(each.language, each.font);
    for (std::size_t at = 0; (at = format.find('%', at)) != std::string::npos; at += 2) {
        format.insert(at, "%");
    }
    format.replace(format.find(hex), hex.size(), "%s");
    for (auto _ : state) {
        const std::string bytes = watermarkBytes(each.text, each.kind, each.font);
        char digits[1024];
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            std::snprintf(digits + i * 2, 3, "%02X", static_cast<unsigned char>(bytes[i]));
        }
        char buffer[5120];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        benchmark::DoNotOptimize(std::snprintf(buffer, sizeof buffer, format.c_str(), digits));
#pragma GCC diagnostic pop
        benchmark::DoNotOptimize(buffer);
    }
}
BENCHMARK(resourceWithSnprintf)->DenseRange(0, 3);

} // namespace

BENCHMARK_MAIN();
