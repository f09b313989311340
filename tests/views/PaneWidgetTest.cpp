// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"
#include "pane/views/AddressSheet.h"
#include "pane/views/ConflictBar.h"
#include "pane/views/FieldPage.h"
#include "pane/views/JobPicture.h"
#include "tests/views/ViewFixture.h"

namespace torka::tests {
namespace {

using testing::HasSubstr;

// Drives the sample's pane in a window by mouse and keys.
struct PaneWidgetTest : testing::Test {
    ScopedMemorySystem system;
    ViewedPane pane{samplePane()};

    PaneWidgetTest() { pane.Show(); }

    CustomizePaneWidget& Widget() { return pane.Widget(); }
    // The widget of a field on the visible page.
    template <class T>
    T* Field(const char* keyword) {
        FieldPage* page = Widget().CurrentFieldPage();
        FieldRow* row = page == nullptr ? nullptr : page->RowOf(keyword);
        return row == nullptr ? nullptr : qobject_cast<T*>(row->Focus());
    }
    void Go(const char* keyword) { ASSERT_TRUE(Widget().ShowField(keyword)) << keyword; }
    void Choose(const char* keyword, const char* name) {
        auto* box = Field<QComboBox>(keyword);
        ASSERT_NE(box, nullptr) << keyword;
        box->setCurrentIndex(IndexOf(box, name));
        Q_EMIT box->activated(box->currentIndex());
    }
    static int IndexOf(const QComboBox* box, const char* name) {
        return box->findText(QString::fromUtf8(name));
    }
    static bool IsEnabled(const QComboBox* box, int row) {
        return (box->model()->flags(box->model()->index(row, 0)) & Qt::ItemIsEnabled) != 0;
    }
    static std::string ToolTip(const QComboBox* box, int row) {
        return box->itemData(row, Qt::ToolTipRole).toString().toStdString();
    }
};

TEST_F(PaneWidgetTest, EditsByMouseAndKeys) {
    Go("*QVMirror");
    auto* box = Field<QCheckBox>("*QVMirror");
    ASSERT_NE(box, nullptr);
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    EXPECT_EQ(pane.Value("*QVMirror"), "True");
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_EQ(pane.Value("*QVMirror"), "False");

    auto* scale = Field<QDoubleSpinBox>("*QVScale");
    scale->setFocus();
    scale->selectAll();
    QTest::keyClicks(scale, "250");
    EXPECT_EQ(pane.Value("*QVScale"), "100") << "not before the number is whole";
    QTest::keyClick(scale, Qt::Key_Return);
    EXPECT_EQ(pane.Value("*QVScale"), "250");
    QTest::keyClick(scale, Qt::Key_Up);
    EXPECT_EQ(pane.Value("*QVScale"), "251");
    auto* slider = scale->parentWidget()->findChild<QSlider*>();
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Home);
    EXPECT_EQ(pane.Value("*QVScale"), "25");
    EXPECT_DOUBLE_EQ(scale->value(), 25);

