// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldPage.h"
#include "pane/views/QuickAccessDialog.h"
#include "tests/views/ViewFixture.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

// What each button does when it is pressed by mouse. The keys have tests of their own.

namespace torka::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(ButtonsTest, QuickAccessIsAddedOrderedRemovedAndOnlyKeptOnOK) {
    auto& sheet = static_cast<QuickAccessSheet&>(pane.interface->customizeQuickAccess());
    const auto open = [&]() -> QuickAccessDialog& {
        sheet.openSheet();
        return *sheet.Dialog();
    };
    QuickAccessDialog& dialog = open();
    const auto named = [&](const char* text) {
        return dialog.Available()
            ->findItems(QLatin1String(text), Qt::MatchExactly | Qt::MatchRecursive)
            .front();
    };
    const auto chosen = [&] { return dialog.Chosen(); };
    QListWidget& list = *dialog.ChosenList();
    list.selectAll();
    Press(dialog.RemoveButton());
    EXPECT_THAT(chosen(), IsEmpty());
    dialog.Available()->setCurrentItem(named("Staple"));
    Press(dialog.AddButton());
    dialog.Available()->scrollToItem(named("Mirror"));
    DoubleClick(*dialog.Available(), dialog.Available()->visualItemRect(named("Mirror")));
    EXPECT_THAT(chosen(), ElementsAre("*QVStaple", "*QVMirror"));
    list.setCurrentRow(1);
    Press(dialog.UpButton());
    EXPECT_THAT(chosen(), ElementsAre("*QVMirror", "*QVStaple"));
    Press(Button(dialog, "Move Down"));
    EXPECT_THAT(chosen(), ElementsAre("*QVStaple", "*QVMirror"));
    DoubleClick(list, list.visualItemRect(list.item(0)));
    EXPECT_THAT(chosen(), ElementsAre("*QVMirror"));
    const auto stored = [&] {
        PPDTree tree;
        pane.pane->data->GetPPDShortcuts(tree);
        return tree.quickAccess.size();
    };
    PressIn("quickAccessDialog", "Cancel");
    EXPECT_EQ(stored(), 0U);
    QuickAccessDialog& again = open();
    again.ChosenList()->selectAll();
    Press(again.RemoveButton());
    again.Available()->setCurrentItem(
        again.Available()->findItems("Mirror", Qt::MatchExactly | Qt::MatchRecursive).front());
    Press(again.AddButton());
    PressIn("quickAccessDialog", "OK");
    EXPECT_EQ(stored(), 1U);
}

} // namespace
} // namespace torka::tests
