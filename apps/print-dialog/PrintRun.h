#pragma once

#include "apps/print-dialog/Document.h"
#include "apps/print-dialog/PrintDialog.h"

#include <QString>

namespace torka::dialog {

// Sends the document to the dialog's queue with the pane's settings: the number of the job; 0 with the
// reason, for people, in `error`. The pane has sent its ticket already.
int submitDocument(const Document& document, PrintDialog& dialog, QString& error);

// Shows the dialog, prints what the person accepts, and follows the job to its end. The program's exit
// status: 0 for a job that completed, 1 for one that ended otherwise, 2 when nothing could be printed, 3 when
// the person cancelled.
int runDialog(const Document& document, PrintDialog& dialog);

} // namespace torka::dialog
