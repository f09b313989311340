// SPDX-License-Identifier: Apache-2.0
#include "tests/dialog/PaneHands.h"

#include <QDebug>
#include <QGroupBox>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintEngine>
#include <QPrinter>
#include <QPrinterInfo>
#include <QSpinBox>
#include <QTabWidget>
#include <clocale>
#include <csignal>
#include <sstream>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

// The pane in the print dialog of a program that never heard of it: this one. The plug-in alone brings it.

namespace torka::tests {

namespace {

constexpr auto engineOptions = static_cast<QPrintEngine::PrintEnginePropertyKey>(0xfe00);

QStringList optionsOf(const QPrinter& printer) {
    return printer.printEngine()->property(engineOptions).toStringList();
}

class ForeignDialogTest : public PaneHands {
protected:
    void SetUp() override {
        PaneHands::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        AddQueue("Production");
        AddQueue("Second");
        // A queue of somebody else: the same device with a description that offers no pane.
        const CommandResult plain = runCommand(
            {"lpadmin", "-p", "Plain", "-E", "-v", "torkasink:/", "-m", "drv:///sample.drv/generic.ppd"});
        ASSERT_EQ(plain.status, 0) << plain.errors;
        ASSERT_EQ(runCommand({"lpadmin", "-d", "Production"}).status, 0);
    }

    // The index of the pane's tab among those of its tab widget; -1 without one that people see.
    static int Tab(const QDialog& dialog) {
        for (const auto* tabs : dialog.findChildren<QTabWidget*>()) {
            for (int at = 0; at < tabs->count(); ++at) {
                if (tabs->widget(at)->inherits("torka::dialog::PaneTab") && tabs->isTabVisible(at)) {
                    return at;
                }
            }
        }
        return -1;
    }

    static void ShowPane(QDialog& dialog) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.property("torkaPane").toBool(); }));
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text().contains(QLatin1String(">>"))) {
                button->click();
            }
        }
        for (auto* tabs : dialog.findChildren<QTabWidget*>()) {
            if (tabs->isVisible() && Tab(dialog) >= 0) {
                tabs->setCurrentIndex(Tab(dialog));
            }
        }
        Paint(dialog);
    }

    static void ChooseQueue(QDialog& dialog, const char* queue) {
        auto* printers = dialog.findChild<QComboBox*>("printers");
        ASSERT_GE(printers->findText(QLatin1String(queue)), 0);
        printers->setCurrentText(QLatin1String(queue));
    }

    // What every program does with an accepted dialog.
    static void PrintPage(QPrinter& printer, int pages = 1) {
        QPainter painter;
        ASSERT_TRUE(painter.begin(&printer));
        for (int page = 1; page <= pages; ++page) {
            painter.drawText(300, 300, QStringLiteral("Page %1 of the program").arg(page));
            if (page < pages) {
                ASSERT_TRUE(printer.newPage());
            }
        }
    }

    // The document of the next job at the device.
    std::string NextPrinted(int before) const {
        std::string document;
        WaitUntil([&] { return !(document = sandbox->Printed(LastJob())).empty() && LastJob() > before; });
        return document;
    }
};

