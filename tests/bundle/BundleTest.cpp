// SPDX-License-Identifier: Apache-2.0
#include "bundle/WaitDialog.h"
#include "output/BundleIdentifier.h"
#include "platform/posix/LanguageFolders.h"
#include "platform/posix/PosixBundle.h"
#include "platform/posix/PosixSystem.h"
#include "platform/qt/PersonsTexts.h"
#include "tests/support/CallbackDialog.h"
#include "tests/support/TestSupport.h"

#include <QApplication>
#include <QProgressDialog>
#include <QPushButton>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

// Tests the bundle as a host uses it: the built folder, its shared object, and copies with a fault.

namespace torka::tests {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

// Runs as a person's process, with all its files below one folder.
class BundleTest : public testing::Test {
protected:
    BundleTest() {
        SetLanguages({"en-US"});
        setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        setenv("TORKA_SYSTEM_ROOT", folder.Path().c_str(), 1);
    }
    ~BundleTest() override { setSystem(nullptr); }
    static void SetLanguages(std::vector<std::string> languages) {
        PosixSystemOptions options;
        options.languages = std::move(languages);
        setSystem(std::make_unique<PosixSystem>(options));
    }
    // Copies the bundle for a test with a fault. The shared object stays in the original bundle.
    fs::path Copy() const {
        const fs::path copy = folder / ("Copy" + std::to_string(++copies) + ".bundle");
        fs::copy(TORKA_BUNDLE, copy, fs::copy_options::recursive);
        return copy;
    }
    static BundleRef Open(const fs::path& path = TORKA_BUNDLE) { return *openBundle(path); }
    static auto Panels(PDEPlugIn& plugIn, const std::shared_ptr<CallbackDialog>& dialog) {
        return plugIn.PDEPanelsForType(cfString(printDialogPanelType), dialog);
    }
    static std::string Text(const BundleRef& bundle, const char* key, const char* table = "Localizable") {
        return utf8Text(bundle->LocalizedString(cfString(key), cfString("default"), table));
    }

