// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldPage.h"
#include "pane/views/QuickAccessDialog.h"

#include "tests/views/ViewFixture.h"

namespace torka::tests {
namespace {

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
    std::vector<QTreeWidgetItem*> Available() {
        std::vector<QTreeWidgetItem*> items;
        for (QTreeWidgetItemIterator place(Dialog().Available(), QTreeWidgetItemIterator::NotHidden);
             *place != nullptr; ++place) {
            if ((*place)->parent() != nullptr) {
                items.push_back(*place);
            }
        }
        return items;
    }
    void Search(const char* text) { Dialog().SearchField()->setText(QString::fromUtf8(text)); }
    void Press(const char* words) { QTest::mouseClick(&button(Dialog(), words), Qt::LeftButton); }
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

TEST_F(QuickAccessTest, AddsOrdersAndRemovesByKeysAndMouseAndKeepsThemOnOK) {
    EXPECT_TRUE(pane->Find<QWidget>("customizeQuickAccessButton")->isVisible());
    auto* list = Dialog().ChosenList();
    list->selectAll();
    list->setFocus();
    QTest::mouseClick(Dialog().RemoveButton(), Qt::LeftButton);
    EXPECT_THAT(Dialog().Chosen(), IsEmpty());
    auto& tree = *Dialog().Available();
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"Staple", [&] { AddByKeys(); }},
        {"Mirror",
         [&] {
             tree.setCurrentItem(Available().front());
             QTest::mouseClick(Dialog().AddButton(), Qt::LeftButton);
         }},
        {"qvduplex", [&] { doubleClick(tree, tree.indexFromItem(Available().front())); }}};
    for (const auto& [name, add] : ways) {
        Search(name);
        ASSERT_THAT(Available(), Not(IsEmpty())) << name;
        add();
    }
    const std::vector<std::string> added = Dialog().Chosen();
    ASSERT_EQ(added.size(), 3U);
    EXPECT_EQ(added[0], "*QVStaple");
    Search(" ");
    EXPECT_GT(Available().size(), 50U);
    for (const QTreeWidgetItem* item : Available()) {
        EXPECT_NE(item->text(0), QLatin1String("Staple")) << "each only once";
    }
    list->setFocus();
    list->setCurrentRow(2);
    QTest::keyClick(list, Qt::Key_Up, Qt::AltModifier);
    QTest::mouseClick(Dialog().UpButton(), Qt::LeftButton);
    EXPECT_FALSE(Dialog().UpButton()->isEnabled());
    EXPECT_THAT(Dialog().Chosen(), ElementsAre(added[2], added[0], added[1]));
    Press("Move Down");
    EXPECT_THAT(Dialog().Chosen(), ElementsAre(added[0], added[2], added[1]));
    doubleClick(*list, list->model()->index(2, 0));
    EXPECT_THAT(Stored(), IsEmpty()) << "nothing before OK";
    Press("OK");
    EXPECT_FALSE(Sheet().validWindowSessionRunning());
    EXPECT_EQ(pane->Root()->findChild<QMessageBox*>(), nullptr) << "nothing to tell";
    EXPECT_THAT(Stored(), ElementsAre(added[0], added[2]));
    pane->Widget().ShowPage("quickAccess");
    FieldPage* page = pane->Widget().CurrentFieldPage();
    ASSERT_NE(page, nullptr);
    EXPECT_NE(page->RowOf(added[2]), nullptr);
    EXPECT_EQ(page->RowCount(), 3U) << "the page size stands above";
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
    Press("Cancel");
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
