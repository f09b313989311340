// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Alert.h"

#include <functional>
#include <vector>

namespace torka::platform {

// Records each alert and answers it as set, without showing it. Not thread-safe.
class MemoryAlerts final : public AlertPresenter {
public:
    AlertButton RunModal(const AlertText& text) override {
        shown.push_back(text);
        return onShow ? onShow(text) : answer;
    }

    std::vector<AlertText> shown;
    AlertButton answer = AlertButton::defaultButton;
    // When set, supplies the answer.
    std::function<AlertButton(const AlertText&)> onShow;
};

} // namespace torka::platform
