// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldPage.h"
#include "pane/views/QuickAccessDialog.h"

#include "tests/views/ViewFixture.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

namespace torka::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

struct QuickAccessTest : testing::Test {
    ScopedMemorySystem system;
    std::unique_ptr<ViewedPane> pane;

    QuickAccessTest() { Show(samplePane()); }
    void Show(std::unique_ptr<Pane> shown) {
        pane.reset();
        pane = std::make_unique<ViewedPane>(std::move(shown));
        pane->pane->data->SetCorvianPrinterAddress(cfString("192.168.1.20"), true);
        pane->Show();
    }
    QuickAccessSheet& Sheet() {
        return static_cast<QuickAccessSheet&>(pane->interface->customizeQuickAccess());
    }
    QuickAccessDialog& Dialog() {
        if (!Sheet().validWindowSessionRunning()) {
            Sheet().openSheet();
        }
        return *Sheet().Dialog();
    }
    std::vector<std::string> Available() {
        std::vector<std::string> names;
        for (QTreeWidgetItemIterator place(Dialog().Available(), QTreeWidgetItemIterator::NotHidden);
             *place != nullptr; ++place) {
            if ((*place)->parent() != nullptr) {
                names.push_back((*place)->text(0).toStdString());
            }
        }
        return names;
    }
    void Search(const char* text) { Dialog().SearchField()->setText(QString::fromUtf8(text)); }
    void AddByKeys() {
        auto* list = Dialog().Available();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Home);
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Insert);
    }
    std::vector<std::string> Stored() {
        PPDTree tree;
        pane->pane->data->GetPPDShortcuts(tree);
        std::vector<std::string> keywords;
        for (const auto& entry : tree.quickAccess) {
            keywords.push_back(entry.keyword);
        }
        return keywords;
    }
};

TEST_F(QuickAccessTest, AddsOrdersAndRemovesByKeysAndKeepsThemOnOK) {
    auto* button = pane->Find<QWidget>("customizeQuickAccessButton");
    EXPECT_TRUE(button->isVisible());
    auto* list = Dialog().ChosenList();
    list->selectAll();
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_THAT(Dialog().Chosen(), IsEmpty());
    for (const char* name : {"Staple", "Mirror", "Duplex"}) {
        Search(name);
        ASSERT_THAT(Available(), Not(IsEmpty())) << name;
        AddByKeys();
    }
    const std::vector<std::string> added = Dialog().Chosen();
    ASSERT_EQ(added.size(), 3U);
    EXPECT_EQ(added[0], "*QVStaple");
    Search("");
    EXPECT_THAT(Available(), Not(Contains("Staple"))) << "each only once";
    list->setFocus();
    list->setCurrentRow(2);
    QTest::keyClick(list, Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(list, Qt::Key_Up, Qt::AltModifier);
    EXPECT_FALSE(Dialog().UpButton()->isEnabled());
    EXPECT_THAT(Dialog().Chosen(), ElementsAre(added[2], added[0], added[1]));
    EXPECT_THAT(Stored(), IsEmpty()) << "nothing before OK";
    Dialog().accept();
    EXPECT_FALSE(Sheet().validWindowSessionRunning());
    EXPECT_THAT(Stored(), ElementsAre(added[2], added[0], added[1]));
    pane->Widget().ShowPage("quickAccess");
    FieldPage* page = pane->Widget().CurrentFieldPage();
    ASSERT_NE(page, nullptr);
    EXPECT_NE(page->RowOf(added[2]), nullptr);
    EXPECT_EQ(page->RowCount(), 4U) << "the page size stands above";
}

TEST_F(QuickAccessTest, CancelKeepsWhatWasAndAGoneRootTakesTheDialogWithIt) {
    const auto before = Dialog().Chosen();
    ASSERT_GE(before.size(), 5U);
    auto* list = Dialog().ChosenList();
    for (const int row : {static_cast<int>(before.size()) - 1, 0}) {
        list->setCurrentRow(row);
        QTest::keyClick(list, Qt::Key_Delete);
        QTest::keyClick(list, Qt::Key_Delete); // removes the neighbour
    }
    EXPECT_EQ(Dialog().Chosen(), std::vector(before.begin() + 2, before.end() - 2));
    Sheet().doButtonCancelClicked();
    EXPECT_FALSE(Sheet().validWindowSessionRunning());
    EXPECT_EQ(Dialog().Chosen(), before);
    delete pane->Root();
    Sheet().doButtonCancelClicked();
    Sheet().openSheet();
    EXPECT_FALSE(Sheet().validWindowSessionRunning()) << "nowhere to open it";
}

TEST_F(QuickAccessTest, HoldsNinetyNineEntriesAndNoMore) {
    std::string text = paneHeader;
    for (int i = 0; i < 120; ++i) {
        text += popup("QVOdd" + std::to_string(i), {"A", "B"});
    }
    Show(std::make_unique<Pane>(text));
    Dialog().Available()->selectAll();
    QTest::mouseClick(Dialog().AddButton(), Qt::LeftButton);
    EXPECT_EQ(Dialog().Chosen().size(), maximumQuickAccess);
    EXPECT_FALSE(Dialog().AddButton()->isEnabled());
    EXPECT_EQ(Available().size(), 120 - maximumQuickAccess);
    Dialog().accept();
    EXPECT_EQ(Stored().size(), maximumQuickAccess);
}

} // namespace
} // namespace torka::tests