    Go("*QVGutter"); // tenths of a millimetre, in steps of five
    auto* gutter = Field<QDoubleSpinBox>("*QVGutter");
    EXPECT_EQ(gutter->suffix(), QStringLiteral(" mm"));
    gutter->setValue(12.3);
    EXPECT_EQ(pane.Value("*QVGutter"), "120");
    EXPECT_DOUBLE_EQ(gutter->value(), 12.0) << "what the control made of it";
}

TEST_F(PaneWidgetTest, TheWheelChangesOnlyTheFieldInFocus) {
    const auto turn = [](QWidget* widget) {
        QWheelEvent event(widget->rect().center(), widget->mapToGlobal(widget->rect().center()), {},
                          {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(widget, &event);
    };
    for (const char* keyword : {"*QVDuplex", "*QVScale"}) {
        Go(keyword);
        auto* field = Field<QWidget>(keyword);
        Widget().SearchField()->setFocus();
        const std::string before = pane.Value(keyword);
        turn(field);
        if (auto* slider = field->parentWidget()->findChild<QSlider*>()) {
            turn(slider);
        }
        EXPECT_EQ(pane.Value(keyword), before) << keyword;
        field->setFocus();
        turn(field);
        EXPECT_NE(pane.Value(keyword), before) << keyword;
    }
}

TEST_F(PaneWidgetTest, PopupsMakeTheirListsWhenTheyAreOpened) {
    for (const std::string& page : Widget().PageIdentifiers()) {
        ASSERT_TRUE(Widget().ShowPage(page));
    }
    const auto boxes = pane.Root()->findChildren<QComboBox*>();
    EXPECT_GT(boxes.size(), 30);
#if QT_VERSION < QT_VERSION_CHECK(6, 8, 0) // Qt 6.8 makes a list with the box's first entry
    for (const QComboBox* box : boxes) {
        EXPECT_EQ(box->findChild<QAbstractItemView*>(), nullptr) << box->objectName().toStdString();
    }
#endif
    for (const auto& [keyword, choose] :
         {std::pair{"*QVStaple", Qt::Key_Return}, {"*QVMarks", Qt::Key_Space}}) {
        Go(keyword);
        auto* box = Field<QComboBox>(keyword);
        const std::string before = pane.Value(keyword);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_F4);
        ASSERT_TRUE(box->view()->isVisible());
        QTest::keyClick(box->view(), Qt::Key_End);
        QTest::keyClick(box->view(), choose);
        EXPECT_NE(pane.Value(keyword), before);
        EXPECT_EQ(std::ranges::count(pane.Value(keyword), '\n'), choose == Qt::Key_Space ? 1 : 0);
        EXPECT_EQ(box->view()->isVisible(), choose == Qt::Key_Space) << "open for more ticks";
        box->hidePopup();
        const auto look = [&] {
            return std::pair(box->currentIndex(), box->itemData(box->count() - 1, Qt::CheckStateRole));
        };
        const auto chosen = look();
        ASSERT_TRUE(pane.Editor().Undo());
        EXPECT_EQ(pane.Value(keyword), before);
        EXPECT_NE(look(), chosen) << "the widget follows";
    }
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Space, Qt::Key_F4, Qt::Key_Home}) {
        auto* ticks = Field<QComboBox>("*QVMarks");
        QTest::keyClick(ticks, key);
        EXPECT_EQ(ticks->view()->isVisible(), key != Qt::Key_Home);
        ticks->hidePopup();
    }
}

TEST_F(PaneWidgetTest, SaysWhatForbidsAChoice) {
    Go("*MediaType");
    Choose("*MediaType", "Labels");
    ASSERT_EQ(pane.Value("*MediaType"), "Labels");
    Go("*QVDuplex");
    auto* duplex = Field<QComboBox>("*QVDuplex");
    const int longEdge = IndexOf(duplex, "Turn on Long Edge");
    ASSERT_GE(longEdge, 0);
    EXPECT_FALSE(IsEnabled(duplex, longEdge));
    EXPECT_THAT(ToolTip(duplex, longEdge), HasSubstr("Media Type: Labels"));
    duplex->setFocus();
    QTest::keyClick(duplex, Qt::Key_Down);
    EXPECT_EQ(pane.Value("*QVDuplex"), "None") << "keys pass over what is forbidden";
    EXPECT_FALSE(Widget().Bar()->isVisible());
    button(*Widget().CurrentFieldPage()->RowOf("*QVDuplex")->Body(), "Why some choices are not available")
        .click();
    auto* offer = QApplication::activePopupWidget();
    ASSERT_NE(offer, nullptr);
    EXPECT_THAT(button(*offer, "Change Both").toolTip().toStdString(),
                HasSubstr("Turn on Long Edge, Media Type to "));
    press(*offer, "Change Both");
    EXPECT_EQ(pane.Value("*QVDuplex"), "LongEdge");
    EXPECT_NE(pane.Value("*MediaType"), "Labels");
    EXPECT_TRUE(pane.Editor().Conflicts().empty());
    EXPECT_TRUE(pane.Editor().Undo());
    EXPECT_EQ(pane.Value("*QVDuplex") + pane.Value("*MediaType"), "NoneLabels");

    Go("*QVFolderUnit");
    auto* folder = Field<QCheckBox>("*QVFolderUnit");
    ASSERT_TRUE(folder->isEnabled());
    folder->click();
    Go("*QVFoldPrintInside");
    auto* inside = Field<QCheckBox>("*QVFoldPrintInside");
    EXPECT_FALSE(inside->isEnabled());
    EXPECT_THAT(inside->toolTip().toStdString(), HasSubstr("Folding Unit: "));
    EXPECT_THAT(inside->accessibleDescription().toStdString(), HasSubstr("Folding Unit: "));
}

