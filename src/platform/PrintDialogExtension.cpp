// SPDX-License-Identifier: Apache-2.0
#include "platform/PrintDialogExtension.h"

namespace torka::platform {

View::~View() = default;
PDEPlugInCallback::~PDEPlugInCallback() = default;
PDEPanel::~PDEPanel() = default;
PDEPlugIn::~PDEPlugIn() = default;

} // namespace torka::platform
