// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <QString>
#include <string>

// Why a job may have to wait in its queue, in words.

namespace torka::dialog {

// What the queue's attributes (PMPrinterCopyState) say: that it is stopped or takes no jobs, with the
// server's message, and what the printer reports. "" for a queue that prints. Texts of the server are shown
// without control characters.
QString queueNotice(const std::string& queue, const CFDictionaryRef& state);

// How many jobs the queue holds; 0 when the server does not tell.
int queuedJobs(const CFDictionaryRef& state);

// The present attributes of the queue; null when the server does not answer.
CFDictionaryRef queueState(const std::string& queue);

} // namespace torka::dialog