TEST_F(PaneWidgetTest, ResolvesAConflictWithOneClickAndTakesItBack) {
    Go("*QVStaple");
    pane.Editor().SetValue("*QVStaple", "Saddle");
    EXPECT_FALSE(Widget().Bar()->isVisible());
    pane.pane->Set("*QVFinisherUnit", "None"); // a change of the printer, without a click
    pane.Draw();
    ASSERT_TRUE(Widget().Bar()->isVisible());
    QTest::mouseClick(Widget().Bar()->ResolveButton(), Qt::LeftButton);
    EXPECT_EQ(pane.Value("*QVStaple"), "None");
    EXPECT_EQ(pane.Value("*QVFinisherUnit"), "None");
    EXPECT_TRUE(pane.Editor().Conflicts().empty());
    EXPECT_EQ(Field<QComboBox>("*QVStaple")->currentText(), QStringLiteral("Off"));
    for (const bool isGrey : {true, false}) {
        pane.interface->customizePane().greyoutShortcutControls(isGrey);
        EXPECT_EQ(Field<QComboBox>("*QVStaple")->isEnabled(), !isGrey);
    }
    QTest::mouseClick(Widget().Bar()->UndoButton(), Qt::LeftButton);
    EXPECT_EQ(pane.Value("*QVStaple"), "Saddle");
    EXPECT_TRUE(Widget().Bar()->ResolveButton()->isVisible());
}

TEST_F(PaneWidgetTest, KeepsWhatIsTypedToWhatTheNoteAllows) {
    Go("*QVAccountId"); // six digits
    auto* line = Field<QLineEdit>("*QVAccountId");
    line->selectAll();
    QTest::keyClicks(line, "12a");
    const QList<QLabel*> labels = line->parentWidget()->findChildren<QLabel*>();
    const auto* message = line->parentWidget()->findChild<QLabel*>("fieldMessage");
    EXPECT_TRUE(message->isVisible());
    EXPECT_NE(line->findChild<QAction*>("refusal"), nullptr) << "the field is marked";
    QTest::keyClicks(line, "4");
    EXPECT_FALSE(message->isVisible());
    EXPECT_EQ(line->findChild<QAction*>("refusal"), nullptr);
    EXPECT_EQ(pane.Value("*QVAccountId"), "124");
    EXPECT_EQ(labels[labels[0] == message ? 1 : 0]->text(), "3 / 6");
    line->setCursorPosition(1);
    QTest::keyClicks(line, "x9");
    EXPECT_EQ(line->text(), QStringLiteral("1924"));
    EXPECT_EQ(line->cursorPosition(), 2);
    QTest::keyClicks(line, "5678");
    EXPECT_EQ(line->text(), QStringLiteral("195624")) << "no longer than it may be";

    Go("*QVUserPassword");
    auto* secret = Field<QLineEdit>("*QVUserPassword");
    QTest::keyClicks(secret, "geheim");
    EXPECT_EQ(secret->echoMode(), QLineEdit::Password);
    EXPECT_EQ(pane.Value("*QVUserPassword"), "geheim");

    Go("*QVSecureSwitch");
    Field<QCheckBox>("*QVSecureSwitch")->click();
    EXPECT_EQ(pane.Value("*QVSecureSwitch"), "True");
    ViewedPane narrow(std::make_unique<Pane>(paneHeader + jobNote("Short", "4|OnOfSwitch")));
    narrow.Draw();
    ASSERT_TRUE(narrow.Widget().ShowField("*Short"));
    auto* box = qobject_cast<QCheckBox*>(narrow.Widget().CurrentFieldPage()->RowOf("*Short")->Focus());
    for (const char* refused : {"", "False"}) { // has five characters
        box->click();
        EXPECT_TRUE(narrow.Value("*Short") == "True" && box->isChecked()) << refused;
    }
}

