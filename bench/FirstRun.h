// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <unistd.h>

namespace torka::bench {

// Measures work that is done for the first time, without warm caches of the process: starts this program
// again with `--first WHAT` for each iteration and takes the milliseconds that it prints.
inline void firstRun(benchmark::State& state, const std::string& what) {
    char program[4096] = {}; // resolved here: in the child, /proc/self/exe would name the shell
    if (readlink("/proc/self/exe", program, sizeof program - 1) <= 0) {
        state.SkipWithError("the program does not find itself");
        return;
    }
    const std::string command = "'" + std::string(program) + "' --first " + what;
    for (auto _ : state) {
        FILE* child = popen(command.c_str(), "r");
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

} // namespace torka::bench
