#pragma once

#include <QString>

namespace torka::dialog {

// What is printed: a file that the print server takes as it is.
struct Document {
    QString path;
    QString name; // for people, and the job's title
};

// Checks that the file can be read and is PDF, PostScript or an image, by its content. False with the reason,
// for people, in `error`.
bool openDocument(const QString& path, Document& document, QString& error);

} // namespace torka::dialog
