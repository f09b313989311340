// SPDX-License-Identifier: Apache-2.0
#include "ModuleFixture.h"

#include "platform/TextEncoding.h"
#include "tests/support/qt/AccessibleTree.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <clocale>
#include <filesystem>
#include <gmock/gmock.h>

// Tests the window without a display. The module reads the server's records while it creates the window. The
// test uses such a read to get the window, because either side may have created the QApplication.

namespace torka::tests {

namespace {

template <typename Widget>
Widget& child(const QDialog& dialog, const char* name) {
    auto* found = dialog.findChild<Widget*>(QString::fromUtf8(name));
    if (found == nullptr) {
        ADD_FAILURE() << "the window has no " << name;
        std::abort();
    }
    return *found;
}

// The widget that takes the focus and has a name for a screen reader.
QWidget& named(const QDialog& dialog, const char* name) {
    for (QWidget* widget : dialog.findChildren<QWidget*>()) {
        const QString heard = QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
        if (widget->focusPolicy() != Qt::NoFocus && (heard == name || widget->accessibleName() == name)) {
            return *widget;
        }
    }
    ADD_FAILURE() << "nothing has the name " << name;
    std::abort();
}

// The lines that went, after "-", and those that came, after "+", in their order.
std::string changedLines(const std::string& before, const std::string& after) {
    const auto without = [](const std::string& text, const std::string& other, const char* mark) {
        QStringList known = QString::fromStdString(other).split('\n');
        std::string result;
        for (const QString& line : QString::fromStdString(text).split('\n')) {
            result += known.removeOne(line) ? "" : mark + line.toStdString() + "\n";
        }
        return result;
    };
    return without(before, after, "-") + without(after, before, "+");
}

// Qt frees the animation of the button that clears the search when it ends, and not with the dialog.
void waitForAnimations() {
    constexpr int fading = 160; // ms
    QTest::qWait(2 * fading);
}

void press(const QDialog& dialog, const char* name) { child<QAbstractButton>(dialog, name).click(); }

} // namespace

class ModuleWindow : public ModuleTest {
protected:
    ModuleWindow() {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("LC_ALL", "C.UTF-8", 1);
        SetDescription(std::string(TORKA_SOURCE_DIR) + "/samples/torka-production.ppd");
        const Pairs job{{"*PageSize", "A4"},     {"*QVDuplex", "None"},     {"*QVBookletCreep", "10"},
                        {"*Notes1", "hello"},    {"*InputSlot", "Server1"}, {"*QVStaple", "None"},
                        {"*QV_COPIES", "1"},     {"num copies", "1"},       {"*MM_A1", "raw"},
                        {"*QVServiceMode", "x"}, {"*QV_WATERMARK", "-1"},   {"*DeptPassword", "harbor7"}};
        SetSettings(job);
        host.Put("PresetsList", L"1\nBrochure\n");
        host.Put("PresetsData",
                 L"Brochure\nJPKeyValues=1\n*QVDuplex=Long\nTesselKeyValues=0\nPresetKeyValues=0\n");
        host.templateText = "<Category name=\"UI-Modification\">\n<Controls>\n</Controls>\n<Lock>\n"
                            "<ZANPPD key=\"*QVStaple\" value=\"True\"/>\n</Lock>\n<Show>\n"
                            "<ZANPPD key=\"*QVDuplex\" value=\"False\"/>\n</Show>\n</Category>";
    }
    // Runs the module and, when its window is open, `act`: a person's actions.
    std::string Run(const std::function<void(QDialog&)>& act) {
        host.onRead = [this, act] {
            if (QCoreApplication::instance() == nullptr) {
                return;
            }
            host.onRead = nullptr;
            QTimer::singleShot(0, [act] {
                auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                ASSERT_NE(dialog, nullptr);
                act(*dialog);
                if (dialog->isVisible()) {
                    dialog->reject();
                }
            });
        };
        const std::string outcome = ModuleTest::Run();
        EXPECT_EQ(host.onRead, nullptr) << "no window opened";
        return outcome;
    }
};

TEST_F(ModuleWindow, ChangesAreAccepted) {
    std::setlocale(LC_ALL, "C");
    host.templateText.clear();
    const std::string outcome = Run([](QDialog& dialog) {
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
        dynamic_cast<QComboBox&>(named(dialog, "Watermark to print")).setCurrentIndex(1);
        // The second time, the person accepts the color that the color dialog begins with.
        for (const QColor& chosen : {QColor(32, 64, 96), QColor()}) {
            QTimer::singleShot(0, &dialog, [chosen] {
                auto* colors = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
                ASSERT_NE(colors, nullptr);
                if (chosen.isValid()) {
                    colors->setCurrentColor(chosen);
                }
                colors->accept();
            });
            for (auto* button : dialog.findChildren<QAbstractButton*>()) {
                if (button->accessibleName().startsWith("Color ")) {
                    button->click();
                }
            }
        }
        press(dialog, "applyPreset");
        EXPECT_EQ(child<QComboBox>(dialog, "*QVDuplex").currentData(), "Long");
        dialog.accept();
    });
    EXPECT_EQ(outcome, "0");
    EXPECT_EQ(QCoreApplication::instance(), nullptr); // the module creates its own
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    const Pairs expected{{"*PageSize", "Letter"},     {"*InputSlot", "Server1"}, {"*QV_COPIES", "25"},
                         {"num copies", "25"},        {"*Notes1", "hello!"},     {"*QVDuplex", "Long"},
                         {"*PresetName", "Brochure"}, {"*QV_WATERMARK", "0"}};
    for (const auto& [key, value] : expected) {
        EXPECT_EQ(Value(key), value) << key;
    }
    EXPECT_THAT(watermarkDefinitions(*record),
                testing::ElementsAre("0,0,0,32,64,96,0,0,0,450,0,0,72,Helvetica-Bold,PROOF, 2"));
}

// Every page as a screen reader finds it, and what each action of a person changes there.
TEST_F(ModuleWindow, SaysWhatWasReviewed) {
    for (const char* name : {"TonerInfo", "TrayInfo", "ServerInfo", "CDIHelpStrings", "ListLockedKeys"}) {
        const std::string file = std::string(TORKA_SOURCE_DIR) + "/samples/server-data/data/" + name;
        host.Put(name, wideFromUtf8(readFile(file)));
    }
    std::string said;
    Run([&said](QDialog& dialog) {
        // Its button fades in and out, and Qt leaks the animation when the application ends meanwhile.
        child<QLineEdit>(dialog, "search").setClearButtonEnabled(false);
        std::string before;
        const auto act = [&](const std::string& action, const std::function<void()>& person) {
            person();
            const std::string now = accessibleTree(dialog);
            said += "# " + action + "\n" + changedLines(before, now);
            before = now;
        };
        auto& pages = child<QListWidget>(dialog, "pages");
        const auto show = [&pages](int row) { return [&pages, row] { pages.setCurrentRow(row); }; };
        const auto points = [&](const char* name, int value) {
            return [&dialog, name, value] { dynamic_cast<QSpinBox&>(named(dialog, name)).setValue(value); };
        };
        const auto check = [&](const char* name) {
            return [&dialog, name] { dynamic_cast<QAbstractButton&>(named(dialog, name)).click(); };
        };
        const auto write = [&dialog](const char* font) {
            for (auto* box : dialog.findChildren<QComboBox*>()) {
                if (box->isEditable()) {
                    box->setCurrentText(font);
                }
            }
        };
        act("opened", [] {});
        for (int row = 1; row < pages.count(); ++row) {
            act("page " + pages.item(row)->text().toStdString(), show(row));
        }
        act("add a watermark", check("Add a watermark"));
        act("each font", [&] {
            std::map<QString, QImage> looks;
            for (const char* font : {"Courier", "Times-Italic", "Times-Roman", "Helvetica",
                                     "Helvetica-Oblique", "Helvetica-Bold"}) {
                write(font);
                for (auto* widget : dialog.findChildren<QWidget*>()) {
                    if (widget->accessibleName() == "Preview") {
                        const QImage look = widget->grab().toImage();
                        for (const auto& [other, others] : looks) {
                            EXPECT_NE(look, others) << font << other.toStdString();
                        }
                        looks[font] = look;
                    }
                }
            }
            EXPECT_EQ(looks.size(), 6U);
        });
        act("size", points("Size:", 36));
        act("right", points("Shift right:", -20000));
        act("up", points("Shift up:", 20001));
        act("angle", [&] { dynamic_cast<QDoubleSpinBox&>(named(dialog, "Angle:")).setValue(-12.34); });
        act("clear", check("Clear toner, no color"));
        act("first page", check("On the first page only"));
        act("font", [&] { write("Courier"); });
        act("text", [&] { QTest::keyClicks(&named(dialog, "Text:"), " 2 "); });
        act("add another", check("Add a watermark"));
        act("print it",
            [&] { dynamic_cast<QComboBox&>(named(dialog, "Watermark to print")).setCurrentIndex(1); });
        act("remove it", check("Remove the watermark"));
        act("remove the other", check("Remove the watermark"));
        act("first page of settings", show(0));
        act("search for little", [&] { child<QLineEdit>(dialog, "search").setText("creep"); });
        act("edit", [&] { child<QSpinBox>(dialog, "*QVBookletCreep").setValue(500); });
        act("undo", check("Restore Creep (1/100 mm)"));
        act("search for more", [&] { child<QLineEdit>(dialog, "search").setText("notes E"); });
        act("search for nothing", [&] { child<QLineEdit>(dialog, "search").setText("xyz"); });
        act("search no longer", [&] { child<QLineEdit>(dialog, "search").clear(); });
        act("apply the preset", [&] { press(dialog, "applyPreset"); });
        act("restore", [&] { press(dialog, "restore"); });
        waitForAnimations();
    });
    const TemporaryFolder now;
    const std::string golden = TORKA_SOURCE_DIR "/tests/jobproperties/golden/window";
    const std::string changes = runCommand({"diff", "-u", golden, now.Write("window", said).string()}).output;
    EXPECT_TRUE(changes.empty()) << "if this is right, apply it with patch:\n" << changes;
}

// Names, keys and tips from a description and from the server that look like markup.
TEST_F(ModuleWindow, ShowsMarkupAsText) {
    SetDescription(folder.Write("p.ppd", "*PPD-Adobe: \"4.3\"\n*OpenUI *Bold/<b>Bold</b>: PickOne\n"
                                         "*DefaultBold: A\n*Bold A/<i>a</i>: \"\"\n*CloseUI: *Bold\n"));
    SetSettings({{"*Bold", "A"}, {"*<u>unknown</u>", "<u>x</u>"}});
    host.Put("CDIHelpStrings", L"*Bold=<a href=\"x\">help</a>\n");
    Run([](QDialog& dialog) {
        std::size_t markup = 0;
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            if (Qt::mightBeRichText(label->text())) {
                ++markup;
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
            }
        }
        EXPECT_GE(markup, 1U) << "nothing looked like markup";
        for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
            const std::string tip = widget->toolTip().toStdString();
            EXPECT_FALSE(tip.find("<b>") != tip.npos || tip.find("<a ") != tip.npos) << tip;
        }
    });
}

