// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/JobProgress.h"
#include "apps/dialog/Submission.h"
#include "platform/posix/PosixBundle.h"
#include "tests/dialog/PaneHands.h"

#include <QLabel>
#include <QSpinBox>

// The pane in Qt's own print dialog, with a private print server.

namespace torka::tests {

using dialog::PrintDialog;

inline constexpr const char* productionQueue = "Production";

class DialogTest : public PaneHands {
protected:
    void SetUp() override {
        PaneHands::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        bundle = *openBundle(TORKA_BUNDLE);
        plugIn = *bundle->InstantiatePrincipalClass();
        ASSERT_TRUE(plugIn->initWithBundle(bundle));
        AddQueue(productionQueue);
    }

    // A visible dialog with the pane in front.
    struct Shown {
        QPrinter printer;
        std::unique_ptr<PrintDialog> dialog;
        PrintDialog* operator->() const { return dialog.get(); }
    };
    std::unique_ptr<Shown> Open(const std::string& queue = productionQueue) {
        auto shown = std::make_unique<Shown>();
        shown->printer.setPrinterName(QString::fromStdString(queue));
        shown->dialog = std::make_unique<PrintDialog>(shown->printer, *plugIn, "brochure.ps");
        EXPECT_TRUE((*shown)->chooseQueue(queue));
        (*shown)->show();
        (*shown)->showPane();
        Paint(*shown->dialog);
        return shown;
    }

    // Presses the print button, answers a question about conflicts, and follows the job to its end. Returns
    // the job's number.
    int Print(PrintDialog& dialog, const char* aboutConflicts = "Cancel") {
        {
            const Answers person(
                {{"popupJobNotes", Answers::Accept}, {"conflicts", [aboutConflicts](QDialog& question) {
                                                          Answers::Click(question, aboutConflicts);
                                                      }}});
            PressPrint(dialog);
        }
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
        QString error;
        dialog::Document document;
        EXPECT_TRUE(dialog::openDocument(QString::fromStdString(samplePath("brochure.ps")), document, error));
        const int job = dialog::submitDocument(document, dialog, error);
        EXPECT_NE(job, 0) << error.toStdString();
        dialog::JobProgress progress(dialog.queue(), job, document.name);
        QTimer::singleShot(20000, &progress, &QDialog::reject); // a job that never ends fails the test
        EXPECT_EQ(progress.exec(), QDialog::Accepted) << progress.status().message;
        EXPECT_EQ(progress.status().state, jobStateCompleted);
        return job;
    }

    BundleRef bundle;
    std::unique_ptr<PDEPlugIn> plugIn;
};

} // namespace torka::tests
