// SPDX-License-Identifier: Apache-2.0
#include "platform/System.h"

#include "platform/Log.h"

namespace torka::platform {

namespace {

std::unique_ptr<System>& systemSlot() {
    static std::unique_ptr<System> slot;
    return slot;
}

} // namespace

System::~System() = default;

System& system() {
    TORKA_ASSERT(systemSlot() != nullptr, "platform::setSystem was not called");
    return *systemSlot();
}

void setSystem(std::unique_ptr<System> newSystem) { systemSlot() = std::move(newSystem); }

bool hasSystem() { return systemSlot() != nullptr; }

} // namespace torka::platform
