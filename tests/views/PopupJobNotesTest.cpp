// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PopupJobNotes.h"
#include "pane/data/PanelState.h"
#include "tests/views/ViewFixture.h"

// Tests the popup job-note dialog and the gauges with real widgets.

namespace torka::tests {
namespace {

using testing::ElementsAre;

struct Asked {
    explicit Asked(const std::string& notes) {
        resetPopupJobNotes();
        viewed = std::make_unique<ViewedPane>(std::make_unique<Pane>(paneHeader + notes));
        for (const char* kind : {"popupJobNoteVal", "popupJobNoteSec"}) {
            for (char row = '1'; row <= '5'; ++row) {
                for (char column = '1'; column <= row; ++column) {
                    viewed->interface->popupJobNotes().observeControlTextDidChange(std::string(kind) + row +
                                                                                   column);
                }
            }
        }
    }
    ~Asked() { resetPopupJobNotes(); }

    // Asks for the notes and lets `person` use the dialog. `shown` is whether the dialog appeared.
    bool Print(const std::function<void(QDialog&)>& person) {
        shown = false;
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) {
                return;
            }
            shown = true;
            QTimer::singleShot(10000, dialog, &QDialog::reject);
            person(*dialog);
        });
        const bool answer = viewed->interface->popupJobNotes().handlePopupJobnoteUI();
        QCoreApplication::processEvents();
        return answer;
    }
    static QLineEdit& Line(QDialog& dialog, const char* name) {
        auto* line = dialog.findChild<QLineEdit*>(QLatin1String(name));
        return line != nullptr ? *line : throw std::runtime_error(name);
    }

    ScopedMemorySystem system;
    std::unique_ptr<ViewedPane> viewed;
    bool shown = false;
};

TEST(PopupJobNotes, AskForEachNoteInItsField) {
    Asked asked(jobNote("QVFirst", "6|Numeric|Required|LengthReq|PopupJN") +
                jobNote("QVPin", "8|Numeric|Password|Required|Remembered|PopupJN") +
                jobNote("QVOther", "9|Alpha") + jobNote("QVSwitch", "5|OnOfSwitch|PopupJN"));
    EXPECT_TRUE(asked.Print([](QDialog& dialog) {
        auto& first = Asked::Line(dialog, "popupJobNoteVal31");
        auto& pin = Asked::Line(dialog, "popupJobNoteSec32");
        EXPECT_EQ(pin.echoMode(), QLineEdit::Password);
        EXPECT_EQ(first.accessibleName(), "QVFirst name");
        auto* message = dialog.findChild<QLabel*>("popupJobNoteMessage");
        QTest::keyClick(&dialog, Qt::Key_Return); // two required fields are empty: stays open and says so
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(message->text(), "“QVFirst name” must not be empty.\n“QVPin name” must not be empty.");
        QTest::keyClicks(&first, "12a34");
        EXPECT_EQ(first.text(), "1234") << "each character is checked";
        QTest::keyClick(&first, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_TRUE(message->text().contains("must have exactly 6 characters"));
        QTest::keyClick(&first, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible()) << "only the button prints with a rule broken";
        QTest::keyClick(&first, Qt::Key_End);
        QTest::keyClicks(&first, "567");
        EXPECT_EQ(first.text(), "123456") << "no more than the note takes";
        QTest::keyClick(&first, Qt::Key_Backspace);
        QTest::keyClicks(&pin, "99");
        pin.setFocus();
        dialog.findChild<QCheckBox*>("popupJobNoteVal33")->click();
        auto* print = dialog.findChild<QDialogButtonBox*>()->findChildren<QPushButton*>().front();
        QTest::mouseClick(print, Qt::LeftButton);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.focusWidget(), &first);
        QTest::mouseClick(print, Qt::LeftButton);
        EXPECT_FALSE(dialog.isVisible());
    }));
    EXPECT_EQ(asked.viewed->Value("*QVFirst"), "12345");
    EXPECT_EQ(asked.viewed->Value("*QVPin"), "99");
    EXPECT_THAT(gPopupJobNotesNote, ElementsAre("12345", "", "True", "", "")) << "secrets are kept nowhere";
    EXPECT_EQ(popupJobNotePreferences(*asked.viewed->pane->model), "010") << "nothing of a password";
}

TEST(PopupJobNotes, CancelBringsBackWhatWasThere) {
    Asked asked(jobNote("QVAccount", "20|Alpha|Remembered|PopupJN"));
    asked.viewed->Editor().SetValue("*QVAccount", "Press");
    EXPECT_FALSE(asked.Print([](QDialog& dialog) {
        QTest::keyClicks(&Asked::Line(dialog, "popupJobNoteVal11"), "Other");
        dialog.findChild<QCheckBox*>("popupJobNoteLast1")->setChecked(true);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_TRUE(asked.shown);
    EXPECT_EQ(asked.viewed->Value("*QVAccount"), "Press");
    EXPECT_EQ(gPopupJobNotesSavedShowLast, '0');
}

TEST(PopupJobNotes, PreferencesAreInForceOnceChanged) {
    Asked asked(jobNote("QVAccount", "20|Alpha|Required|Remembered|PopupJN"));
    asked.viewed->Editor().SetValue("*QVAccount", "Press");
    ASSERT_TRUE(asked.Print([](QDialog& dialog) {
        dialog.findChild<QCheckBox*>("popupJobNoteLast1")->setChecked(true);
        dialog.findChild<QCheckBox*>("popupJobNoteAsk")->setChecked(false);
        QTest::keyClick(&dialog, Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
    }));
    EXPECT_EQ(popupJobNotePreferences(*asked.viewed->pane->model), "101\n*QVAccount=Press");
    const auto accept = [](QDialog& dialog) { dialog.accept(); };
    EXPECT_TRUE(asked.Print(accept));
    EXPECT_FALSE(asked.shown);
    // The dialog still asks for missing values, and the defaults button makes it ask again.
    asked.viewed->Editor().SetValue("*QVAccount", "");
    EXPECT_FALSE(asked.Print([](QDialog& dialog) { dialog.reject(); }));
    EXPECT_TRUE(asked.shown);
    asked.viewed->Editor().SetValue("*QVAccount", "Press");
    gPopupJobNotesDefaultsButton = 1;
    EXPECT_TRUE(asked.Print(accept));
    EXPECT_TRUE(asked.shown);
    EXPECT_EQ(popupJobNotePreferences(*asked.viewed->pane->model), "111\n*QVAccount=Press");
}

TEST(PopupJobNotes, RowsOfFields) {
    EXPECT_THAT(popupJobNoteFields(1), ElementsAre("11"));
    EXPECT_THAT(popupJobNoteFields(3), ElementsAre("31", "32", "33"));
    EXPECT_THAT(popupJobNoteFields(7), ElementsAre("51", "52", "53", "54", "55", "41", "42"));
    EXPECT_EQ(popupJobNoteFields(15).back(), "11");
}

} // namespace
} // namespace torka::tests
