#pragma once

#include "bidi/JobPropertiesModule.h"

#include <cstdint>
#include <string>

namespace torka::jobproperties {

class Session;

// Shows the session's window until a person closes it, and writes what they decided: 0 accepted, 1 cancelled;
// the settings of a cancelled session may have been edited. Uses the host's QApplication, on whose thread it
// must be called, or makes one for as long as it runs. SDM_NOT_AVAILABLE, told on the standard error stream,
// when there is no display.
SDMRESULT openWindow(Session& session, const std::string& title, std::int32_t& result);

} // namespace torka::jobproperties
