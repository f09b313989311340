// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/QueueNotice.h"
#include "apps/dialog/ToolkitTexts.h"
#include "tests/dialog/DialogFixture.h"

#include <QCheckBox>
#include <QLocale>
#include <QProgressBar>
#include <QTranslator>
#include <algorithm>
#include <set>

// Uses the pane in Qt's own print dialog, with a private print server, as a person does.

namespace torka::tests {

namespace {

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
        const Answers person({{"popupJobNotes", Answers::Accept},
                              {"brokenNotes", [&](QDialog& broken) {
                                   const auto* list = broken.findChild<QListWidget*>();
                                   named =
                                       list == nullptr ? QStringList() : QStringList(list->item(0)->text());
                                   Answers::Click(broken, button);
                               }}});
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
    AddQueue("Live");
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

TEST_F(DialogTest, ThePaneFollowsThePrinter) {
    AddQueue("Second");
    AddQueue("Defects2", "torkasink:/", samplePath("torka-defects.ppd"));
    for (const char* instance : {"Production/draft", "Defects2/draft"}) {
        ASSERT_EQ(runCommand({"lpoptions", "-p", instance, "-o", "page-ranges=2-3", "-o", "copies=7"}).status,
                  0);
    }
    const auto shown = Open();
    PrintDialog& dialog = *shown->dialog;
    EXPECT_FALSE(dialog.tab().findChild<QLabel*>("printerName")->isVisible()) << "the dialog names the model";
    Choose(dialog, "*QVStaple", "Saddle Stitch");
    // Another queue with the same description takes over the settings. A queue without a pane takes none.
    ASSERT_TRUE(dialog.chooseQueue("Second"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.tab().hasPanel(); }));
    Paint(dialog);
    EXPECT_EQ(Field<QComboBox>(dialog, "*QVStaple")->currentText(), "Saddle Stitch");
    ASSERT_TRUE(dialog.chooseQueue("Defects2"));
    EXPECT_FALSE(dialog.tab().hasPanel());
    auto* text = qobject_cast<QLabel*>(dialog.tab().currentWidget());
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->text().contains("Defects2"));
    ASSERT_TRUE(dialog.chooseQueue(productionQueue));
    EXPECT_TRUE(dialog.tab().hasPanel());
    // A queue that has gone is no file.
    ASSERT_EQ(runCommand({"lpadmin", "-x", "Second"}).status, 0);
    ASSERT_TRUE(dialog.chooseQueue("Second"));
    EXPECT_TRUE(text->text().endsWith("the print server has no queue Second")) << text->text().toStdString();
    // An instance of a queue is that queue with options of its own.
    ASSERT_TRUE(dialog.chooseQueue("Production/draft"));
    EXPECT_EQ(dialog.queue(), productionQueue);
    EXPECT_TRUE(dialog.tab().hasPanel());
    ASSERT_TRUE(dialog.chooseQueue("Defects2/draft"));
    EXPECT_FALSE(dialog.tab().hasPanel());
    const int job = Print(dialog);
    EXPECT_EQ(PrintedLines(job, "%%Page: ").size(), 2U) << "pages 2 and 3, once";
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
    AddQueue("Halted");
    const std::string reason = "Out for repair until somebody has found the screw that fell behind the shelf";
    ASSERT_EQ(runCommand({"cupsdisable", "-r", reason, "Halted"}).status, 0);
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
        const auto* detail = progress.findChild<QLabel*>("jobDetail");
        EXPECT_TRUE(QTest::qWaitFor([&] { return detail->text().contains("Out for repair"); }, 20000));
        EXPECT_GE(detail->height(), detail->heightForWidth(detail->width())) << "it is cut off";
        row.end(progress);
        EXPECT_FALSE(progress.isVisible());
        EXPECT_EQ(progress.isLeftToPrint(), row.isLeftToPrint);
        EXPECT_EQ(jobStatus(job).state, row.state);
    }
    EXPECT_TRUE(dialog.chooseQueue(productionQueue));
    EXPECT_TRUE(notice->isHidden());
}

