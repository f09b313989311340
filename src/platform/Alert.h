#pragma once

#include <memory>
#include <string>

// Modal alerts: a text, one or two buttons, and the wait for a person's answer.
//
// One presenter serves the process. It is chosen once at start with setAlerts; until then the first alert
// fails. Texts are UTF-8, already in the person's language.

namespace torka::platform {

struct AlertText {
    std::string title;
    std::string informative;
    std::string defaultButton;
    std::string alternateButton; // empty: the alert has one button
};

enum class AlertButton { defaultButton, alternateButton };

class AlertPresenter {
public:
    AlertPresenter() = default;
    AlertPresenter(const AlertPresenter&) = delete;
    AlertPresenter& operator=(const AlertPresenter&) = delete;
    virtual ~AlertPresenter();
    // Shows the alert and waits for its answer. One that is closed otherwise than by a button counts as
    // answered by its alternate button, if it has one.
    virtual AlertButton RunModal(const AlertText& text) = 0;
};

AlertPresenter& alerts();
void setAlerts(std::unique_ptr<AlertPresenter> presenter);
bool hasAlerts();

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