TEST_F(ForeignDialogTest, PrintsOnceWithThePanesSettingsAndAgainWithoutTheNotes) {
    QPrinter printer;
    QPrintDialog dialog(&printer);
    const int before = LastJob();
    int printed = 0;
    QObject::connect(&dialog, qOverload<QPrinter*>(&QPrintDialog::accepted),
                     [&](QPrinter* accepted) { PrintPage(*accepted), ++printed; });
    QTimer::singleShot(0, &dialog, [&] {
        EXPECT_EQ(QPrinterInfo::defaultPrinterName(), "Production");
        ShowPane(dialog);
        ASSERT_GE(Tab(dialog), 0);
        Choose(dialog, "*QVStaple", "Saddle Stitch");
        QTest::keyClicks(Field<QLineEdit>(dialog, "*Notes1"), "Two proofs");
        ShowPage(dialog, "Layout");
        Choose(dialog, "*QVDuplex", "Turn on Short Edge");
        Field<QDoubleSpinBox>(dialog, "*QVScale")->setValue(50);
        ShowPage(dialog, "Paper and Job");
        Choose(dialog, "*QVPrintSize", "Custom Size");
        Field<QDoubleSpinBox>(dialog, "*CustomPrintSize")->setValue(200); // millimetres wide
        dialog.findChild<QSpinBox*>("copies")->setValue(2);
        AnswerPopupNotes([](QDialog& popup) { popup.accept(); });
        PressPrint(dialog);
    });
    QTimer::singleShot(30000, &dialog, &QDialog::reject); // a dialog that stays open fails the test
    ASSERT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(printed, 1);
    EXPECT_EQ(printer.copyCount(), 2);
    EXPECT_FALSE(optionsOf(printer).join(' ').contains("Two proofs"));
    const std::string document = NextPrinted(before);
    for (const char* expected : {"/RMXsetStaple /Saddle", "Two proofs", "*QVDuplex ShortEdge"}) {
        EXPECT_NE(document.find(expected), std::string::npos) << expected;
    }
    // A second job of the same dialog has the settings by its options, and the notes not at all.
    const int first = LastJob();
    PrintPage(printer);
    const std::string second = NextPrinted(first);
    for (const char* expected : {"/RMXsetStaple /Saddle", "*QVScale 50", "*CustomPrintSize 567.00 420.00"}) {
        EXPECT_NE(document.find(expected), std::string::npos) << expected;
        EXPECT_NE(second.find(expected), std::string::npos) << expected;
    }
    EXPECT_EQ(second.find("Two proofs"), std::string::npos);
    for (const std::string* each : {&document, &second}) { // nothing comes twice
        const std::string_view staple = "%%BeginFeature: *QVStaple";
        EXPECT_EQ(each->find(staple), each->rfind(staple));
    }
}

// What the program's printer holds: nothing of it may change before the person prints.
std::string stateOf(const QPrinter& printer) {
    QString text;
    QDebug(&text) << printer.printerName() << printer.pageLayout() << printer.copyCount()
                  << printer.collateCopies() << printer.duplex() << optionsOf(printer);
    return text.toStdString();
}

TEST_F(ForeignDialogTest, ACancelledDialogAndAForeignQueueAreAsWithoutThePane) {
    QPrinter printer;
    printer.setPageSize(QPageSize(QPageSize::A5));
    const std::string before = stateOf(printer);
    QPrintDialog dialog(&printer);
    auto* mine = new QWidget;
    mine->setWindowTitle("Mine");
    dialog.setOptionTabs({mine});
    for (int round = 0; round < 2; ++round) { // the same dialog twice
        dialog.open();
        ShowPane(dialog);
        Choose(dialog, "*QVStaple", round == 0 ? "Saddle Stitch" : "Off");
        ChoosePageSize(dialog, "A3");
        dialog.findChild<QSpinBox*>("copies")->setValue(3);
        EXPECT_TRUE(dialog.findChild<QGroupBox*>("colorMode")->isHidden());
        dialog.reject();
        EXPECT_EQ(stateOf(printer), before);
    }
    dialog.open();
    ShowPane(dialog);
    for (const auto& [queue, hasPane] : {std::pair{"Plain", false}, {"Second", true}, {"Production", true}}) {
        ChooseQueue(dialog, queue);
        EXPECT_EQ(Tab(dialog) >= 0, hasPane) << queue;
        for (const char* field : {"colorMode", "duplex"}) {
            EXPECT_EQ(dialog.findChild<QWidget*>(field)->isHidden(), hasPane) << queue << field;
        }
        UseProperties(dialog, [hasPane = hasPane](QDialog& window) {
            auto* tabs = window.findChild<QTabWidget*>("tabs");
            EXPECT_EQ(tabs->isTabVisible(tabs->indexOf(window.findChild<QWidget*>("cupsPropertiesPage"))),
                      !hasPane);
            EXPECT_EQ(window.findChild<QWidget*>("pagesPerSheetButtonGroup")->isHidden(), hasPane);
        });
    }
    const auto* tabs = qobject_cast<QTabWidget*>(mine->parentWidget()->parentWidget());
    ASSERT_NE(tabs, nullptr);
    EXPECT_TRUE(tabs->isTabVisible(tabs->indexOf(mine))); // the program's own tab is still there
    ChooseQueue(dialog, "Plain");
    PressPrint(dialog);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(optionsOf(printer).join(' ').contains("PSData"));
}

