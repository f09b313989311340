// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace torka::dialog {

// The file to print, in a format that the print server accepts.
struct Document {
    QString path;
    QString name; // shown to people; also the job's title
};

// Checks that the file is readable and that its content is PDF, PostScript or an image. False, with a reason
// to show in `error`, otherwise.
bool openDocument(const QString& path, Document& document, QString& error);

} // namespace torka::dialog
