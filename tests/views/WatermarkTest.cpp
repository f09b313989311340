// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldPage.h"
#include "pane/views/WatermarkDialog.h"
#include "pane/views/WatermarkPage.h"
#include "tests/views/ViewFixture.h"

namespace torka::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct WatermarkTest : testing::Test {
    ScopedMemorySystem system;
    ViewedPane pane{samplePane()};

    WatermarkTest() {
        pane.pane->data->SetCorvianPrinterAddress(cfString("192.168.1.20"), true);
        pane.Show();
        pane.Widget().ShowPage("watermarks");
    }
    WatermarkList& Watermarks() { return pane.pane->data->Watermarks(); }
    WatermarkPage& Page() {
        return *static_cast<WatermarkPage*>(pane.Find<QListWidget>("watermarks")->parentWidget());
    }
    WatermarkDialog& Dialog() {
        return Page().Dialog() != nullptr ? *Page().Dialog() : throw std::runtime_error("no dialog");
    }
    void Type(const QString& text) {
        auto* field = Dialog().findChild<QLineEdit*>("watermarkText");
        field->selectAll();
        field->insert(text);
    }
    void Accept() {
        const auto before = Kept();
        button(Dialog(), "OK").click();
        EXPECT_EQ(Kept(), before) << "stored inside the signal of the dialog";
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void Add(const char* text) {
        press(Page(), "Add…");
        Type(QString::fromUtf8(text));
        Accept();
    }
    // The watermarks that a new panel of this printer reads.
    std::vector<std::string> Kept() {
        const auto data = pane.pane->DataOf("Press");
        data->GetWatermarksFromPreferences();
        return textsOf(data->Watermarks());
    }
};

TEST_F(WatermarkTest, AddsEditsChoosesAndDeletesByMouseAndKeys) {
    QListWidget* list = Page().List();
    press(Page(), "Add…");
    Type("Draft");
    press(Dialog(), "Cancel");
    EXPECT_EQ(Page().Dialog(), nullptr);
    EXPECT_EQ(list->count(), 1) << "none";
    Add("Draft");
    for (const auto& [text, open] :
         {std::pair<const char*, std::function<void()>>{"Final", [&] { press(Page(), "Edit…"); }},
          {"Draft, not for sale", [&] { doubleClick(*list, list->currentIndex()); }}}) {
        open();
        Type(text);
        Accept();
        EXPECT_EQ(list->currentItem()->text(), text);
    }
    Add("<b>R&D</b> %1");
    EXPECT_THAT(Kept(), ElementsAre("Draft, not for sale", "<b>R&D</b> %1"));
    EXPECT_EQ(Watermarks().SelectedIndex(), 1);
    EXPECT_FALSE(Watermarks().Selected()->IsClear());
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Up);
    EXPECT_EQ(Watermarks().SelectedIndex(), 0);
    pane.Editor().Undo();
    EXPECT_EQ(Watermarks().SelectedIndex(), 1);
    EXPECT_EQ(list->currentRow(), 2) << "the page follows";
    pane.Editor().Redo();

    QTest::mouseClick(Page().FirstPageBox(), Qt::LeftButton, {},
                      QPoint(8, Page().FirstPageBox()->height() / 2));
    EXPECT_TRUE(Watermarks().Selected()->IsFirstPageOnly());
    QTest::keyClick(list, Qt::Key_Return);
    auto* up = Dialog().findChild<QDoubleSpinBox*>("watermarkUp");
    up->setValue(25.4);
    EXPECT_EQ(up->text().remove(QLatin1Char(' ')), QStringLiteral("25.4mm"));
    Dialog().findChild<QDoubleSpinBox*>("watermarkAngle")->setValue(-30.5);
    QTest::keyClicks(Dialog().findChild<QComboBox*>("watermarkColor"), "Clear");
    Type(QStringLiteral("Proof"));
    Accept();
    const ZANWatermark* edited = Watermarks().Selected();
    EXPECT_EQ(edited->Definition(), "1,0,72,200,200,200,0,1,0,-305,0,0,96,Helvetica-Bold,Proof");
    EXPECT_TRUE(edited->IsFirstPageOnly());
    EXPECT_EQ(edited->YOffset(), 72);

    list->setFocus();
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_THAT(Kept(), ElementsAre("<b>R&D</b> %1"));
    EXPECT_EQ(Watermarks().Selected(), nullptr);
    list->setCurrentRow(1);
    press(Page(), "Delete");
    EXPECT_THAT(Kept(), IsEmpty()) << "the last one, too";
}

TEST_F(WatermarkTest, RefusesWhatNoDefinitionCanHold) {
    Page().Add();
    Type(QStringLiteral("  "));
    Dialog().accept();
    EXPECT_EQ(Watermarks().Count(), 0U);
    auto* font = Dialog().findChild<QComboBox*>(QStringLiteral("watermarkFont"));
    font->lineEdit()->setText(QStringLiteral("Hel,vetica (x)"));
    EXPECT_FALSE(font->lineEdit()->hasAcceptableInput());
    Type(QString(500, QChar(0x65E5)));
    EXPECT_EQ(Dialog().Fields().text.size(), WatermarkFields::longestText * 3);
    EXPECT_EQ(Dialog().findChild<QLabel*>(QStringLiteral("fieldMessage"))->text(),
              QString::fromUtf8("This font cannot print: 日"));
    WatermarkFields odd;
    odd.fontName = "A,B";
    odd.text = "one\ntwo,\x01";
    EXPECT_EQ(ZANWatermark(odd.Definition().c_str()).Text(), "one two, ");
    EXPECT_EQ(ZANWatermark(odd.Definition().c_str()).FontName(), "AB");
}

} // namespace
} // namespace torka::tests
