// SPDX-License-Identifier: Apache-2.0
// Measures the pane's widgets without a display, and compares them with Qt's own print dialog in the same
// run. "firstOpening" runs in new processes that first open the plain dialog and then the pane, as a host
// does. It measures from the start of the work (for the pane: reading the description) to the first painting.
// "click" sets a choice through the editor, sweeps the constraints and repaints.

#include "pane/views/FieldPage.h"
#include "tests/views/ViewFixture.h"

#include <QApplication>
#include <QPrintDialog>
#include <QPrinter>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

using namespace torka;
using namespace torka::tests;

namespace {

const std::string largeFile = std::string(TORKA_BENCH_PPDS) + "/large.ppd";

double millisecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void paint(QWidget& window) {
    window.show();
    QCoreApplication::processEvents();
    window.grab();
}

double openPlain() {
    const auto begin = std::chrono::steady_clock::now();
    QPrinter printer;
    QPrintDialog dialog(&printer);
    paint(dialog);
    return millisecondsSince(begin);
}

double openPane(bool large) {
    const ScopedMemorySystem system;
    const auto begin = std::chrono::steady_clock::now();
    ViewedPane pane(large ? paneOfFile(largeFile) : samplePane());
    pane.Draw();
    paint(*pane.Root());
    return millisecondsSince(begin);
}

// Measures the first opening of `what` in a new process.
void firstOpening(benchmark::State& state, const char* what) {
    const std::string command = "/proc/self/exe"; // resolved here: in the child it would name the shell
    char program[4096] = {};
    if (readlink(command.c_str(), program, sizeof program - 1) <= 0) {
        state.SkipWithError("the program does not find itself");
        return;
    }
    for (auto _ : state) {
        FILE* child = popen(("'" + std::string(program) + "' --first " + what + " 2>/dev/null").c_str(), "r");
        double milliseconds = 0;
        if (child == nullptr || std::fscanf(child, "%lf", &milliseconds) != 1) {
            state.SkipWithError("no answer");
        }
        if (child != nullptr) {
            pclose(child);
        }
        state.SetIterationTime(milliseconds / 1000);
    }
}

void click(benchmark::State& state, bool large) {
    const ScopedMemorySystem system;
    ViewedPane pane(large ? paneOfFile(largeFile) : samplePane());
    pane.Draw();
    paint(*pane.Root());
    CustomizePaneWidget& widget = pane.Widget();
    widget.ShowPage(large ? "TrkPage1" : "QVFinishingPage");
    QCoreApplication::processEvents();
    PPDXControl& control = *pane.Editor().FindControl(large ? "*TrkOption0003" : "*QVStaple");
    const auto choices = choicesOf(control);
    std::size_t next = 0;
    for (auto _ : state) {
        next = (next + 1) % choices.size();
        pane.Editor().SetValue(control, choices[next].keyword);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    state.counters["options"] = static_cast<double>(pane.Editor().Catalog().FieldCount());
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--first") == 0) {
        const std::string what = argv[2];
        const double plain = openPlain();
        std::printf("%.3f\n", what == "plain" ? plain : openPane(what == "large"));
        return 0;
    }
    const auto first = [](const char* name, const char* what) {
        benchmark::RegisterBenchmark(name, firstOpening, what)
            ->UseManualTime()
            ->Iterations(7)
            ->Unit(benchmark::kMillisecond);
    };
    first("firstOpening/plainDialog/qt", "plain");
    first("firstOpening/sample/torka", "sample");
    first("firstOpening/large/torka", "large");
    benchmark::RegisterBenchmark("click/sample/torka", click, false)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("click/large/torka", click, true)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
