// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace torka::dialog {

class PrintDialog;

// Shows the dialog, writes pictures of it into a folder and closes it: the dialog as it opens, then every
// page of the pane. False, with the reason in `error`, when a picture cannot be written.
bool takePictures(PrintDialog& dialog, const QString& folder, QString& error);

} // namespace torka::dialog
