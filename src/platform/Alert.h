// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

// Modal alerts: a text with one or two buttons, and the wait for the person's answer.
//
// One presenter serves the process. REQUIRES: setAlerts is called at start, before the first alert. Texts are
// UTF-8, in the person's language.

namespace torka::platform {

struct AlertText {
    std::string title;
    std::string informative;
    std::string defaultButton;
    std::string alternateButton; // empty when the alert has one button
};

enum class AlertButton { defaultButton, alternateButton };

class AlertPresenter {
public:
    AlertPresenter() = default;
    AlertPresenter(const AlertPresenter&) = delete;
    AlertPresenter& operator=(const AlertPresenter&) = delete;
    virtual ~AlertPresenter();
    // Shows the alert and waits for the answer. An alert that is closed without a button counts as answered
    // by its alternate button, if it has one.
    virtual AlertButton RunModal(const AlertText& text) = 0;
};

AlertPresenter& alerts();
void setAlerts(std::unique_ptr<AlertPresenter> presenter);
bool hasAlerts();

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
