// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/PrintDialog.h"
#include "apps/print-portal/settings/PrintChoices.h"
#include "platform/cups/CupsQueue.h"

#include <QObject>
#include <QPrinter>

class QDialog;
class QDoubleSpinBox;

// Brings a program's choices into the print dialog, and the person's choices out of it.

namespace torka::portal {

// Whether the program names GTK's file destination.
bool asksForFile(const PrintChoices& choices);

// What Qt's dialog takes from the QPrinter when it is made.
void presetPrinter(QPrinter& printer, const PrintChoices& choices);

// The choices that show only in the dialog's properties: pages per sheet, and the printer's options of a
// queue without a pane. Qt makes the properties when the person opens them first, so they are brought in
// then. If the person never opens them, they go along with the job.
class PropertyPresets final : public QObject {
    Q_OBJECT

public:
    PropertyPresets(dialog::PrintDialog& dialog, const PrintChoices& choices);

    // Adds what the properties would hold, had they been opened. Names in `problems` what the queue does not
    // have.
    void Complete(platform::JobOptions& options, QStringList& problems) const;
    // The pages per sheet of a file, which the program draws. Qt's own code forgets them.
    void TakePagesPerSheet(PrintChoices& chosen) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Fill(const QDialog& properties);
    void FillOptions(const QDialog& properties);

    dialog::PrintDialog& dialog;
    PrintChoices choices;
    bool isFilled = false;   // the present properties, which Qt makes anew for another printer
    bool isAccepted = false; // the person has accepted them since they were filled
};

// What the dialog takes once it is made: queue or file, page, selection of pages. A queue that the dialog
// does not list leaves it at its default. `mayWriteAnywhere` says whether the program may propose the file's
// folder.
void presetDialog(dialog::PrintDialog& dialog, const PrintChoices& choices, bool mayWriteAnywhere);

// Offers lists of pages and the even or odd ones for a file, too. Qt does so only for the print server, but
// here the program applies them.
void offerPagesForFiles(dialog::PrintDialog& dialog);

// Adds the scale, in percent, to the dialog: the program draws its pages with it, but no field of Qt's shows
// it.
QDoubleSpinBox* addScale(dialog::PrintDialog& dialog, const PrintChoices& choices);

// The choices of an accepted dialog. Those that it does not show, such as margins, stay as received.
PrintChoices chosenIn(dialog::PrintDialog& dialog, const PrintChoices& received,
                      const platform::JobOptions& options);

// The job's options without those that a program has drawn already.
platform::JobOptions withoutDrawn(platform::JobOptions options);

} // namespace torka::portal
