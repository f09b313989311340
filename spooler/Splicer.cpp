// SPDX-License-Identifier: Apache-2.0
#include "spooler/Splicer.h"

#include "spooler/SpliceMachine.h"

#include <algorithm>

namespace torka {

Splicer::Splicer(const Ticket& ticket, ByteSink& sink)
    : machine(std::make_unique<SpliceMachine>(ticket, sink)) {}

Splicer::~Splicer() = default;

SpliceStatus Splicer::Write(std::string_view bytes) {
    machine->CountRead(bytes.size());
    // A piece of the new bytes completes the carried bytes; the other bytes are used in place, without a
    // copy.
    constexpr std::size_t piece = 4 * lineLimit;
    while (!bytes.empty() && machine->Status() == SpliceStatus::ok) {
        if (carried.empty()) {
            const std::size_t used = machine->Consume(bytes, false);
            if (machine->Status() == SpliceStatus::ok) {
                carried = bytes.substr(used);
            }
            break;
        }
        const std::size_t before = carried.size();
        const std::size_t taken = std::min(piece, bytes.size());
        carried.append(bytes.substr(0, taken));
        const std::size_t used = machine->Consume(carried, false);
        if (used >= before) {
            carried.clear();
            bytes.remove_prefix(used - before);
        } else {
            carried.erase(0, used);
            bytes.remove_prefix(taken);
        }
    }
    return machine->Status();
}

SpliceStatus Splicer::Finish() {
    if (machine->Status() == SpliceStatus::ok) {
        machine->Consume(carried, true);
        carried.clear();
        machine->Finish();
    }
    return machine->Status();
}

const SpliceReport& Splicer::Report() const { return machine->Report(); }

const std::string& Splicer::ErrorText() const { return machine->ErrorText(); }

} // namespace torka
