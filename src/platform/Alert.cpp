// SPDX-License-Identifier: Apache-2.0
#include "platform/Alert.h"

#include "platform/Log.h"

namespace torka::platform {

namespace {

std::unique_ptr<AlertPresenter>& presenterSlot() {
    static std::unique_ptr<AlertPresenter> slot;
    return slot;
}

} // namespace

AlertPresenter::~AlertPresenter() = default;

AlertPresenter& alerts() {
    TORKA_ASSERT(presenterSlot() != nullptr, "platform::setAlerts was not called");
    return *presenterSlot();
}

void setAlerts(std::unique_ptr<AlertPresenter> presenter) { presenterSlot() = std::move(presenter); }

bool hasAlerts() { return presenterSlot() != nullptr; }

} // namespace torka::platform