    TemporaryFolder folder;
    mutable int copies = 0;
};

std::shared_ptr<CallbackDialog> dialogFor(const fs::path& description) {
    auto dialog = std::make_shared<CallbackDialog>();
    dialog->printer->name = "Press";
    dialog->printer->ppdPath = description.string();
    dialog->printer->deviceUri = "socket://10.0.0.7";
    dialog->printer->makeAndModel = "Torka Production 90";
    return dialog;
}

fs::path sample(const char* name) { return fs::path(TORKA_SOURCE_DIR) / "samples" / name; }

TEST_F(BundleTest, GivesPanelsToAnyHost) {
    const BundleRef bundle = Open();
    EXPECT_EQ(utf8Text(bundle->Identifier()), bundleIdentifier);
    const auto plugIn = *bundle->InstantiatePrincipalClass();
    EXPECT_TRUE(plugIn->initWithBundle(bundle));
    EXPECT_FALSE(Panels(*plugIn, dialogFor(sample("torka-defects.ppd"))));
    EXPECT_FALSE(Panels(*plugIn, dialogFor(folder / "missing.ppd")));
    for (const char* name : {"torka-production-ja.ppd", "torka-production.ppd"}) {
        const auto dialog = dialogFor(sample(name));
        auto panels = Panels(*plugIn, dialog);
        ASSERT_TRUE(panels) << name;
        ASSERT_EQ(panels->size(), 1U);
        const PDEPanelRef panel = panels->front();
        EXPECT_EQ(utf8Text(panel->panelKind()), bundleIdentifier);
        EXPECT_EQ(utf8Text(panel->panelName()), "Torka Features");
        EXPECT_GT(CFArrayGetCount(panel->supportedPPDOptionKeys()), 0);
        EXPECT_NE(panel->panelView(), nullptr);
        EXPECT_TRUE(panel->willShow());
        EXPECT_TRUE(panel->shouldHide());
        panel->printWindowWillClose();
        const auto path = cfCast<CFString>(dialog->settings->Value(cfString(ticketPathSetting)));
        EXPECT_THAT(utf8Text(path), HasSubstr("Torka.temp"));
        EXPECT_NE(cfCast<CFString>(dialog->settings->Value(cfString("*QVDuplex"))), nullptr);
    }
}

// The copy has its own shared object, which finds the bundle around itself.
TEST_F(BundleTest, ABrokenInterfaceFileLeavesAPanelWithoutAView) {
    for (const char* content :
         {"", "<ui", "<?xml version=\"1.0\"?><ui version=\"4.0\"><widget class=\"QDial\"/></ui>"}) {
        const fs::path copy = Copy();
        const fs::path file = copy / "Contents/Resources/TorkaFeaturesPDE.ui";
        if (*content == '\0') {
            fs::remove(file);
        } else {
            ASSERT_FALSE(platform::system().WriteFile(file, content, 0644));
        }
        const auto plugIn = *Open(copy)->InstantiatePrincipalClass();
        const auto dialog = dialogFor(sample("torka-production.ppd"));
        dialog->printer->sendResult = kPMGeneralError; // avoids the wait for a command job
        const auto panels = Panels(*plugIn, dialog);
        ASSERT_TRUE(panels);
        const PDEPanelRef& panel = panels->front();
        EXPECT_EQ(panel->panelView(), nullptr) << content;
        panel->printWindowWillClose();
    }
    const fs::path copy = Copy();
    fs::remove(copy / "Contents/PrinterList.plist");
    const auto plugIn = *Open(copy)->InstantiatePrincipalClass();
    EXPECT_FALSE(Panels(*plugIn, dialogFor(sample("torka-production.ppd"))));
}

TEST_F(BundleTest, SharedObjectShowsOneFunction) {
    const CommandResult symbols =
        runCommand({"nm", "-D", "--defined-only", "-C",
                    std::string(TORKA_BUNDLE) + "/Contents/Linux/libTorkaFeatures.so"});
    ASSERT_EQ(symbols.status, 0) << symbols.errors;
    EXPECT_THAT(symbols.output, HasSubstr("torkaBundleInstantiate"));
    EXPECT_THAT(symbols.output, testing::Not(HasSubstr("torka::")));
}

TEST_F(BundleTest, BrokenPartsAreToldInOneLine) {
    const std::string info = "Info.plist";
    const std::string object = "Linux/libTorkaFeatures.so";
    const struct {
        std::string part;
        const char* from; // null removes the part, "" replaces its whole content
        std::string to;
        const char* log;
        bool opens;
    } cases[] = {
        {info, nullptr, "", "Info.plist cannot be used", false},
        {info, "", "<plist", "Info.plist cannot be used", false},
        {info, "", "<plist version=\"1.0\"><dict/></plist>", "no CFBundleIdentifier", false},
        {info, "PDEPlugIn5D2E", "PDEPlugIn6D2E", "has no class", true},
        {info, "libTorkaFeatures.so", "../evil.so", "names no shared object", true},
        {object, nullptr, "", "cannot be loaded", true},
        {object, "", "text", "cannot be loaded", true},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.part + " " + test.to);
        const fs::path copy = Copy();
        const fs::path part = copy / "Contents" / test.part;
        std::string text = readFile(part);
        fs::remove(part);
        if (test.from) {
            const std::string from = *test.from == '\0' ? text : test.from;
            text.replace(text.find(from), from.size(), test.to);
            EXPECT_FALSE(platform::system().WriteFile(part, text, 0644));
        }
        const CapturingLog log;
        const auto bundle = openBundle(copy);
        EXPECT_EQ(static_cast<bool>(bundle), test.opens);
        EXPECT_TRUE(!bundle || !(*bundle)->InstantiatePrincipalClass());
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(test.log)));
    }
}

TEST_F(BundleTest, BundlesAreFoundByTheirIdentifier) {
    EXPECT_EQ(bundleWithIdentifier("org.example.none"), nullptr);
    const BundleRef bundle = Open();
    registerBundle(bundle);
    EXPECT_EQ(bundleWithIdentifier(bundleIdentifier), bundle);
    forgetBundle(bundleIdentifier);
    EXPECT_EQ(bundleWithIdentifier(bundleIdentifier), nullptr);
    EXPECT_TRUE(bundle->ResourcePath("TorkaFeaturesPDE.ui").is_absolute());
    for (const char* none : {"missing.ui", "../Info.plist", "", ".", "en.lproj"}) {
        EXPECT_EQ(bundle->ResourcePath(none), "") << none;
    }
}

