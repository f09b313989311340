#pragma once

#include "platform/Alert.h"

#include <functional>
#include <vector>

namespace torka::platform {

// Alerts that no one sees: each is recorded and answered as told. Not thread-safe.
class MemoryAlerts final : public AlertPresenter {
public:
    AlertButton RunModal(const AlertText& text) override {
        shown.push_back(text);
        return onShow ? onShow(text) : answer;
    }

    std::vector<AlertText> shown;
    AlertButton answer = AlertButton::defaultButton;
    // When set, gives the answer instead.
    std::function<AlertButton(const AlertText&)> onShow;
};

} // namespace torka::platform
