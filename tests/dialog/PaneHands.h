// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/e2e/Sandbox.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <map>

// A person's hands in a print dialog with the pane, whichever program shows it.

namespace torka::tests {

// Answers each modal dialog whose name it knows, while it lives. Each dialog gets a moment to come.
class Answers {
public:
    using Person = std::function<void(QDialog&)>;
    explicit Answers(std::map<std::string, Person> byName)
        : persons(std::move(byName)) {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            const auto person =
                dialog == nullptr ? persons.end() : persons.find(dialog->objectName().toStdString());
            if (person != persons.end()) {
                person->second(*dialog);
            }
        });
        timer.start(5);
    }
    static void Accept(QDialog& dialog) { dialog.accept(); }
    // Clicks the button with this text.
    static void Click(QDialog& dialog, const char* text) {
        for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
            if (button->text().remove(QLatin1Char('&')) == QLatin1String(text)) {
                return button->click();
            }
        }
        ADD_FAILURE() << text;
        dialog.reject();
    }

private:
    std::map<std::string, Person> persons;
    QTimer timer;
};

class PaneHands : public SandboxTest {
protected:
    // The visible field of a setting.
    template <class Widget>
    static Widget* Field(QDialog& dialog, const char* keyword) {
        const QList<Widget*> fields = dialog.findChildren<Widget*>(QLatin1String(keyword));
        const auto found = std::ranges::find_if(fields, &QWidget::isVisible);
        return found == fields.end() ? nullptr : *found;
    }

    // Paints the dialog and does the work that waits for the first painting.
    static void Paint(QDialog& dialog) {
        dialog.grab();
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
        }
    }

    static void ShowPage(QDialog& dialog, const char* title) {
        auto* pages = dialog.findChild<QListWidget*>();
        ASSERT_NE(pages, nullptr);
        const QList<QListWidgetItem*> found = pages->findItems(QLatin1String(title), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << title;
        pages->setCurrentItem(found.front());
        QTest::qWait(20);
    }

    // The visible button of the pane with this text.
    static QPushButton* Button(QDialog& dialog, const char* text) {
        QTest::qWait(20);
        const QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
        const auto found = std::ranges::find_if(buttons, [text](QPushButton* button) {
            return button->isVisible() && button->text().remove(QLatin1Char('&')) == QLatin1String(text);
        });
        return found == buttons.end() ? nullptr : *found;
    }

    // Selects a choice by its first word, then downwards: a blank would open the list.
    static void Choose(QDialog& dialog, const char* keyword, const char* choice) {
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
    static void UseProperties(QDialog& dialog, const std::function<void(QDialog&)>& person,
                              int result = QDialog::Accepted) {
        QTimer::singleShot(0, qApp, [&] {
            auto* properties = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(properties, nullptr);
            person(*properties);
            properties->done(result);
        });
        dialog.findChild<QPushButton*>("properties")->click();
    }

    static void ChoosePageSize(QDialog& dialog, const char* name) {
        UseProperties(dialog, [name](QDialog& properties) {
            auto* sizes = properties.findChild<QComboBox*>("pageSizeCombo");
            const int at = sizes->findText(QLatin1String(name));
            ASSERT_GE(at, 0) << name;
            sizes->setCurrentIndex(at);
        });
    }

    static void PressPrint(QDialog& dialog) {
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
};

} // namespace torka::tests