TEST_F(BundleTest, SpeaksThePersonsLanguage) {
    const std::vector<std::pair<std::vector<std::string>, const char*>> people = {
        {{"en-GB"}, "Torka Features"},
        {{"de-AT"}, "Torka-Funktionen"},
        {{"fr"}, "Fonctions Torka"},
        {{"ja-JP"}, "Torka の機能"},
        {{"zh-Hans-CN"}, "Torka 功能"},
        {{"zh-Hans-SG"}, "Torka 功能"},
        {{"zh"}, "Torka 功能"},
        {{"zh-Hant-TW"}, "Torka Features"},
        {{"sv-SE", "de"}, "Torka-Funktionen"},
        {{"sv-SE"}, "Torka Features"},
        {{"../../../de"}, "Torka Features"}};
    for (const auto& [languages, title] : people) {
        SetLanguages(languages);
        EXPECT_EQ(Text(Open(), "PDE Panel Title"), title) << languages.front();
    }
    EXPECT_THAT(languageFolders("zh-Hans-CN"),
                ElementsAre("zh_Hans_CN", "zh-Hans-CN", "zh_CN", "zh-CN", "zh_Hans", "zh-Hans"));
    EXPECT_THAT(languageFolders("de"), ElementsAre("de"));
    EXPECT_THAT(languageFolders("a/b"), IsEmpty());
}

TEST_F(BundleTest, WindowsSpeakThePersonsLanguageAndThoseOfOthersNoticeNothing) {
    class Window final : public QWidget {
    public:
        int changes = 0;
        void changeEvent(QEvent* event) override {
            changes += event->type() == QEvent::LanguageChange ? 1 : 0;
        }
    } window;
    SetLanguages({"de"});
    qApp->setProperty("torkaTexts", QVariant()); // what an earlier test asked for
    sayInPersonsLanguage(Open());
    QCoreApplication::processEvents();
    EXPECT_EQ(window.changes, 0);
    EXPECT_EQ(QCoreApplication::translate("torka::dialog::PaneTab", "Choose a printer."),
              "Wählen Sie einen Drucker.");
    EXPECT_EQ(QCoreApplication::translate("torka", "no text of ours"), "no text of ours");
    // Names stay, also those that equal a message.
    for (const auto& [english, said] : std::initializer_list<std::pair<const char*, const char*>>{
             {"the print server has no queue %n", "der Druckserver hat keine Warteschlange %n"},
             {"the print server has no queue held", "der Druckserver hat keine Warteschlange held"},
             {"the queue is changed, but none can be replaced by others than root, and the print server "
              "refuses it",
              "die Warteschlange ist geändert, aber none kann von anderen als root ersetzt werden, und der "
              "Druckserver lehnt es ab"},
             {"open: good: the document cannot be read: Permission denied",
              "open: good: das Dokument kann nicht gelesen werden: Zugriff verweigert"}}) {
        EXPECT_EQ(QCoreApplication::translate(messageContext, english), said);
    }
    EXPECT_EQ(QCoreApplication::translate("OthersWindow", "Choose a printer."), "Choose a printer.");
    qApp->setProperty("torkaTexts", QVariant());
}

TEST_F(BundleTest, BrokenTablesFallBackToEnglish) {
    SetLanguages({"de"});
    const fs::path copy = Copy();
    EXPECT_FALSE(platform::system().WriteFile(copy / "Contents/Resources/de.lproj/Localizable.strings",
                                              "no list", 0644));
    fs::remove(copy / "Contents/Resources/en.lproj/BidiStrings.strings");
    const BundleRef bundle = Open(copy);
    const CapturingLog log;
    EXPECT_EQ(Text(bundle, "PDE Panel Title"), "Torka Features");
    EXPECT_EQ(Text(bundle, "CONTINUE", "BidiStrings"), "Fortfahren");
    EXPECT_EQ(Text(bundle, "No such key"), "default");
    EXPECT_EQ(Text(bundle, "PDE Panel Title", "../de.lproj/BidiStrings"), "default");
    EXPECT_EQ(utf8Text(bundle->LocalizedString(cfString("No such key"), nullptr, "None")), "No such key");
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("de.lproj/Localizable.strings cannot be used")));
}

