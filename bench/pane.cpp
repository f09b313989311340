// SPDX-License-Identifier: Apache-2.0
// Measures the pane's widgets without a display, and compares them with Qt's own print dialog in the same
// run. "firstOpening" runs in new processes that first open the plain dialog and then the pane, as a host
// does. It measures from the start of the work (for the pane: reading the description) until the events of
// the first painting are done: what a person waits for. The painting of the pane includes the picture.
// "click" sets a choice through the editor, sweeps the constraints and repaints. The window is wide enough
// for the picture of the job. "--pages" prints the memory that all pages of 800 options take, in MB.

#include "bench/FirstRun.h"
#include "pane/views/FieldPage.h"
#include "pane/views/JobPicture.h"
#include "tests/views/ViewFixture.h"

#include <QApplication>
#include <QListWidget>
#include <QPrintDialog>
#include <QPrinter>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

using namespace torka;
using namespace torka::tests;

namespace {

const std::string largeFile = std::string(TORKA_BENCH_PPDS) + "/large.ppd";

double millisecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

// Notes the painting of a widget.
class PaintWatch final : public QObject {
public:
    explicit PaintWatch(QWidget& widget) { widget.installEventFilter(this); }
    bool WasPainted() const { return wasPainted; }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        wasPainted = wasPainted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool wasPainted = false;
};

// Returns when the window stands on the screen, with `part` painted.
void paint(QWidget& window, QWidget& part) {
    const PaintWatch whole(window);
    const PaintWatch watched(part);
    window.show();
    do {
        QCoreApplication::processEvents();
        if (!part.isVisible()) {
            throw std::runtime_error("the window is too narrow for what is to be painted");
        }
    } while (!whole.WasPainted() || !watched.WasPainted());
}

double openPlain() {
    const auto begin = std::chrono::steady_clock::now();
    QPrinter printer;
    QPrintDialog dialog(&printer);
    paint(dialog, dialog);
    return millisecondsSince(begin);
}

void drawWide(ViewedPane& pane) {
    pane.Draw();
    pane.Root()->resize(1300, 700);
    paint(*pane.Root(), *pane.Widget().Picture());
}

double openPane(bool large) {
    const ScopedMemorySystem system;
    const auto begin = std::chrono::steady_clock::now();
    ViewedPane pane(large ? paneOfFile(largeFile) : samplePane());
    drawWide(pane);
    return millisecondsSince(begin);
}

// Of this process, in MB.
double residentMemory() {
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return static_cast<double>(pages * sysconf(_SC_PAGESIZE)) / 1e6;
}

double memoryOfPages() {
    const ScopedMemorySystem system;
    ViewedPane pane(paneOfFile(largeFile));
    drawWide(pane);
    const double before = residentMemory();
    QListWidget& pages = *pane.Widget().PageList();
    for (int row = 0; row < pages.count(); ++row) {
        pages.setCurrentRow(row);
        QCoreApplication::processEvents();
    }
    return residentMemory() - before;
}

void click(benchmark::State& state, bool large) {
    const ScopedMemorySystem system;
    ViewedPane pane(large ? paneOfFile(largeFile) : samplePane());
    drawWide(pane);
    CustomizePaneWidget& widget = pane.Widget();
    if (!widget.Picture()->isVisible()) {
        state.SkipWithError("the window shows no picture of the job");
    }
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
    qputenv("QT_LOGGING_RULES", "default.warning=false"); // the platform warns of every window
    QApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--first") == 0) {
        const std::string what = argv[2];
        const double plain = openPlain();
        std::printf("%.3f\n", what == "plain" ? plain : openPane(what == "large"));
        return 0;
    }
    if (argc == 2 && std::strcmp(argv[1], "--pages") == 0) {
        std::printf("%.1f\n", memoryOfPages());
        return 0;
    }
    const auto first = [](const char* name, const char* what) {
        benchmark::RegisterBenchmark(name, bench::firstRun, what)
            ->UseManualTime()
            ->Iterations(1)
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
