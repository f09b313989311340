// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldPage.h"
#include "tests/views/ViewFixture.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

// What each button does when it is pressed by mouse. The keys have tests of their own.

namespace torka::tests {
namespace {

struct ButtonsTest : testing::Test {
    ScopedMemorySystem system;
    ViewedPane pane{samplePane()};

    ButtonsTest() {
        pane.pane->data->SetCorvianPrinterAddress(cfString("192.168.1.20"), true);
        pane.Show();
    }
    static void Press(QAbstractButton* button) {
        ASSERT_NE(button, nullptr);
        ASSERT_TRUE(button->isVisible() && button->isEnabled()) << button->text().toStdString();
        QTest::mouseClick(button, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(); // what the button leaves for later
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // The button with a text, without its mnemonic's sign.
    static QAbstractButton* Button(QWidget& above, const char* text) {
        for (auto* button : above.findChildren<QAbstractButton*>()) {
            if (button->text().remove(QLatin1Char('&')) == QString::fromUtf8(text)) {
                return button;
            }
        }
        ADD_FAILURE() << "no button " << text;
        return nullptr;
    }
    void PressIn(const char* dialogName, const char* text) {
        auto* dialog = pane.Root()->findChild<QDialog*>(QLatin1String(dialogName));
        ASSERT_NE(dialog, nullptr) << dialogName;
        Press(Button(*dialog, text));
        dialog = pane.Root()->findChild<QDialog*>(QLatin1String(dialogName));
        EXPECT_TRUE(dialog == nullptr || !dialog->isVisible()) << text;
    }
    static void DoubleClick(QAbstractItemView& list, const QRect& row) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row.center());
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row.center());
    }
};

TEST_F(ButtonsTest, TheSummaryShowsAFieldAndSetsItBack) {
    pane.Editor().SetValue("*QVMirror", "True");
    for (const char* text : {"Show", "Back to Default"}) {
        ASSERT_TRUE(pane.Widget().ShowPage("summary"));
        auto* list = pane.Root()->findChild<QTreeWidget*>();
        ASSERT_EQ(list->topLevelItemCount(), 1) << text;
        list->topLevelItem(0)->setSelected(true);
        Press(Button(*list->parentWidget(), text));
        const bool shows = std::string_view(text) == "Show";
        EXPECT_EQ(pane.Value("*QVMirror"), shows ? "True" : "False");
        if (shows) {
            FieldPage* page = pane.Widget().CurrentFieldPage();
            ASSERT_NE(page, nullptr);
            EXPECT_NE(page->RowOf("*QVMirror"), nullptr);
        }
    }
}

TEST_F(ButtonsTest, WatermarksAreAddedEditedAndDeleted) {
    pane.Widget().ShowPage("watermarks");
    auto* list = pane.Find<QListWidget>("watermarks");
    QWidget& page = *list->parentWidget();
    const auto type = [&](const char* text) {
        pane.Root()->findChild<QLineEdit*>("watermarkText")->setText(QString::fromUtf8(text));
    };
    const int before = list->count();
    const auto last = [&] { return list->item(list->count() - 1); };
    Press(Button(page, "Add…"));
    type("Draft");
    PressIn("watermarkDialog", "Cancel");
    EXPECT_EQ(list->count(), before);
    Press(Button(page, "Add…"));
    type("Draft");
    PressIn("watermarkDialog", "OK");
    ASSERT_EQ(list->count(), before + 1);
    EXPECT_EQ(last()->text(), "Draft");
    list->setCurrentItem(last());
    Press(Button(page, "Edit…"));
    type("Final");
    PressIn("watermarkDialog", "OK");
    EXPECT_EQ(last()->text(), "Final");
    DoubleClick(*list, list->visualItemRect(last()));
    type("Last");
    PressIn("watermarkDialog", "OK");
    EXPECT_EQ(last()->text(), "Last");
    Press(Button(page, "Delete"));
    EXPECT_EQ(list->count(), before);
}

} // namespace
} // namespace torka::tests
