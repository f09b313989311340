// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Spooler.h"

#include <string>
#include <string_view>
#include <vector>

// The settings of a queue that a person keeps for the jobs of all programs, as standing options. Never holds
// a note that is protected or masked, because options are public.

namespace torka {

class PPDXControl;
class ZANPPD;

// Whether an option of this name is a setting of the description, or an option of our own.
bool isStandingSetting(const ZANPPD& description, std::string_view name);

// Whether an option was a setting of an earlier description of the queue, as far as its name tells: it begins
// with "QV", "*" or "torka-", or is a note or the size that every description calls so.
bool isFormerSetting(const ZANPPD& description, std::string_view name);

// Those of the destination's standing options that are settings, or were settings of an earlier description.
Result<platform::StandingOptionList>
standingSettings(platform::Spooler& spooler, const std::string& destination, const ZANPPD& description);

// Keeps the settings in place of all that are kept, those of an earlier description included. A page size,
// orientation or collation that is kept stays, because programs choose these. Returns "" or why nothing was
// changed.
std::string replaceStandingSettings(platform::Spooler& spooler, const std::string& destination,
                                    const ZANPPD& description, const platform::StandingOptionList& settings);

} // namespace torka
