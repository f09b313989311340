// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <string_view>

namespace torka {

// Job option of both command jobs: the name of their ticket, which is the last component of its path. When
// several jobs are sent at once, this option assigns a text to its name.
inline constexpr std::string_view ticketNameOption = "torka-ticket";

// Sends a job's ticket ahead of the job: first its file name by "Command_PSTempFileName", then the property
// list by "Command_WritePSTemp". The list's bytes travel as text in the non-lossy ASCII encoding. Returns the
// status of the first command that failed; kPMInvalidParameter without a name or list.
OSStatus sendTicketAhead(const PMPrinter& printer, const CFStringRef& fileName, const CFDataRef& list);

} // namespace torka
