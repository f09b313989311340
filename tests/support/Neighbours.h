// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

// Tests that need a machine with a neighbour on its wire, both with an Avahi daemon; see neighbours.sh.

namespace torka::tests {

// Whether this process runs on such a machine.
bool hasNeighbour();
// Runs the current test again on such a machine and tells its result; skips the test where none can be made.
// The neighbour announces `services`, each "TYPE PORT HOST NAME", HOST "-" for itself, and runs a program in
// Python, "" for none.
void runWithNeighbour(const std::vector<std::string>& services, const std::string& program = {});
// Ends this machine's daemon, and starts it again.
void endDaemon();
void startDaemon();
// The host names that the neighbour was asked for until now.
std::vector<std::string> namesAsked();

inline constexpr const char* neighbourAddress = "10.77.0.2";

} // namespace torka::tests