// With the same places for values and shortcut keys. The defaults in the source are the English texts, and no
// text of the source is without a table.
TEST_F(BundleTest, EveryLanguageHasEveryText) {
    EXPECT_EQ(runPython(R"PY(
import pathlib, plistlib, re, sys
root, resources = map(pathlib.Path, sys.argv[1:])
texts = {path.parent.stem + path.stem: plistlib.loads(path.read_bytes()) for path in resources.glob("*.lproj/*.strings")}
english = [name[2:] for name in texts if name.startswith("en")]
assert {"Localizable", "BidiStrings", "Pane"} <= set(english)
for name in english:
    for language in ("de", "fr", "ja", "zh_CN"):
        table = texts.get(language + name, {})
        for key in table.keys() | texts["en" + name].keys():
            places = [sorted(re.findall("%.|&", each.get(key, "%x"))) for each in (table, texts["en" + name])]
            if places[0] != places[1] or not table[key]:
                print(language, name, key)
tables = texts["enBidiStrings"] | texts["enLocalizable"]
told, asked = {}, set()
for folder in ("src", "bundle"):
    for path in (root / folder).rglob("*.cpp"):
        source = path.read_text().replace(r"\u2026", chr(0x2026))
        for key, text in re.findall(r'"([A-Za-z_ ]+)",\s*((?:"[^"]*"\s*)+)', source):
            told.setdefault(key, set()).add("".join(re.findall('"([^"]*)"', text)))
        asked |= set(re.findall(r'\b(?:Text|translate|bidiString|LocalizedString)\(\s*"([A-Za-z_ ]+)",\s*"', source))
for key in sorted(asked | tables.keys()):
    if told.get(key) != {tables.get(key)}:
        print(key, told.get(key), tables.get(key))
)PY",
                        {TORKA_SOURCE_DIR, std::string(TORKA_BUNDLE) + "/Contents/Resources"}),
              "");
}

QProgressDialog* shownWait() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* dialog = qobject_cast<QProgressDialog*>(window); dialog && dialog->isVisible()) {
            return dialog;
        }
    }
    return nullptr;
}

TEST(WaitDialog, ShowsLongWaitsAndCanBeCancelled) {
    using std::chrono::milliseconds;
    constexpr milliseconds limit{36000};
    WaitDialog waits(nullptr);
    waits.Begin();
    waits.Show({WaitFor::commandJob, milliseconds(300), limit});
    EXPECT_EQ(shownWait(), nullptr);
    EXPECT_TRUE(WaitDialog::wait(milliseconds(5)));
    waits.Show({WaitFor::commandJob, milliseconds(500), limit});
    ASSERT_NE(shownWait(), nullptr);
    EXPECT_EQ(shownWait()->value(), 500);
    waits.Show({WaitFor::lockFile, limit * 2, limit}); // past the limit, the dialog neither closes nor resets
    ASSERT_NE(shownWait(), nullptr);
    waits.Show({WaitFor::dataFile, milliseconds(900), milliseconds(0)});
    EXPECT_EQ(shownWait()->maximum(), 0);
    auto* button = shownWait()->findChild<QPushButton*>();
    ASSERT_NE(button, nullptr);
    QTimer::singleShot(5, button, &QPushButton::click);
    EXPECT_FALSE(WaitDialog::wait(std::chrono::hours(1)));
    EXPECT_FALSE(WaitDialog::wait(milliseconds(0)));
    waits.End();
    EXPECT_EQ(shownWait(), nullptr);
    waits.Begin();
    EXPECT_TRUE(WaitDialog::wait(milliseconds(1)));
    // A dialog without a call of End closes by itself.
    waits.Show({WaitFor::moduleReady, milliseconds(500), limit});
    EXPECT_TRUE(WaitDialog::wait(std::chrono::seconds(1)));
    EXPECT_EQ(shownWait(), nullptr);
}

} // namespace

} // namespace torka::tests