TEST_F(PaneWidgetTest, FindsByNameKeywordAndChoice) {
    QLineEdit* search = Widget().SearchField();
    QTest::keyClicks(search, "ivory");
    QTest::keyClick(search, Qt::Key_Return); // moves the focus to the result
    auto* color = Field<QComboBox>("*QVMediaColor");
    ASSERT_NE(color, nullptr);
    EXPECT_TRUE(color->hasFocus());
    EXPECT_EQ(Widget().CurrentFieldPage()->RowCount(), 1U);
    Choose("*QVMediaColor", "Ivory");
    EXPECT_EQ(pane.Value("*QVMediaColor"), "Ivory");
    search->clear();
    EXPECT_EQ(Widget().PageList()->currentRow(), 0) << "back where the search began";
    search->setText(QStringLiteral("there is no such thing <b>"));
    Widget().SearchNow();
    EXPECT_EQ(Widget().CurrentFieldPage()->RowCount(), 0U);
    QTest::keyClick(search, Qt::Key_Escape);
    EXPECT_TRUE(search->text().isEmpty());
}

TEST_F(PaneWidgetTest, ShowsWhatDiffersAndSetsItBack) {
    pane.Editor().SetValue("*MediaType", "Labels");
    pane.Editor().SetValue("*QVMirror", "True");
    QTreeWidget* list = nullptr;
    const auto choose = [&](int row, int rows) {
        ASSERT_TRUE(Widget().ShowPage("summary"));
        list = pane.Root()->findChild<QTreeWidget*>();
        ASSERT_EQ(list->topLevelItemCount(), rows);
        list->setCurrentItem(list->topLevelItem(row));
        list->setFocus();
    };
    choose(1, 2);
    press(*list->parentWidget(), "Show");
    ASSERT_NE(Field<QCheckBox>("*QVMirror"), nullptr);
    EXPECT_EQ(pane.Value("*QVMirror"), "True");
    choose(0, 2);
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(pane.Value("*MediaType"), "Plain");
    choose(0, 1);
    press(*list->parentWidget(), "Back to Default");
    EXPECT_EQ(pane.Value("*QVMirror"), "False");
    pane.Editor().Undo();
    QTest::mouseClick(pane.Find<QPushButton>("defaultsButton"), Qt::LeftButton);
    EXPECT_EQ(pane.Value("*QVMirror"), "False");
    EXPECT_EQ(list->topLevelItemCount(), 0);
    list->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(pane.Root()));
    QTest::keySequence(list, QKeySequence::Undo);
    EXPECT_EQ(pane.Value("*QVMirror"), "True") << "the defaults are a step";
    QTest::keySequence(list, QKeySequence::Redo);
    EXPECT_EQ(pane.Value("*QVMirror"), "False");
    QTest::keySequence(list, QKeySequence::Find);
    EXPECT_TRUE(Widget().SearchField()->hasFocus());
}

TEST_F(PaneWidgetTest, AChangedFieldHasOneButtonThatSetsItBack) {
    Go("*MediaType");
    auto* box = Field<QComboBox>("*MediaType");
    const auto buttons = [&] {
        QCoreApplication::processEvents();
        QList<QToolButton*> shown = box->parentWidget()->findChildren<QToolButton*>();
        shown.removeIf([](const QToolButton* button) {
            return !button->isVisible() || !button->accessibleName().startsWith(QLatin1String("Back to "));
        });
        return shown;
    };
    EXPECT_TRUE(buttons().isEmpty());
    const QRect place = box->geometry();
    for (const int row : {1, 2}) {
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Down);
        ASSERT_EQ(buttons().size(), 1) << row;
        EXPECT_EQ(box->geometry(), place) << "the row does not move";
    }
    QTest::mouseClick(buttons()[0], Qt::LeftButton);
    EXPECT_EQ(pane.Value("*MediaType"), "Plain");
    EXPECT_TRUE(buttons().isEmpty() && box->hasFocus());
}