TEST_F(ModuleWindow, SearchesAndRunsInTheHostsApplication) {
    int count = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    const std::string outcome = Run([](QDialog& dialog) {
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
        const auto isBold = [&] {
            const QList<QLabel*> labels = dialog.findChildren<QLabel*>();
            return std::ranges::any_of(
                labels, [&](QLabel* label) { return label->buddy() == &creep && label->font().bold(); });
        };
        EXPECT_FALSE(isBold());
        child<QSpinBox>(dialog, "*QVBookletCreep").setValue(100);
        EXPECT_TRUE(isBold()) << "as it is no longer what the job came with";
        for (auto* button : dialog.findChildren<QAbstractButton*>()) {
            if (button->accessibleName() == "Restore Creep (1/100 mm)") {
                ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
                const QImage before = button->grab().toImage();
                dialog.setAttribute(Qt::WA_KeyboardFocusChange);
                EXPECT_EQ(button->grab().toImage(), before);
                button->setFocus(Qt::TabFocusReason);
                EXPECT_NE(button->grab().toImage(), before) << "the keyboard's place is not seen";
            }
        }
        search.setText("note 1");
        EXPECT_TRUE(note.isVisible());
        QTest::keyClick(&search, Qt::Key_Escape); // clears the search and keeps the window
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_FALSE(note.isVisible());

        auto& pages = child<QListWidget>(dialog, "pages");
        pages.setCurrentRow(1);
        search.setText("note 1");
        pages.setCurrentRow(0); // the page that the person clicks takes the place of what was found
        EXPECT_TRUE(search.text().isEmpty());

        press(dialog, "restore");
        EXPECT_EQ(child<QSpinBox>(dialog, "*QVBookletCreep").value(), 10);
        waitForAnimations();
        dialog.reject();
    });
    EXPECT_EQ(outcome, "1");
    EXPECT_EQ(QCoreApplication::instance(), &application);
}

