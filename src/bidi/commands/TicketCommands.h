#pragma once

#include "platform/Printing.h"

#include <string_view>

namespace torka {

// Job option of both command jobs: the name of the ticket that they carry, the last component of its path.
// Several jobs may be on their way at once; only this tells which text belongs to which name.
inline constexpr std::string_view ticketNameOption = "torka-ticket";

// Sends a job's ticket ahead of the job: its file name by "Command_PSTempFileName", then the property list,
// as the text that its bytes are in the non-lossy ASCII encoding, by "Command_WritePSTemp". The status of the
// first that failed; kPMInvalidParameter without a name or list.
OSStatus sendTicketAhead(const PMPrinter& printer, const CFStringRef& fileName, const CFDataRef& list);

} // namespace torka
