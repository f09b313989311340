#pragma once

#include "platform/Printing.h"

namespace torka {

// Sends a job's ticket ahead of the job: its file name by "Command_PSTempFileName", then the property list,
// as the text that its bytes are in the non-lossy ASCII encoding, by "Command_WritePSTemp". The queue's
// filter pairs the two, so nothing comes between them. The status of the first that failed;
// kPMInvalidParameter without a name or list.
OSStatus sendTicketAhead(const PMPrinter& printer, const CFStringRef& fileName, const CFDataRef& list);

} // namespace torka
