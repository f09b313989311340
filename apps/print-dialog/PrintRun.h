// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/print-dialog/Document.h"
#include "apps/print-dialog/PrintDialog.h"

#include <QString>

namespace torka::dialog {

// Sends the document to the dialog's queue with the pane's settings. REQUIRES: the pane has sent its ticket.
// Returns the number of the job, or 0 with a reason to show in `error`.
int submitDocument(const Document& document, PrintDialog& dialog, QString& error);

// Shows the dialog, prints the document when the person accepts, and follows the job to its end. Returns the
// program's exit status: 0 for a completed job, 1 for a job that ended otherwise, 2 when nothing could be
// printed, 3 when the person cancelled.
int runDialog(const Document& document, PrintDialog& dialog);

} // namespace torka::dialog
