// SPDX-License-Identifier: Apache-2.0
#include "tests/dialog/DialogFixture.h"

#include <QCheckBox>
#include <QMenu>
#include <QProgressBar>
#include <QToolButton>
#include <algorithm>

// Uses the pane in Qt's own print dialog, with a private print server, as a person does.

namespace torka::tests {

namespace {

TEST_F(DialogTest, WhatIsSetReachesTheDeviceAndComesBackInTheNextDialog) {
    int job = 0;
    {
        const auto shown = Open();
        PrintDialog& dialog = *shown->dialog;
        ASSERT_TRUE(dialog.tab().hasPanel());
        Choose(dialog, "*QVStaple", "Saddle Stitch");
        auto* note = Field<QLineEdit>(dialog, "*Notes1");
        ASSERT_NE(note, nullptr);
        QTest::keyClicks(note, "Two proofs");
        ShowPage(dialog, "Paper and Job");
        Choose(dialog, "*MediaType", "Coated");
        dialog.findChild<QSpinBox*>("copies")->setValue(2);
        job = Print(dialog);
    }
    const std::string printed = sandbox->Printed(job);
    // Ghostscript draws the document that the device received: two copies of the sample's three pages.
    const std::filesystem::path kept = *sandbox / "printed" / (std::to_string(job) + ".ps");
    const CommandResult drawn = runCommand(
        {"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=inkcov", "-o", "-", kept.string()});
    EXPECT_EQ(drawn.status, 0) << drawn.output;
    EXPECT_EQ(std::ranges::count(drawn.output, '\n'), 6) << drawn.output;
    for (const char* expected : {"%%BeginFeature: *QVStaple Saddle", "%%BeginFeature: *MediaType Coated",
                                 "Two proofs", "/RMXsetStaple /Saddle"}) {
        EXPECT_NE(printed.find(expected), std::string::npos) << expected;
    }
    const auto shown = Open();
    EXPECT_EQ(Field<QComboBox>(*shown->dialog, "*QVStaple")->currentText(), "Saddle Stitch");
    EXPECT_EQ(Field<QLineEdit>(*shown->dialog, "*Notes1")->text(), "Two proofs");
}

TEST_F(DialogTest, PopupNotesAreAskedForAndComeBack) {
    AddQueue("Popup", samplePath("torka-production.ppd"));
    int job = 0;
    {
        const auto shown = Open("Popup");
        PrintDialog& dialog = *shown->dialog;
        AnswerPopupNotes([](QDialog& popup) { popup.reject(); });
        PressPrint(dialog);
        EXPECT_TRUE(dialog.isVisible()) << "cancelled, the dialog stays";
        AnswerPopupNotes([](QDialog& popup) {
            auto* line = popup.findChild<QLineEdit*>("popupJobNoteVal21");
            line->selectAll();
            QTest::keyClicks(line, "4711x08");
            popup.findChild<QCheckBox*>("popupJobNoteLast2")->setChecked(true);
            popup.accept();
        });
        PressPrint(dialog);
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
        QString error;
        dialog::Document document;
        ASSERT_TRUE(dialog::openDocument(QString::fromStdString(samplePath("brochure.ps")), document, error));
        job = dialog::submitDocument(document, dialog, error);
        dialog::JobProgress progress(dialog.queue(), job, document.name);
        QTimer::singleShot(20000, &progress, &QDialog::reject);
        EXPECT_EQ(progress.exec(), QDialog::Accepted);
    }
    EXPECT_NE(sandbox->Printed(job).find("471108"), std::string::npos);
    const auto shown = Open("Popup");
    QString account;
    AnswerPopupNotes([&](QDialog& popup) {
        account = popup.findChild<QLineEdit*>("popupJobNoteVal21")->text();
        popup.reject();
    });
    PressPrint(*shown->dialog);
    EXPECT_EQ(account, "471108");
}

TEST_F(DialogTest, AFieldThatBreaksARuleIsNamedAndThePersonMayPrintAllTheSame) {
    const auto shown = Open();
    PrintDialog& dialog = *shown->dialog;
    ShowPage(dialog, "Job Notes");
    auto* pages = Field<QLineEdit>(dialog, "*QVPageRanges");
    ASSERT_NE(pages, nullptr);
    pages->selectAll();
    QTest::keyClicks(pages, "1-5");
    ShowPage(dialog, "Finishing");
    QStringList named;
    const auto answer = [&](const char* button) {
        AnswerPopupNotes([&, button](QDialog& popup) {
            QTimer::singleShot(0, qApp, [&, button] {
                auto* broken = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                ASSERT_NE(broken, nullptr);
                auto* list = broken->findChild<QListWidget*>();
                named = list == nullptr ? QStringList() : QStringList(list->item(0)->text());
                const QList<QPushButton*> buttons = broken->findChildren<QPushButton*>();
                for (QPushButton* candidate : buttons) {
                    if (candidate->text().remove(QLatin1Char('&')) == QLatin1String(button)) {
                        candidate->click();
                        return;
                    }
                }
                ADD_FAILURE() << button;
                broken->reject();
            });
            popup.accept();
        });
        PressPrint(dialog);
    };
    answer("Go to Field");
    EXPECT_TRUE(named.value(0).startsWith("“Pages with Covers” must be items of two letters or digits"));
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.focusWidget(), Field<QLineEdit>(dialog, "*QVPageRanges"));
    answer("Print Anyway");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(DialogTest, GaugesShowTheControllersTraysAndToner) {
    AddQueue("Live", samplePath("torka-production.ppd"));
    const auto controllers = *sandbox / "root/etc/torka/controllers";
    std::filesystem::create_directories(controllers);
    std::filesystem::copy(samplePath("server-data"), controllers / "10.0.0.5",
                          std::filesystem::copy_options::recursive);
    const auto waitForGauges = [](PrintDialog& dialog) {
        auto* gauges = dialog.tab().findChild<QWidget*>("gauges");
        return gauges != nullptr && QTest::qWaitFor([&] { return gauges->isVisible(); }, 20000);
    };
    const auto told = [](PrintDialog& dialog) {
        QStringList names;
        for (const auto* bar : dialog.tab().findChild<QWidget*>("gauges")->findChildren<QProgressBar*>()) {
            names.append(bar->accessibleName());
        }
        return names;
    };
    {
        const auto shown = Open("Live");
        PrintDialog& dialog = *shown->dialog;
        EXPECT_FALSE(dialog.tab().findChild<QWidget*>("gauges")->isVisible());
        auto* box = dialog.tab().findChild<QCheckBox*>("bidiCheckBox");
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
        auto* sheet = qobject_cast<QDialog*>(QApplication::activeModalWidget()); // no address yet
        ASSERT_NE(sheet, nullptr);
        auto* address = sheet->findChild<QLineEdit*>("addressField");
        address->selectAll();
        QTest::keyClicks(address, "10.0.0.5");
        sheet->accept();
        ASSERT_TRUE(waitForGauges(dialog)) << sandbox->ErrorLog();
        EXPECT_TRUE(told(dialog).contains("Tray 1 – Plain paper, A4: 76 %")) << told(dialog).size();
        EXPECT_TRUE(told(dialog).contains("Magenta: 8 %, needs attention"));
        dialog.reject();
    }
    // With the stored state "on", server data are read after the first painting.
    const auto shown = Open("Live");
    EXPECT_TRUE(waitForGauges(*shown->dialog));
    EXPECT_EQ(told(*shown->dialog).size(), 12);
}

TEST_F(DialogTest, AConflictIsResolvedWithOneClickAndAPresetComesBack) {
    const auto shown = Open();
    PrintDialog& dialog = *shown->dialog;
    QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton); // drops the settings of earlier tests
    ShowPage(dialog, "Finishing");
    Choose(dialog, "*QVFoldStyle", "Half Fold");
    // The dialog's own tabs ignore the description's constraints.
    dialog.printer()->setPageSize(QPageSize(QPageSize::A5));
    dialog.tab().dialogSettingsChanged();
    QPushButton* resolve = Button(dialog, "Resolve");
    ASSERT_NE(resolve, nullptr);
    QTest::mouseClick(resolve, Qt::LeftButton);
    EXPECT_EQ(Field<QComboBox>(dialog, "*QVFoldStyle")->currentText(), "Off");
    QPushButton* undo = Button(dialog, "Undo");
    ASSERT_NE(undo, nullptr);
    QTest::mouseClick(undo, Qt::LeftButton);
    EXPECT_EQ(Field<QComboBox>(dialog, "*QVFoldStyle")->currentText(), "Half Fold");
    QTest::mouseClick(Button(dialog, "Resolve"), Qt::LeftButton);

