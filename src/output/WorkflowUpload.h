// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

namespace torka {

class ZANPPD;

// Passes the job to the workflow server through its client library, loaded at run time. Does nothing without
// the library, or when the description has no "*QVUserName". Mode 2 creates a new job on the server and
// stores its identifier in the "*QVKestrelJobId" and "*QVKSNewJobID" controls.
//
// The library's calls, as used here (all texts NUL-terminated UTF-8; jobIdentifier has workflowTextSize
// bytes):
//   int KSOpenSession(address, user, password, language, void** session, int zero)
//   int KSCreateNewJobEx(session, workflowFolder, jobName, xmlPath, char* jobIdentifier)
//   int KSCloseSession(session)
void UploadKestrelXMLFiles(ZANPPD& description, const PMPrintSettings& settings, int mode);

inline constexpr std::size_t workflowTextSize = 256;

} // namespace torka
