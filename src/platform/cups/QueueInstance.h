// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cups/CupsQueue.h"

#include <string>

namespace torka::platform {

// The options that an instance of a queue ("QUEUE/INSTANCE", lpoptions(1)) has and the queue itself has not,
// or has with another value. Empty for an unknown one.
JobOptions instanceOptions(const std::string& queue, const std::string& instance);

} // namespace torka::platform
