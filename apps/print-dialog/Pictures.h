#pragma once

#include <QString>

namespace torka::dialog {

class PrintDialog;

// Shows the dialog without waiting for a person and writes pictures of it into a folder: the dialog as it
// opens, and every page of the pane. False with the reason in `error`.
bool takePictures(PrintDialog& dialog, const QString& folder, QString& error);

} // namespace torka::dialog
