// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "apps/torka/QueueFinding.h"
#include "platform/cups/CupsQueue.h"

#include <string>
#include <vector>

// Checks the printers of a class. The class has the description and the address list of its first printer,
// and any of its printers may get a job.

namespace torka::tool {

// Whether a queue, whose state it is, takes and prints jobs.
QueueFinding stateFinding(const std::string& queue, const platform::QueueState& state);

// `members` are the printers of the class in their order. `description` is the first one's; null without a
// usable one.
std::vector<QueueFinding> checkClass(const std::string& name, const std::vector<std::string>& members,
                                     const ZANPPD* description);

} // namespace torka::tool