    ShowPage(dialog, "Paper and Job");
    Choose(dialog, "*MediaType", "Labels");
    auto* presets = dialog.tab().findChild<QToolButton*>("presets");
    ASSERT_NE(presets, nullptr);
    const auto menu = [&](const char* start) {
        Q_EMIT presets->menu()->aboutToShow();
        for (QAction* action : presets->menu()->actions()) {
            if (action->text().remove(QLatin1Char('&')).startsWith(QLatin1String(start))) {
                action->trigger();
                return true;
            }
        }
        return false;
    };
    ASSERT_TRUE(menu("Save"));
    auto* name = dialog.tab().findChild<QDialog*>("presetNameDialog")->findChild<QLineEdit*>();
    name->selectAll();
    QTest::keyClicks(name, "Address labels");
    QTest::keyClick(name, Qt::Key_Return);
    QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton);
    ShowPage(dialog, "Paper and Job");
    EXPECT_EQ(Field<QComboBox>(dialog, "*MediaType")->currentText(), "Plain");
    ASSERT_TRUE(menu("Address labels"));
    EXPECT_EQ(Field<QComboBox>(dialog, "*MediaType")->currentText(), "Labels");
}

TEST_F(DialogTest, AForbiddenChoiceIsGreyAndSaysWhy) {
    const auto shown = Open();
    PrintDialog& dialog = *shown->dialog;
    ShowPage(dialog, "Finishing");
    auto* box = Field<QComboBox>(dialog, "*QVTrimSides");
    ASSERT_NE(box, nullptr);
    // The trimmer is not installed: the choice is disabled, and its tooltip names the reason.
    const int face = box->findText("Fore-edge", Qt::MatchContains);
    ASSERT_GE(face, 0);
    EXPECT_FALSE(box->itemData(face, Qt::ToolTipRole).toString().isEmpty());
    const QModelIndex index = box->model()->index(face, 0);
    EXPECT_FALSE(box->model()->flags(index).testFlag(Qt::ItemIsEnabled));
}

