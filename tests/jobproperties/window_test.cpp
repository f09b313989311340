#include "FakePane.h"
#include "tests/support/TestSupport.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>

// Tests the window without a display. The module calls the pane's tray callback while it creates the window.
// The test uses this call to get the window, because either side may have created the QApplication.

namespace torka::tests {

namespace {

// Runs `act`, a person's actions, when the window is open.
void whenOpen(FakePane& pane, const std::function<void(QDialog&)>& act) {
    pane.whenAskedForTrays = [act] {
        QTimer::singleShot(0, [act] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
            if (dialog->isVisible()) {
                dialog->reject();
            }
        });
    };
}

template <typename Widget>
Widget& child(const QDialog& dialog, const char* name) {
    auto* found = dialog.findChild<Widget*>(QString::fromUtf8(name));
    if (found == nullptr) {
        ADD_FAILURE() << "the window has no " << name;
        std::abort();
    }
    return *found;
}

void press(const QDialog& dialog, const char* name) { child<QAbstractButton>(dialog, name).click(); }

class ModuleWindow : public testing::Test {
protected:
    void SetUp() override {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::unsetenv("TORKA_JP_SCRIPT");
        const std::string path = std::string(TORKA_SOURCE_DIR) + "/samples/torka-production.ppd";
        pane.serverData =
            L"<?xml version=\"1.0\"?>\n<SMDData>\n<Configuration locale=\"en\" ppdLocation0=\"" +
            std::wstring(path.begin(), path.end()) + L"\" />\n</SMDData>";
        pane.settings = {
            {L"*PageSize", L"A4"},     {L"*QVDuplex", L"None"},     {L"*QVBookletCreep", L"10"},
            {L"*Notes1", L"hello"},    {L"*InputSlot", L"Server1"}, {L"*QVStaple", L"None"},
            {L"*QV_COPIES", L"1"},     {L"num copies", L"1"},       {L"*MM_A1", L"raw"},
            {L"*QVServiceMode", L"x"}, {L"*QV_WATERMARK", L"-1"},   {L"*DeptPassword", L"harbor7"}};
        pane.presetNames = {L"Brochure"};
        pane.presetJob = {{L"*QVDuplex", L"Long"}};
        pane.readOnly = {{L"*QVStaple", L""}};
        pane.veiled = {{L"*QVDuplex", L""}};
        pane.hasWatermarks = true;
    }
    FakePane pane;
};

} // namespace

TEST_F(ModuleWindow, ChangesAreAccepted) {
    std::setlocale(LC_ALL, "C");
    ::setenv("LC_ALL", "C.UTF-8", 1);
    pane.veiled.clear();
    whenOpen(pane, [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Printing Preferences");
        auto& size = child<QComboBox>(dialog, "*PageSize");
        EXPECT_EQ(size.currentText(), "A4");
        size.setCurrentIndex(size.findData("Letter"));
        EXPECT_EQ(size.currentText(), "US Letter");
        // A choice that only the server knows stays beside those of the description.
        EXPECT_EQ(child<QComboBox>(dialog, "*InputSlot").currentData(), "Server1");
        child<QSpinBox>(dialog, "*QV_COPIES").setValue(25);
        QTest::keyClicks(&child<QLineEdit>(dialog, "*Notes1"), "!");
        press(dialog, "addWatermark");
        QTest::keyClicks(&child<QLineEdit>(dialog, "watermarkText"), "PROOF, 2");
        press(dialog, "applyPreset");
        EXPECT_EQ(child<QComboBox>(dialog, "*QVDuplex").currentData(), "Long");
        dialog.accept();
    });
    ASSERT_TRUE(pane.Run()); // the module creates the QApplication
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_EQ(pane.result, 0);
    EXPECT_EQ(pane.Value(L"*PageSize"), L"Letter");
    EXPECT_EQ(pane.Value(L"*InputSlot"), L"Server1");
    EXPECT_EQ(pane.Value(L"*QV_COPIES"), L"25");
    EXPECT_EQ(pane.Value(L"num copies"), L"25");
    EXPECT_EQ(pane.Value(L"*Notes1"), L"hello!");
    EXPECT_EQ(pane.Value(L"*QVDuplex"), L"Long");
    EXPECT_EQ(pane.Value(L"*PresetName"), L"Brochure");
    ASSERT_EQ(pane.returnedWatermarks.size(), 1U);
    EXPECT_EQ(pane.returnedWatermarks[0], L"0,0,0,128,128,128,0,0,0,450,0,0,72,Helvetica-Bold,PROOF, 2");
}

