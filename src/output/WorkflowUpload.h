#pragma once

#include "platform/Printing.h"

namespace torka {

class ZANPPD;

// Hands the job to the workflow server through its client, a library loaded at run time. Does nothing without
// it or when the description has no "*QVUserName". With mode 2 a new job is made on the server, and its
// identifier is stored in the "*QVKestrelJobId" and "*QVKSNewJobID" controls.
//
// The library's calls, as used here (all texts NUL-terminated UTF-8):
//   int KSOpenSession(address, user, password, language, void** session, int zero)
//   int KSCreateNewJobEx(session, workflowFolder, jobName, xmlPath, char* jobIdentifier)   room:
//   workflowTextSize bytes int KSCloseSession(session)
void UploadKestrelXMLFiles(ZANPPD& description, const PMPrintSettings& settings, int mode);

inline constexpr std::size_t workflowTextSize = 256;

} // namespace torka