// The dialog without the plug-in is the reference.
TEST_F(ForeignDialogTest, WhoTouchesNothingInThePanePrintsTheSamePages) {
    std::string description = readFile(samplePath("torka-production.ppd"));
    for (std::size_t at = 0; (at = description.find("*QVNUpPages", at)) != std::string::npos; ++at) {
        description.replace(at, 5, "*QVKp"); // the dialog decides the pages per sheet
    }
    const TemporaryFolder folder;
    AddQueue("Sheets", "torkasink:/", folder.Write("sheets.ppd", description));
    ASSERT_EQ(runCommand({"lpoptions", "-p", "Second/draft", "-o", "QVStaple=Saddle"}).status, 0);
    const auto click = [](QWidget& in, const char* name) {
        in.findChild<QAbstractButton*>(QLatin1String(name))->click();
    };
    const auto choose = [](QWidget& in, const char* name, int index) {
        auto* list = in.findChild<QComboBox*>(QLatin1String(name));
        list->setCurrentIndex(index);
        Q_EMIT list->activated(index);
    };
    const auto type = [&](QDialog& dialog, const char* pages) {
        click(dialog, "pagesRadioButton");
        dialog.findChild<QLineEdit*>("pagesLineEdit")->setText(QLatin1String(pages));
    };
    const auto sheets = [&](QDialog& properties) {
        choose(properties, "pagesPerSheetCombo", 2);
        choose(properties, "pagesPerSheetLayoutCombo", 3);
        click(properties, "landscape");
    };
    const struct {
        const char* name;
        const char* queue;
        QPageLayout::Orientation orientation; // of the program
        std::function<void(QDialog&)> person;
    } rows[] = {
        {"landscape", "Production", QPageLayout::Landscape, [](QDialog&) {}},
        {"ranges", "Production", QPageLayout::Portrait, [&](QDialog& dialog) { type(dialog, "2-3,7"); }},
        {"odd pages of a range", "Production", QPageLayout::Portrait,
         [&](QDialog& dialog) {
             type(dialog, "2-5");
             choose(dialog, "pageSetCombo", 1);
         }},
        {"another queue", "Second", QPageLayout::Landscape,
         [&](QDialog& dialog) { ChooseQueue(dialog, "Production"); }},
        {"an instance", "Production", QPageLayout::Portrait,
         [&](QDialog& dialog) { ChooseQueue(dialog, "Second/draft"); }},
        {"an order on the sheet", "Sheets", QPageLayout::Portrait,
         [&](QDialog& dialog) { UseProperties(dialog, sheets); }},
        {"properties of another queue", "Sheets", QPageLayout::Portrait,
         [&](QDialog& dialog) {
             UseProperties(dialog, sheets);
             ChooseQueue(dialog, "Production");
             ChooseQueue(dialog, "Sheets");
         }},
        {"a dialog shown again", "Production", QPageLayout::Portrait,
         [&](QDialog& dialog) {
             UseProperties(dialog, [&](QDialog& properties) { click(properties, "landscape"); });
             ChoosePageSize(dialog, "A3");
             dialog.reject();
             dialog.open();
             Paint(dialog);
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::string reference;
        for (const bool hasPane : {false, true}) {
            QPrinter printer;
            printer.setPrinterName(QLatin1String(row.queue));
            printer.setPageOrientation(row.orientation);
            QPrintDialog dialog(&printer);
            if (!hasPane) {
                dialog.setProperty("torkaPane", false); // it has one, as far as the plug-in knows
            }
            dialog.setMinMax(1, 8);
            dialog.setFromTo(1, 8);
            const int before = LastJob();
            dialog.open();
            Paint(dialog);
            row.person(dialog);
            const bool isInstance =
                std::string_view(row.name) == "an instance"; // has settings of its own, no pane
            EXPECT_EQ(Tab(dialog) >= 0, hasPane && !isInstance);
            const Answers person({{"popupJobNotes", Answers::Accept}});
            PressPrint(dialog);
            ASSERT_EQ(dialog.result(), QDialog::Accepted);
            PrintPage(printer, 8);
            const std::string printed = NextPrinted(before);
            ASSERT_FALSE(printed.empty());
            EXPECT_EQ(printed.find("%%BeginFeature: *QVStaple Saddle") != std::string::npos, isInstance);
            const std::string pages = Drawn(LastJob(), "pgmraw");
            if (!hasPane) {
                reference = pages;
            }
            EXPECT_TRUE(pages == reference) << pages.size() << " " << reference.size();
        }
    }
}

TEST_F(ForeignDialogTest, AConflictIsAskedForWhileTheDialogIsOpen) {
    QPrinter printer;
    for (const auto& [answer, prints] :
         {std::pair{"Cancel", false}, {"Resolve", true}, {"Print Anyway", true}}) {
        SCOPED_TRACE(answer);
        QPrintDialog dialog(&printer);
        const int before = LastJob();
        int slots = 0;
        bool accepts = false; // the program itself
        QObject::connect(&dialog, qOverload<>(&QDialog::accepted), [&] { ++slots; });
        dialog.open();
        ShowPane(dialog);
        QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton);
        ShowPage(dialog, "Finishing");
        Choose(dialog, "*QVFoldStyle", "Half Fold");
        ChoosePageSize(dialog, "A5");
        const Answers person({{"popupJobNotes", Answers::Accept},
                              {"conflicts", [&, text = answer](QDialog& question) {
                                   EXPECT_EQ(dialog.isVisible(), !accepts);
                                   EXPECT_EQ(question.findChild<QListWidget*>()->item(0)->text(),
                                             "“Page Size: A5” does not go together with “Fold: Half Fold”.");
                                   Answers::Click(question, text);
                               }}});
        PressPrint(dialog);
        EXPECT_EQ(slots, prints ? 1 : 0);
        EXPECT_EQ(dialog.isVisible(), !prints);
        // A program may accept the dialog itself. What the pane then refuses waits in the queue.
        if (!prints) {
            accepts = true;
            dialog.accept();
            EXPECT_TRUE(optionsOf(printer).contains("indefinite"));
            QTest::qWait(1);
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (auto* told = qobject_cast<QMessageBox*>(window); told != nullptr) {
                    EXPECT_TRUE(told->text().contains("waits in the queue")) << told->text().toStdString();
                    told->close();
                }
            }
        } else {
            EXPECT_TRUE(optionsOf(printer).join(' ').contains("PSData"));
            PrintPage(printer);
            EXPECT_EQ(NextPrinted(before).find("*QVFoldStyle Half") != std::string::npos,
                      answer == std::string("Print Anyway"));
        }
    }
}

