// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/JobProgress.h"
#include "apps/dialog/Submission.h"
#include "platform/cups/CupsSpooler.h"
#include "platform/posix/PosixBundle.h"
#include "platform/posix/PosixSystem.h"
#include "tests/apps/Tool.h"
#include "tests/e2e/Sandbox.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

// The pane in Qt's own print dialog, with a private print server.

namespace torka::tests {

using dialog::PrintDialog;

inline const std::string& productionQueue() {
    static const std::string name = "Production";
    return name;
}

class DialogTest : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        PosixSystemOptions options;
        options.rootFromEnvironment = true;
        setSystem(std::make_unique<PosixSystem>(options));
        setSpooler(std::make_unique<CupsSpooler>());
        bundle = *openBundle(TORKA_BUNDLE);
        plugIn = *bundle->InstantiatePrincipalClass();
        ASSERT_TRUE(plugIn->initWithBundle(bundle));
        AddQueue(productionQueue(), samplePath("torka-production.ppd"));
    }

    static void AddQueue(const std::string& name, const std::string& description) {
        const CommandResult result = runTool({"queue", "add", "--force", name, "torkasink:/", description});
        ASSERT_EQ(result.status, 0) << result.errors;
    }

    // A visible dialog with the pane in front.
    struct Shown {
        QPrinter printer;
        std::unique_ptr<PrintDialog> dialog;
        PrintDialog* operator->() const { return dialog.get(); }
    };
    std::unique_ptr<Shown> Open(const std::string& queue = productionQueue()) {
        auto shown = std::make_unique<Shown>();
        shown->printer.setPrinterName(QString::fromStdString(queue));
        shown->dialog = std::make_unique<PrintDialog>(shown->printer, *plugIn, "brochure.ps");
        EXPECT_TRUE((*shown)->chooseQueue(queue));
        (*shown)->show();
        (*shown)->showPane();
        QTest::qWait(100); // for the work deferred until after the first painting
        return shown;
    }

    // The visible field of a setting.
    template <class Widget>
    static Widget* Field(PrintDialog& dialog, const char* keyword) {
        const QList<Widget*> fields = dialog.tab().findChildren<Widget*>(QLatin1String(keyword));
        for (Widget* field : fields) {
            if (field->isVisible()) {
                return field;
            }
        }
        return nullptr;
    }

    static void ShowPage(PrintDialog& dialog, const char* title) {
        auto* pages = dialog.tab().findChild<QListWidget*>();
        ASSERT_NE(pages, nullptr);
        const QList<QListWidgetItem*> found = pages->findItems(QLatin1String(title), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << title;
        pages->setCurrentItem(found.front());
        QTest::qWait(20);
    }

    // The visible button of the pane with this text.
    static QPushButton* Button(PrintDialog& dialog, const char* text) {
        QTest::qWait(20);
        const QList<QPushButton*> buttons = dialog.tab().findChildren<QPushButton*>();
        for (QPushButton* button : buttons) {
            if (button->isVisible() && button->text().remove(QLatin1Char('&')) == QLatin1String(text)) {
                return button;
            }
        }
        return nullptr;
    }

    // Selects a choice by its first word, then downwards: a blank would open the list.
    static void Choose(PrintDialog& dialog, const char* keyword, const char* choice) {
        auto* box = Field<QComboBox>(dialog, keyword);
        ASSERT_NE(box, nullptr) << keyword;
        box->setFocus();
        QTest::keyClicks(box, QString::fromLatin1(choice).section(QLatin1Char(' '), 0, 0));
        for (int i = 0; i < box->count() && box->currentText() != QLatin1String(choice); ++i) {
            QTest::keyClick(box, Qt::Key_Down);
        }
        const int row = box->findText(QLatin1String(choice));
        ASSERT_EQ(box->currentText().toStdString(), choice)
            << box->itemData(row, Qt::ToolTipRole).toString().toStdString();
        QTest::qWait(10);
    }

    // Opens the properties of Qt's dialog, lets the person work in them and closes them.
    static void UseProperties(PrintDialog& dialog, const std::function<void(QDialog&)>& person,
                              int result = QDialog::Accepted) {
        QTimer::singleShot(0, qApp, [&] {
            auto* properties = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(properties, nullptr);
            person(*properties);
            properties->done(result);
        });
        dialog.findChild<QPushButton*>("properties")->click();
    }

    static void ChoosePageSize(PrintDialog& dialog, const char* name) {
        UseProperties(dialog, [name](QDialog& properties) {
            auto* sizes = properties.findChild<QComboBox*>("pageSizeCombo");
            const int at = sizes->findText(QLatin1String(name));
            ASSERT_GE(at, 0) << name;
            sizes->setCurrentIndex(at);
        });
    }

    static void PressPrint(PrintDialog& dialog) {
        auto* buttons = dialog.findChild<QDialogButtonBox*>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
    }

    // Calls `person` with the dialog for the job's notes, if it appears.
    static void AnswerPopupNotes(const std::function<void(QDialog&)>& person) {
        QTimer::singleShot(0, qApp, [person] {
            auto* popup = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (popup != nullptr && popup->objectName() == QLatin1String("popupJobNotes")) {
                person(*popup);
            } else if (popup != nullptr && popup->objectName() == QLatin1String("conflicts")) {
                ADD_FAILURE() << "settings in conflict";
                popup->reject();
            }
        });
    }

    // Presses the print button and follows the job to its end. Returns the job's number.
    int Print(PrintDialog& dialog) {
        AnswerPopupNotes([](QDialog& popup) { popup.accept(); });
        PressPrint(dialog);
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
