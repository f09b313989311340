// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"

#include <cstdint>
#include <string>

namespace torka::jobproperties {

class Session;

// Shows the session's window until the user closes it. `result` gets 0 for accepted, 1 for cancelled; the
// settings of a cancelled session may have been edited. Uses the host's QApplication, on whose thread it must
// be called, or makes one for the duration. Returns SDM_NOT_AVAILABLE, with a message on the standard error
// stream, when there is no display.
SDMRESULT openWindow(Session& session, const std::string& title, std::int32_t& result);

} // namespace torka::jobproperties