TEST_F(ForeignDialogTest, ADialogThatIsAcceptedAtOncePrintsWithTheSettingsToo) {
    for (const bool byKey : {false, true}) {
        QPrinter printer;
        QPrintDialog dialog(&printer);
        dialog.open();                                              // not painted yet
        const Answers person({{"popupJobNotes", Answers::Accept}}); // it comes some time after the pane
        byKey ? QTest::keyClick(&dialog, Qt::Key_Return) : dialog.accept();
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_TRUE(optionsOf(printer).join(' ').contains("PSData")) << byKey;
    }
}

TEST_F(ForeignDialogTest, DialogsComeGoAndDieInAnyOrder) {
    QPrinter printer, other;
    auto first = std::make_unique<QPrintDialog>(&printer);
    auto second = std::make_unique<QPrintDialog>(&other);
    first->show();
    second->show();
    ShowPane(*first);
    ShowPane(*second);
    EXPECT_GE(Tab(*first), 0);
    EXPECT_GE(Tab(*second), 0);
    first.reset(); // while it is open
    Choose(*second, "*QVStaple", "Saddle Stitch");
    AnswerPopupNotes([&](QDialog&) { second.reset(); }); // the program deletes it while the pane asks
    PressPrint(*second);
    second.reset();
    auto owned = std::make_unique<QPrinter>();
    auto late = std::make_unique<QPrintDialog>(owned.get());
    late->show();
    ShowPane(*late);
    late->hide();
    owned.reset(); // before the dialog
    late.reset();
}

// What a program shares with everything in its process.
std::string processState() {
    std::ostringstream state;
    state << std::setlocale(LC_ALL, nullptr) << ' ' << prctl(PR_GET_DUMPABLE) << ' ';
    const mode_t mask = umask(022);
    umask(mask);
    state << mask;
    for (int number = 1; number < 32; ++number) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        state << ' ' << reinterpret_cast<std::uintptr_t>(action.sa_handler);
    }
    for (char** variable = environ; *variable != nullptr; ++variable) {
        state << '\n' << *variable;
    }
    return state.str();
}

TEST_F(ForeignDialogTest, TheProcessStaysTheProgramsOwn) {
    // libcups ignores SIGPIPE from its first connection on, which Qt makes for every program that prints.
    QPrinterInfo::availablePrinterNames();
    std::signal(SIGPIPE, SIG_DFL);
    const std::string before = processState();
    QPrinter printer;
    QPrintDialog dialog(&printer);
    dialog.open();
    ShowPane(dialog);
    AnswerPopupNotes([](QDialog& popup) { popup.accept(); });
    PressPrint(dialog);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(processState(), before);
}

} // namespace

} // namespace torka::tests