TEST_F(DialogTest, AnotherProgramsOptionsAreItsOwnAndTheLayoutIsThePersons) {
    QPrinter accepted;
    accepted.setPrinterName(productionQueue);
    dialog::setEngineOption(accepted, "number-up", "4");
    const QStringList program{"job-priority", "70",   "number-up",   "2",     "StapleIt", "True",
                              "page-set",     "even", "page-ranges", "2-3,7", "odd"};
    QStringList expected{"job-priority", "70", "page-set", "even", "page-ranges", "2-3,7", "number-up", "4"};
    EXPECT_EQ(dialog::guestJobOptions(program, accepted, {}), expected);
    const TemporaryFolder folder;
    const auto decided = dialog::DescribedOptions::Of(
        folder.Write("description.ppd", "*OpenUI *QVNUpPages: PickOne\n*DefaultQVNUpPages:  Two \r\n"
                                        "*OpenUI *QVStaple/Staple: PickOne\n*DefaultOther: A\n"
                                        "*OpenUI *QVPunch: PickOne\n*Default *QVPunch : Off\n"
                                        "*%ZANFloatRange *QVGamma/G(1): 0.5(4)0.1;2.2;\"9;9;9;9\"\n"));
    EXPECT_EQ(decided.defaults, (std::map<std::string, std::string>{
                                    {"QVNUpPages", "Two"}, {"QVPunch", "Off"}, {"QVStaple", ""}}));
    EXPECT_EQ(decided.numbers, (std::map<std::string, double>{{"QVGamma", 2.2}}));
    EXPECT_TRUE(decided.pagesPerSheet && !decided.sides);
    expected.resize(6);
    EXPECT_EQ(dialog::guestJobOptions(program, accepted, decided), expected);
}

TEST_F(DialogTest, AJobThatTheServerDoesNotKnowIsNotAskedForWithoutEnd) {
    dialog::JobProgress progress(productionQueue, 1'000'000, "brochure.ps");
    const auto* cancel = progress.findChild<QPushButton*>("cancelJob");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !cancel->isEnabled(); }, 20000)) << "there is nothing to cancel";
}

// Longer words make the dialog no wider. A process speaks one language; each costs the pictures of all pages.
TEST_F(DialogTest, HasTheSameWidthInLanguagesOfLongAndOfWideWords) {
    std::set<std::string> faces;
    std::filesystem::create_directories(*sandbox / "en_US/07.png"); // cannot be written
    for (const std::string language : {"en_US", "de_DE", "fr_FR", "ja_JP"}) {
        const std::filesystem::path folder = *sandbox / language;
        const CommandResult result = runCommand(
            {"env", "LC_ALL=" + language + ".UTF-8", TORKA_BINARY_DIR "/bin/torka-print-dialog", "--queue",
             productionQueue, "--pictures", folder.string(), samplePath("brochure.ps")});
        ASSERT_EQ(result.status, language == "en_US" ? 2 : 0) << result.errors;
        EXPECT_EQ(result.errors.ends_with("07.png cannot be written\n"), result.status == 2) << result.errors;
        for (const auto& picture : std::filesystem::directory_iterator(folder)) {
            EXPECT_TRUE(picture.is_directory() ||
                        QImage(QString::fromStdString(picture.path())).width() == 720)
                << picture.path();
        }
        faces.insert(readFile(folder / "01.png"));
    }
    EXPECT_EQ(faces.size(), 4U) << "each in its own words";
}

TEST(Documents, ThatCannotBePrintedAreRefusedWithTheReason) {
    for (const auto& [path, reason] :
         {std::pair<std::string, QString>{"/nowhere", QStringLiteral("no such file")},
          {"/", QStringLiteral("not a file")},
          {samplePath("README.md"), QStringLiteral("neither PDF nor PostScript nor an image")}}) {
        dialog::Document document;
        QString error;
        EXPECT_FALSE(dialog::openDocument(QString::fromStdString(path), document, error));
        EXPECT_TRUE(error.startsWith(QString::fromStdString(path)) && error.contains(reason))
            << error.toStdString();
    }
}

TEST(QueueNotices, NameWhatThePrinterReports) {
    const std::string goOn = "The printer cannot go on: ";
    for (const auto& [reasons, notice] :
         {std::pair(std::vector<CFTypeRef>{cfString("toner-empty-error"), cfString("paused")},
                    goOn + "the toner is used up."),
          {{cfString("toner-empty"), cfString("toner-empty-warning")}, goOn + "the toner is used up."},
          {{cfString("strange-error"), cfString("door\nopen-error")},
           goOn + "strange-error, door open-error."},
          {{cfString("strange-report"), cfString("odd-warning")}, ""}}) {
        const auto state = CFDictionaryCreate({{cfString("printer-state-reasons"), CFArrayCreate(reasons)}});
        EXPECT_EQ(dialog::queueNotice("Press", state).toStdString(), notice);
    }
}

TEST(ToolkitTexts, AreThoseOfThePersonsLanguage) {
    const auto cancel = [] { return QCoreApplication::translate("QPlatformTheme", "Cancel"); };
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    dialog::loadToolkitTexts();
    EXPECT_EQ(cancel(), QStringLiteral("Abbrechen"));
    QLocale::setDefault(QLocale::system());
    qDeleteAll(QCoreApplication::instance()->findChildren<QTranslator*>(Qt::FindDirectChildrenOnly));
    EXPECT_EQ(cancel(), QStringLiteral("Cancel"));
}

} // namespace

} // namespace torka::tests
