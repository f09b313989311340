// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/PaneAttachment.h"

#include <QObject>
#include <QPrinter>
#include <memory>

class QDialogButtonBox;
class QPrintDialog;

namespace torka::guest {

// The pane in the print dialog of a program that knows nothing of it.
//
// The tab stands in the dialog before it is shown. The pane fills it after the dialog's first painting, so
// that the dialog appears as fast as without it, but before any input reaches the program and before the
// dialog hides.
//
// Hears the dialog's Print button before its accept(), so that the pane's questions come while the
// dialog is open. Writes the job's options into the program's QPrinter when the dialog hides: then the
// dialog's result is known, and no slot of the program has run. Belongs to the dialog and dies with it.
//
// The program's QPrinter stays as it is until the dialog is accepted, and stays untouched for a queue without
// a pane.
class GuestDialog final : public QObject {
    Q_OBJECT

public:
    static bool Understands(const QPrintDialog& dialog);
    // Gives the plug-in, which outlives every dialog; null when it cannot be loaded.
    using PlugInLoader = PDEPlugIn* (*)();
    // REQUIRES: Understands(dialog). Does nothing for a dialog that has a pane.
    static void Attach(QPrintDialog& dialog, PlugInLoader loader);
    ~GuestDialog() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    GuestDialog(QPrintDialog& dialog, QDialogButtonBox& buttons, PlugInLoader loader);
    void Begin();
    void PressPrint(QDialogButtonBox& buttons);
    void DialogHides();
    void WriteJobOptions();
    void HoldJob();
    void Tell(const QString& text);

    QPrintDialog& dialog;
    // What the dialog's own tabs show. A question of the panel may outlive the dialog and still reads them.
    std::shared_ptr<QPrinter> choices = std::make_shared<QPrinter>();
    std::unique_ptr<dialog::PaneAttachment> pane;
    PlugInLoader loadPlugIn;
    bool hasBegun = false; // the tab is filled
    bool isAsking = false;
    bool mayPrint = false; // the pane has sent its ticket
    bool isClosed = false; // the dialog has hidden
};

} // namespace torka::guest
