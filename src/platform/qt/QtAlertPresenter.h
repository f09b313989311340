// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Alert.h"

namespace torka::platform {

// Shows alerts as message boxes over the active window. Needs a QApplication. Shows texts as plain text,
// never as markup.
class QtAlertPresenter final : public AlertPresenter {
public:
    AlertButton RunModal(const AlertText& text) override;
};

} // namespace torka::platform
