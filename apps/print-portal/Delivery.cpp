// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/Delivery.h"

#include "apps/common/OutsideText.h"
#include "apps/dialog/Document.h"
#include "apps/dialog/JobProgress.h"
#include "apps/dialog/Said.h"
#include "apps/dialog/Submission.h"
#include "apps/print-portal/DialogSession.h"

#include <QFile>
#include <QMessageBox>
#include <QSaveFile>
#include <cstdio>

namespace torka::portal {

namespace {

using dialog::said;

QString save(const QString& path, const QString& outputFile) {
    QFile document(path);
    QSaveFile file(outputFile);
    constexpr qint64 pieceSize = 1024 * 1024; // bytes
    bool isGood = document.open(QIODevice::ReadOnly) && file.open(QIODevice::WriteOnly);
    while (isGood && !document.atEnd()) {
        const QByteArray piece = document.read(pieceSize);
        isGood = !piece.isEmpty() && file.write(piece) == piece.size();
    }
    return isGood && file.commit()
               ? QString()
               : said("The file %1 cannot be written: %2").arg(outputFile, file.errorString());
}

} // namespace

QString deliver(const QString& path, const PreparedJob& job, const QString& title) {
    dialog::Document document;
    QString problem;
    if (!dialog::openDocument(path, document, problem)) {
        return said("The program sent something that is neither PDF nor PostScript nor an image.");
    }
    if (!job.outputFile.isEmpty()) {
        return save(path, job.outputFile);
    }
    document.name = title;
    const int number = dialog::submitDocument(document, job.queue, job.options, problem);
    if (number == 0) {
        return problem;
    }
    auto* progress = new dialog::JobProgress(job.queue, number, title);
    QObject::connect(progress, &QDialog::finished, progress, [progress] {
        std::fprintf(stderr, "%s\n", apps::printable(progress->outcome().toStdString()).c_str());
        whenLoopsHaveEnded(progress, [progress] { progress->deleteLater(); });
    });
    progress->show();
    return {};
}

bool changesPages(const PrintChoices& choices) {
    return choices.pages.value_or(Pages::All) != Pages::All ||
           choices.pageSet.value_or(PageSet::All) != PageSet::All || choices.copies.value_or(1) > 1 ||
           choices.reverse.value_or(false) || choices.pagesPerSheet.value_or(1) > 1;
}

void tellPerson(const QString& title, const QString& text) {
    std::fprintf(stderr, "%s: %s\n", apps::printable(title.toStdString()).c_str(),
                 apps::printable(text.toStdString()).c_str());
    auto* box = new QMessageBox(QMessageBox::Warning, said("Print"), QString(), QMessageBox::Ok);
    box->setTextFormat(Qt::PlainText); // before the text, which may look like markup
    box->setText(said("%1: %2").arg(title, text));
    box->setModal(false);
    QObject::connect(box, &QDialog::finished, box,
                     [box] { whenLoopsHaveEnded(box, [box] { box->deleteLater(); }); });
    box->show();
}

} // namespace torka::portal
