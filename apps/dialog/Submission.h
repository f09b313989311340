// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/Document.h"
#include "apps/dialog/PrintDialog.h"

#include <QString>
#include <string>

namespace torka::dialog {

// The job options that tell the queue's filter of the pane's settings: the ticket's path, and the choices
// that a ticket has no room for. Empty without a pane. REQUIRES: the pane has sent its ticket.
JobOptions ticketOptions(const PaneTab& tab);

// The options of a job with the dialog's settings. REQUIRES: the pane has sent its ticket.
JobOptions jobOptions(PrintDialog& dialog);

// Sends the document with these options. Returns the number of the job, or 0 with a reason to show in
// `error`.
int submitDocument(const Document& document, const std::string& queue, const JobOptions& options,
                   QString& error);

// Sends the document to the dialog's queue with the pane's settings. REQUIRES: the pane has sent its ticket.
// Returns the number of the job, or 0 with a reason to show in `error`.
int submitDocument(const Document& document, PrintDialog& dialog, QString& error);

} // namespace torka::dialog
