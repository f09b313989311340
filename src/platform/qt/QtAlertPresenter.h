#pragma once

#include "platform/Alert.h"

namespace torka::platform {

// Alerts as message boxes over the active window. Needs a QApplication. Texts are shown as they are, never as
// markup.
class QtAlertPresenter final : public AlertPresenter {
public:
    AlertButton RunModal(const AlertText& text) override;
};

} // namespace torka::platform
