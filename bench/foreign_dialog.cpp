// SPDX-License-Identifier: Apache-2.0
// Measures what the plug-in costs a program of others, beside the same program without it: the start of a
// program that never prints, with its private memory, and the first print dialog from its making to its first
// painting. The start counts processor time since the process began. Every case is a new process; the queue
// of the sample description is the default of a private print server.

#include "bench/FirstRun.h"

#include <QApplication>
#include <QPrintDialog>
#include <QPrinter>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// Kilobytes that no other process shares.
double privateMemory() {
    std::ifstream file("/proc/self/smaps_rollup");
    double sum = 0;
    for (std::string word; file >> word;) {
        double value = 0;
        if (word.starts_with("Private_") && file >> value) {
            sum += value;
        }
    }
    return sum;
}

int runFirst(int argc, char** argv, const std::string& what) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "default.warning=false"); // the platform warns of every window
    qputenv("QT_PLUGIN_PATH", TORKA_QT_PLUGINS);
    qputenv("QT_QPA_GENERIC_PLUGINS", what.ends_with("/with") ? "torka" : "");
    auto begin = std::chrono::steady_clock::now();
    const auto print = [&] {
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
        std::printf("%.3f\n", taken.count());
    };
    const QApplication application(argc, argv);
    if (!what.starts_with("dialog")) {
        // A start reads files of others, too: only the processor's time tells the plug-in's share.
        constexpr double perMillisecond = CLOCKS_PER_SEC / 1000.0;
        std::printf("%.3f\n", what.starts_with("memory")
                                  ? privateMemory()
                                  : static_cast<double>(std::clock()) / perMillisecond);
        return 0;
    }
    begin = std::chrono::steady_clock::now();
    QPrinter printer;
    QPrintDialog dialog(&printer);
    dialog.show();
    dialog.grab(); // what the pane does after the first painting waits for the event loop
    if (what != "dialogAndPane/with") {
        print();
        return 0;
    }
    for (int i = 0; i < 100 && !dialog.property("torkaPane").toBool(); ++i) {
        QCoreApplication::processEvents();
    }
    print();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--first") {
        return runFirst(argc, argv, argv[2]);
    }
    if (std::getenv("TORKA_SANDBOX") == nullptr) {
        std::vector<char*> command{const_cast<char*>("cups-sandbox"), const_cast<char*>("run")};
        command.insert(command.end(), argv, argv + argc);
        command.push_back(nullptr);
        execv(TORKA_SOURCE_DIR "/scripts/cups-sandbox", command.data());
        return 2;
    }
    if (std::system("torka queue add Production torkasink:/ " TORKA_SOURCE_DIR // NOLINT(cert-env33-c)
                    "/samples/torka-production.ppd >&2 && lpadmin -d Production") != 0) {
        return 2;
    }
    // Memory stands in the place of milliseconds: a run of it takes as many as it has kilobytes.
    for (const char* what : {"start/without", "start/with", "memory/without", "memory/with", "dialog/without",
                             "dialog/with", "dialogAndPane/with"}) {
        benchmark::RegisterBenchmark(what, torka::bench::firstRun, what)
            ->UseManualTime()
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