// Names, keys and tips from a description and from the server that look like markup.
TEST_F(ModuleWindow, ShowsMarkupAsText) {
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("p.ppd", "*PPD-Adobe: \"4.3\"\n*OpenUI *Bold/<b>Bold</b>: PickOne\n"
                              "*DefaultBold: A\n*Bold A/<i>a</i>: \"\"\n*CloseUI: *Bold\n");
    pane.serverData = L"<SMDData><Configuration ppdLocation0=\"" + std::wstring(path.begin(), path.end()) +
                      L"\"/></SMDData>";
    pane.settings = {{L"*Bold", L"A"}, {L"*<u>unknown</u>", L"<u>x</u>"}};
    pane.veiled.clear();
    pane.help = {{L"*Bold", L"<a href=\"x\">help</a>"}};
    whenOpen(pane, [](QDialog& dialog) {
        std::size_t markup = 0;
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            if (Qt::mightBeRichText(label->text())) {
                ++markup;
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
            }
        }
        EXPECT_GE(markup, 1U) << "nothing looked like markup";
        for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
            EXPECT_FALSE(widget->toolTip().contains("<b>") || widget->toolTip().contains("<a "))
                << widget->toolTip().toStdString();
        }
    });
    pane.Run();
}

TEST_F(ModuleWindow, HonoursTheTemplateAndTheHostsApplication) {
    int count = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    QApplication host(count, arguments);
    whenOpen(pane, [](QDialog& dialog) {
        EXPECT_FALSE(child<QComboBox>(dialog, "*QVStaple").isEnabled());
        EXPECT_EQ(child<QComboBox>(dialog, "*QVStaple").accessibleDescription(), "Set by your administrator");
        EXPECT_EQ(dialog.findChild<QWidget*>("*QVDuplex"), nullptr);      // hidden by the veiled keys
        EXPECT_EQ(dialog.findChild<QWidget*>("*QVServiceMode"), nullptr); // hidden by the description
        EXPECT_EQ(child<QLineEdit>(dialog, "*DeptPassword").echoMode(), QLineEdit::Password);

        // The search covers all pages, and every word must match.
        auto& search = child<QLineEdit>(dialog, "search");
        auto& creep = child<QWidget>(dialog, "*QVBookletCreep");
        auto& note = child<QWidget>(dialog, "*Notes1");
        EXPECT_FALSE(creep.isVisible());
        search.setText("booklet CREEP");
        EXPECT_TRUE(creep.isVisible());
        EXPECT_FALSE(note.isVisible());
        QTest::keyClick(&search, Qt::Key_Return); // moves the focus to the result
        EXPECT_EQ(dialog.focusWidget(), &creep);
        search.setText("note 1");
        EXPECT_TRUE(note.isVisible());
        QTest::keyClick(&search, Qt::Key_Escape); // clears the search and keeps the window
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_FALSE(note.isVisible());

        child<QSpinBox>(dialog, "*QVBookletCreep").setValue(100);
        press(dialog, "restore");
        EXPECT_EQ(child<QSpinBox>(dialog, "*QVBookletCreep").value(), 10);

        // Every widget that takes the focus has a name for a screen reader.
        for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
            const QWidget* parent = widget->parentWidget();
            if (widget->window() != &dialog || !(widget->focusPolicy() & Qt::TabFocus) ||
                widget->objectName().startsWith("qt_") || qobject_cast<const QComboBox*>(parent) != nullptr ||
                qobject_cast<const QAbstractSpinBox*>(parent) != nullptr) {
                continue;
            }
            const auto* interface = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
            EXPECT_NE(interface->text(QAccessible::Name), "")
                << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
        }
        dialog.reject();
    });
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(pane.openResult, SDM_SUCCESS);
    EXPECT_EQ(pane.result, 1);
    EXPECT_EQ(QCoreApplication::instance(), &host);
}

TEST_F(ModuleWindow, NeedsADisplay) {
    for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        ::unsetenv(variable);
    }
    testing::internal::CaptureStderr();
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(pane.openResult, SDM_NOT_AVAILABLE);
    EXPECT_EQ(pane.result, 1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("there is no display"), std::string::npos);
}

} // namespace torka::tests