TEST_F(PaneWidgetTest, AsksAboutConflictsBeforeAJob) {
    EXPECT_TRUE(pane.interface->confirmConflicts() && pane.interface->confirmBrokenNotes());
    for (const auto& [answer, prints, staple] : {std::tuple{"Cancel", false, "Saddle"},
                                                 {"Print Anyway", true, "Saddle"},
                                                 {"Resolve", true, "None"}}) {
        pane.pane->Set("*QVStaple", "Saddle");
        pane.pane->Set("*QVFinisherUnit", "None");
        QTimer::singleShot(0, qApp, [words = answer] {
            auto* question = QApplication::activeModalWidget();
            ASSERT_NE(question, nullptr);
            auto* list = question->findChild<QListWidget*>();
            EXPECT_THAT(list->item(0)->text().toStdString(), HasSubstr("Saddle"));
            button(*question, words).click();
        });
        EXPECT_EQ(pane.interface->confirmConflicts(), prints) << answer;
        EXPECT_EQ(pane.Value("*QVStaple"), staple) << answer;
    }
    // Nothing may change what the printer has.
    ViewedPane stuck(std::make_unique<Pane>(paneHeader + unit("Folder", {"Big"}) + unit("Binder", {"Tape"}) +
                                            "*UIConstraints: *Folder Big *Binder Tape\n"));
    QTimer::singleShot(0, qApp, [] {
        auto* question = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(question, nullptr);
        for (const auto* each : question->findChildren<QPushButton*>()) {
            EXPECT_EQ(each->isEnabled(), each->text() != "&Resolve") << each->text().toStdString();
        }
        QTest::keyClick(question, Qt::Key_Return); // the default button cancels
    });
    EXPECT_FALSE(stuck.interface->confirmConflicts());
}

TEST_F(PaneWidgetTest, CustomSizeIsUsedWithACustomPrintSizeOnly) {
    Go("*QVPrintSize");
    auto* width = Field<QDoubleSpinBox>("*CustomPrintSize");
    ASSERT_NE(width, nullptr);
    EXPECT_FALSE(width->isEnabled());
    Choose("*QVPrintSize", "Custom Size");
    EXPECT_TRUE(width->isEnabled());
    EXPECT_EQ(pane.Value("*CustomPrintSize"), "283.459991 419.529999") << "the smallest, until a person says";
    width->setValue(200);
    EXPECT_NEAR(std::stod(pane.Value("*CustomPrintSize")), 200 * 72 / 25.4, 0.001);
    EXPECT_FALSE(Field<QComboBox>("*PageSize")->isEnabled()) << "the dialog's own pages choose it";

    const auto* message = width->parentWidget()->parentWidget()->findChild<QLabel*>("fieldMessage");
    ASSERT_NE(message, nullptr);
    for (const char* typed : {"9999", "1"}) {
        width->selectAll();
        QTest::keyClicks(width, QLatin1String(typed));
        QTest::keyClick(width, Qt::Key_Return);
        EXPECT_EQ(width->value(), 200) << typed;
        EXPECT_TRUE(message->isVisible());
        EXPECT_TRUE(message->text().startsWith(QLatin1String(typed) +
                                               QStringLiteral(" is outside the bounds: from 100")))
            << message->text().toStdString();
    }
    width->selectAll();
    QTest::keyClicks(width, QStringLiteral("210\r"));
    EXPECT_FALSE(message->isVisible());
    EXPECT_EQ(width->value(), 210);
}