TEST_F(DialogTest, OtherQueuesHaveAPageThatSaysWhyAndStillPrint) {
    AddQueue("Defects", samplePath("torka-defects.ppd"));
    const auto shown = Open("Defects");
    PrintDialog& dialog = *shown->dialog;
    EXPECT_FALSE(dialog.tab().hasPanel());
    auto* text = qobject_cast<QLabel*>(dialog.tab().currentWidget());
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->text().contains("Defects"));
    EXPECT_NE(Print(dialog), 0);
}

TEST_F(DialogTest, ThePaneFollowsThePrinter) {
    AddQueue("Second", samplePath("torka-production.ppd"));
    AddQueue("Defects2", samplePath("torka-defects.ppd"));
    const auto shown = Open();
    PrintDialog& dialog = *shown->dialog;
    Choose(dialog, "*QVStaple", "Saddle Stitch");
    // Another queue with the same description takes over the settings. A queue without a pane takes none.
    ASSERT_TRUE(dialog.chooseQueue("Second"));
    QTest::qWait(50);
    ASSERT_TRUE(dialog.tab().hasPanel());
    EXPECT_EQ(Field<QComboBox>(dialog, "*QVStaple")->currentText(), "Saddle Stitch");
    ASSERT_TRUE(dialog.chooseQueue("Defects2"));
    EXPECT_FALSE(dialog.tab().hasPanel());
    ASSERT_TRUE(dialog.chooseQueue(productionQueue()));
    EXPECT_TRUE(dialog.tab().hasPanel());
}

TEST_F(DialogTest, ADialogOpenedAndClosedAgainAndAgainKeepsNothing) {
    // LeakSanitizer checks at the end. TORKA_DIALOG_ROUNDS sets more rounds, to watch the memory.
    const int rounds = std::max(5, qEnvironmentVariableIntValue("TORKA_DIALOG_ROUNDS"));
    for (int i = 0; i < rounds; ++i) {
        const auto shown = Open();
        ASSERT_TRUE(shown->dialog->tab().hasPanel());
        shown->dialog->reject();
    }
}

TEST_F(DialogTest, AStoppedQueueSaysWhyAndOnlyItsButtonCancelsTheJob) {
    AddQueue("Halted", samplePath("torka-production.ppd"));
    ASSERT_EQ(runCommand({"cupsdisable", "-r", "Out for repair", "Halted"}).status, 0);
    const auto shown = Open("Halted");
    PrintDialog& dialog = *shown->dialog;
    const auto* notice = dialog.findChild<QLabel*>("queueNotice");
    ASSERT_NE(notice, nullptr);
    EXPECT_TRUE(notice->isVisible());
    EXPECT_TRUE(notice->text().contains("is stopped") && notice->text().contains("Out for repair"))
        << notice->text().toStdString();
    AnswerPopupNotes([](QDialog& popup) { popup.accept(); });
    PressPrint(dialog);
    QString error;
    dialog::Document document;
    ASSERT_TRUE(dialog::openDocument(QString::fromStdString(samplePath("brochure.ps")), document, error));
    const int job = dialog::submitDocument(document, dialog, error);
    // Each row: how the person ends the window, and the job's state then.
    const struct {
        std::function<void(dialog::JobProgress&)> end;
        bool isLeftToPrint;
        int state;
    } rows[] = {
        {[](dialog::JobProgress& window) { QTest::keyClick(&window, Qt::Key_Escape); }, true,
         jobStatePending},
        {[](dialog::JobProgress& window) { window.close(); }, true, jobStatePending},
        {[](dialog::JobProgress& window) { window.findChild<QPushButton*>("cancelJob")->click(); }, false,
         jobStateCanceled},
    };
    for (const auto& row : rows) {
        dialog::JobProgress progress(dialog.queue(), job, document.name);
        progress.show();
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return progress.findChild<QLabel*>("jobDetail")->text().contains("Out for repair"); },
            20000));
        row.end(progress);
        EXPECT_FALSE(progress.isVisible());
        EXPECT_EQ(progress.isLeftToPrint(), row.isLeftToPrint);
        EXPECT_EQ(jobStatus(job).state, row.state);
    }
    EXPECT_TRUE(dialog.chooseQueue(productionQueue()));
    EXPECT_TRUE(notice->isHidden());
}

} // namespace

} // namespace torka::tests
