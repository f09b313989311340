// SPDX-License-Identifier: Apache-2.0
#include "tests/dialog/PaneHands.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintEngine>
#include <QPrinter>
#include <QPrinterInfo>
#include <QSpinBox>
#include <QTabWidget>
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <locale>
#include <memory>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

// The pane in the print dialog of a program that never heard of it: this one. The plug-in alone brings it.

namespace torka::tests {

namespace {

constexpr auto engineOptions = static_cast<QPrintEngine::PrintEnginePropertyKey>(0xfe00);

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

    static QStringList OptionsOf(const QPrinter& printer) {
        return printer.printEngine()->property(engineOptions).toStringList();
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
        QTest::qWait(100); // for the work deferred until after the first painting
    }

    static void ChooseQueue(QDialog& dialog, const char* queue) {
        auto* printers = dialog.findChild<QComboBox*>("printers");
        ASSERT_GE(printers->findText(QLatin1String(queue)), 0);
        printers->setCurrentText(QLatin1String(queue));
    }

    // What every program does with an accepted dialog.
    static void PrintPage(QPrinter& printer) {
        QPainter painter;
        ASSERT_TRUE(painter.begin(&printer));
        painter.drawText(300, 300, "A page of the program");
    }

    // The document of the next job at the device; the number counts on from the last one.
    std::string NextPrinted(int before) const {
        std::string document;
        WaitUntil([&] { return !(document = sandbox->Printed(LastJob())).empty() && LastJob() > before; });
        return document;
    }
    static int LastJob() {
        int last = 0;
        const auto numbers = [&](const std::string& which) {
            std::istringstream lines(runCommand({"lpstat", "-W", which, "-o"}).output);
            for (std::string line; std::getline(lines, line);) {
                last = std::max(last, std::atoi(line.c_str() + line.find('-') + 1));
            }
        };
        numbers("all");
        return last;
    }
};

TEST_F(ForeignDialogTest, ExecAndOpenPrintWithThePanesSettings) {
    for (const bool opens : {false, true}) {
        SCOPED_TRACE(opens ? "open(), with a slot that prints" : "exec()");
        QPrinter printer;
        QPrintDialog dialog(&printer);
        const int before = LastJob();
        const auto person = [&] {
            EXPECT_EQ(QPrinterInfo::defaultPrinterName(), "Production");
            ShowPane(dialog);
            ASSERT_GE(Tab(dialog), 0);
            Choose(dialog, "*QVStaple", "Saddle Stitch");
            auto* note = Field<QLineEdit>(dialog, "*Notes1");
            ASSERT_NE(note, nullptr);
            note->setText({});
            QTest::keyClicks(note, "Two proofs");
            ShowPage(dialog, "Layout");
            Choose(dialog, "*QVDuplex", "Turn on Short Edge");
            dialog.findChild<QSpinBox*>("copies")->setValue(2);
            AnswerPopupNotes([](QDialog& popup) { popup.accept(); });
            PressPrint(dialog);
        };
        if (opens) {
            int printed = 0;
            QObject::connect(&dialog, qOverload<QPrinter*>(&QPrintDialog::accepted),
                             [&](QPrinter* accepted) { PrintPage(*accepted), ++printed; });
            dialog.open();
            person();
            EXPECT_EQ(printed, 1);
        } else {
            QTimer::singleShot(0, &dialog, person);
            QTimer::singleShot(30000, &dialog, &QDialog::reject); // a dialog that stays open fails the test
            ASSERT_EQ(dialog.exec(), QDialog::Accepted);
            PrintPage(printer);
        }
        EXPECT_EQ(printer.copyCount(), 2);
        EXPECT_FALSE(OptionsOf(printer).join(' ').contains("Two proofs"));
        const std::string document = NextPrinted(before);
        for (const char* expected : {"/RMXsetStaple /Saddle", "Two proofs", "*QVDuplex ShortEdge"}) {
            EXPECT_NE(document.find(expected), std::string::npos) << expected;
        }
        std::ofstream("/tmp/w-plugin/dev.ps") << document;
    }
}

} // namespace

} // namespace torka::tests