TEST(LongGroup, MakesItsRowsAsTheyAreScrolledTo) {
    const ScopedMemorySystem system;
    std::string description = paneHeader;
    const auto keyword = [](int number) { return "*Note" + std::to_string(number); };
    for (int number = 0; number < 600; ++number) {
        description += jobNote(keyword(number).substr(1));
    }
    ViewedPane pane(std::make_unique<Pane>(description));
    pane.Draw();
    pane.Root()->resize(820, 600);
    pane.Root()->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(pane.Root()));
    ASSERT_TRUE(pane.Widget().ShowPage("Page"));
    FieldPage& page = *pane.Widget().CurrentFieldPage();
    EXPECT_LT(page.RowCount(), 100U);
    const int heightAtFirst = page.widget()->height();

    const auto focusOf = [&](int number) {
        const FieldRow* row = page.RowOf(keyword(number));
        return row == nullptr ? nullptr : row->Focus();
    };
    ASSERT_TRUE(page.ShowField(keyword(150))); // its row is made for it
    QCoreApplication::processEvents();         // shows the rows behind it
    EXPECT_TRUE(focusOf(150)->hasFocus());
    EXPECT_LT(page.RowCount(), 300U);
    for (int number = 150; number < 300; ++number) { // keys reach one row after the other
        ASSERT_TRUE(focusOf(number) != nullptr && focusOf(number)->hasFocus()) << number;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCoreApplication::processEvents();
    }
    for (int times = 0; times < 50; ++times) {
        page.verticalScrollBar()->setValue(page.verticalScrollBar()->maximum());
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(page.RowCount(), 600U);
    EXPECT_TRUE(page.viewport()->rect().contains(focusOf(599)->mapTo(page.viewport(), QPoint())));
    EXPECT_NEAR(page.widget()->height(), heightAtFirst, heightAtFirst / 10)
        << "the scroll bar told it before";
}

TEST_F(PaneWidgetTest, RollDownsOpenAndCloseByKeys) {
    ASSERT_TRUE(Widget().ShowPage("QVColorPage"));
    QAbstractButton* header = &button(*Widget().CurrentFieldPage(), "Color Management");
    auto* mode = Field<QComboBox>("*QVColorMode");
    ASSERT_NE(mode, nullptr);
    EXPECT_TRUE(mode->isVisible());
    const std::pair<Qt::Key, bool> keys[] = {
        {Qt::Key_Right, true},  {Qt::Key_Left, false},  {Qt::Key_Left, false},  {Qt::Key_Right, true},
        {Qt::Key_Minus, false}, {Qt::Key_Minus, false}, {Qt::Key_Plus, true},   {Qt::Key_Plus, true},
        {Qt::Key_Space, false}, {Qt::Key_Return, true}, {Qt::Key_Enter, false}, {Qt::Key_Tab, false},
        {Qt::Key_Space, true}};
    for (const auto& [key, isOpen] : keys) {
        QTest::keyClick(header, key);
        EXPECT_EQ(mode->isVisible(), isOpen) << key;
    }
    pane.Root()->setLayoutDirection(Qt::RightToLeft);
    QTest::keyClick(header, Qt::Key_Right);
    EXPECT_FALSE(mode->isVisible());
    QTest::keyClick(header, Qt::Key_Left);
    EXPECT_TRUE(mode->isVisible());
    QTest::mouseClick(header, Qt::LeftButton);
    EXPECT_FALSE(mode->isVisible());
}

TEST_F(PaneWidgetTest, OutlivesItsRootViewAndTheOtherWayRound) {
    const ViewRef view = pane.interface->outputBinsView();
    delete pane.Root(); // the dialog ends
    EXPECT_EQ(widgetOf(view), nullptr);
    pane.Draw();
    pane.interface->setStringValue(PaneOutlet::printerAddress, cfString("10.0.0.1"));
    EXPECT_EQ(utf8Text(pane.interface->stringValue(PaneOutlet::printerAddress)), "");
    pane.interface->addressSheet().setAddressField(cfString("10.0.0.2"));
    pane.Editor().SetValue("*QVMirror", "True");

    ViewedPane other(samplePane());
    other.Root()->grab(); // before it is drawn
    other.Draw();
    const ViewRef kept = other.interface->outputBinsView();
    other.panel->GetCustomizePane().setView(nullptr);
    other.interface.reset();
    ASSERT_NE(widgetOf(kept), nullptr);
    widgetOf(kept)->grab();
}

