// SPDX-License-Identifier: Apache-2.0
#include "platform/Spooler.h"

#include "platform/Log.h"

namespace torka::platform {

namespace {

std::unique_ptr<Spooler>& spoolerSlot() {
    static std::unique_ptr<Spooler> slot;
    return slot;
}

} // namespace

Spooler::~Spooler() = default;

std::string Spooler::ChangeStandingOptions(const std::string& /*destination*/,
                                           const std::vector<std::string>& /*removed*/,
                                           const StandingOptionList& /*added*/) {
    return "the spooler keeps no options";
}

bool hasSpooler() { return spoolerSlot() != nullptr; }

Spooler& spooler() {
    TORKA_ASSERT(spoolerSlot() != nullptr, "platform::setSpooler was not called");
    return *spoolerSlot();
}

void setSpooler(std::unique_ptr<Spooler> newSpooler) { spoolerSlot() = std::move(newSpooler); }

} // namespace torka::platform
