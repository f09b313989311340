// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/Document.h"
#include "apps/dialog/PrintDialog.h"

namespace torka::dialog {

// Shows the dialog, prints the document when the person accepts, and follows the job to its end. Returns the
// program's exit status: 0 for a completed job, 1 for a job that ended otherwise, 2 when nothing could be
// printed, 3 when the person cancelled.
int runDialog(const Document& document, PrintDialog& dialog);

} // namespace torka::dialog