// The module looks for the bundle, and so for its texts, beside itself.
TEST_F(ModuleWindow, SpeaksThePersonsLanguage) {
    namespace fs = std::filesystem;
    fs::create_directories(folder / "TorkaFeatures.bundle/Contents");
    fs::create_directory_symlink(TORKA_SOURCE_DIR "/bundle/Resources",
                                 folder / "TorkaFeatures.bundle/Contents/Resources");
    fs::copy_file(TORKA_MODULE, folder / "module.so");
    ASSERT_EQ(loadJobPropertiesLibrary(folder / "module.so").status, ModuleStatus::loaded);
    ::setenv("LC_ALL", "de_DE.UTF-8", 1);
    host.Put("QueuePropList", L"*Collate=True\n");
    host.Put("ListLockedKeys", L"*QV_WATERMARK=True\n");
    Run([](QDialog& dialog) {
        const QWidget& printed = named(dialog, "Zu druckendes Wasserzeichen");
        EXPECT_FALSE(printed.isEnabled());
        const QList<QLabel*> labels = printed.parentWidget()->findChildren<QLabel*>();
        EXPECT_EQ(std::ranges::count(labels, "Vom Druckserver gesperrt", &QLabel::text), 1);
    });
}

TEST_F(ModuleWindow, SaysWhyItHasNoDescription) {
    for (const auto& [path, reason] :
         {std::pair{"", "did not say where"}, {"/nowhere.ppd", "/nowhere.ppd cannot be read"}}) {
        SetDescription(path);
        std::string said;
        Run([&said](QDialog& dialog) {
            for (const QLabel* label : dialog.findChildren<QLabel*>()) {
                said += label->isVisible() ? label->text().toStdString() : "";
            }
        });
        EXPECT_THAT(said, testing::HasSubstr(reason));
    }
}

TEST_F(ModuleWindow, NeedsADisplay) {
    for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        ::unsetenv(variable);
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(ModuleTest::Run(), "1");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("there is no display"), std::string::npos);
}

} // namespace torka::tests