TEST_F(PaneWidgetTest, ModelsStaySoundWhileTheirRowsChange) {
    using Tester = QAbstractItemModelTester;
    auto& sheet = dynamic_cast<AddressSheet&>(pane.interface->addressSheet());
    auto* table = sheet.Window()->findChild<QTreeView*>("controllerTable");
    const Tester controllers(table->model(), Tester::FailureReportingMode::Fatal);
    const ControllerRow rows[] = {
        {cfString("a"), cfString("10.0.0.1")}, {cfString("b"), cfString("")}, {cfString("c"), cfString("")}};
    for (const std::size_t count : {1U, 3U, 2U, 0U}) {
        sheet.setRows(std::span(rows).first(count), std::nullopt);
    }
    for (const auto key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_F5}) {
        sheet.setRows(rows, std::nullopt);
        QTest::keyClick(table, key);
        EXPECT_EQ(sheet.selectedRow().value_or(9), key == Qt::Key_F5 ? 9U : 0U) << key;
    }

    Go("*QVStaple");
    auto* box = Field<QComboBox>("*QVStaple");
    const Tester choices(box->model(), Tester::FailureReportingMode::Fatal);
    const int before = box->count();
    QSignalSpy replaced(box->model(), &QAbstractItemModel::modelReset);
    static_cast<PPDXPopupControl*>(pane.Editor().FindControl("*QVStaple"))
        ->AppendPopupItem({"More", cfString("More"), nullptr, 0});
    pane.Draw();
    pane.Editor().SetValue("*QVStaple", "Front");
    EXPECT_EQ(box->count(), before + 1);
    EXPECT_EQ(replaced.count(), 1);
    EXPECT_EQ(box->currentIndex(), 1);
}

// The style's drawings of a control serve those of every other pane. Qt never forgets their names.
TEST_F(PaneWidgetTest, ControlsShareTheirColors) {
    Go("*QVDuplex");
    pane.Find<QCheckBox>("bidiCheckBox")->setChecked(true);
    const auto* sign = pane.Find<QWidget>("twoWaySign")->findChild<QWidget*>();
    for (const QColor& window : {QColor(0xEF, 0xEF, 0xEF), QColor(50, 50, 52)}) {
        QApplication::setPalette(QPalette(window));
        QCoreApplication::processEvents();
        EXPECT_EQ(sign->accessibleName(), QStringLiteral("Two-way communication: On"));
        const QPalette colors = Field<QComboBox>("*QVDuplex")->palette();
        EXPECT_EQ(colors, Widget().SearchField()->palette());
        ViewedPane other(samplePane());
        other.Draw();
        for (const std::string& page : other.Widget().PageIdentifiers()) {
            ASSERT_TRUE(other.Widget().ShowPage(page));
        }
        for (const QWidget* control : other.Root()->findChildren<QWidget*>()) {
            if (control->inherits("QPushButton") || control->inherits("QToolButton") ||
                control->inherits("QScrollBar") || control->inherits("QSpinBox") ||
                control->inherits("QComboBox")) {
                const QPalette own = control->palette();
                EXPECT_TRUE(own.isCopyOf(colors) || own != colors) << control->metaObject()->className();
            }
        }
    }
    QApplication::setPalette(QPalette());
}

TEST_F(PaneWidgetTest, ThePictureStandsOnlyBesideAPageThatHasItsRoom) {
    JobPicture& picture = *pane.Widget().Picture();
    QWidget& root = *pane.Root();
    root.resize(root.minimumSizeHint());
    EXPECT_FALSE(picture.isVisible());
    root.resize(4000, 640);
    ASSERT_TRUE(Widget().ShowPage("quickAccess"));
    QCoreApplication::processEvents();
    ASSERT_NE(Field<QComboBox>("*PageSize"), nullptr);
    EXPECT_LT(Field<QComboBox>("*PageSize")->width(), 1000) << "no wider than can be read";
    root.resize(1366, 640);
    ASSERT_TRUE(picture.isVisible());
    EXPECT_LT(root.minimumSizeHint().width(), 1000) << "the picture may go again";
    for (const bool isWanted : {false, true}) {
        QTest::mouseClick(pane.Widget().PictureButton(), Qt::LeftButton);
        EXPECT_EQ(picture.isVisible(), isWanted);
        ViewedPane next(samplePane()); // another dialog of the person
        EXPECT_EQ(next.Widget().PictureButton()->isChecked(), isWanted);
    }
}

} // namespace
} // namespace torka::tests
