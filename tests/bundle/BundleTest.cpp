// SPDX-License-Identifier: Apache-2.0
#include "bundle/WaitDialog.h"
#include "output/BundleIdentifier.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/posix/LanguageFolders.h"
#include "platform/posix/PosixBundle.h"
#include "platform/posix/PosixSystem.h"
#include "tests/support/TestSupport.h"

#include <QApplication>
#include <QProgressDialog>
#include <QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

// Tests the bundle as a host uses it: the built folder, its shared object, and copies with a fault.

namespace torka::tests {

namespace {

using testing::Contains;
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
    static std::string Text(const BundleRef& bundle, const char* key, const char* table = "Localizable") {
        return utf8Text(bundle->LocalizedString(cfString(key), cfString("default"), table));
    }

    TemporaryFolder folder;
    mutable int copies = 0;
};

class Dialog final : public PDEPlugInCallback {
public:
    PMPrintSession printSession() const override { return session; }
    PMPrintSettings printSettings() const override { return settings; }
    PMPageFormat pageFormat() const override { return format; }
    std::shared_ptr<Printer> PMPrinter() const override { return printer; }

    std::shared_ptr<MemoryPrintSettings> settings = std::make_shared<MemoryPrintSettings>();
    std::shared_ptr<MemoryPrinter> printer = std::make_shared<MemoryPrinter>();
    std::shared_ptr<MemorySession> session = std::make_shared<MemorySession>(printer);
    std::shared_ptr<MemoryPageFormat> format = std::make_shared<MemoryPageFormat>();
};

std::shared_ptr<Dialog> dialogFor(const fs::path& description) {
    auto dialog = std::make_shared<Dialog>();
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
    const CFStringRef type = cfString(printDialogPanelType);
    const auto production = dialogFor(sample("torka-production.ppd"));
    const auto none = plugIn->PDEPanelsForType(cfString("another type"), production);
    ASSERT_TRUE(none);
    EXPECT_THAT(*none, IsEmpty());
    EXPECT_FALSE(plugIn->PDEPanelsForType(type, dialogFor(sample("torka-defects.ppd"))));
    EXPECT_FALSE(plugIn->PDEPanelsForType(type, dialogFor(folder / "missing.ppd")));
    EXPECT_FALSE(plugIn->PDEPanelsForType(type, nullptr));
    for (const char* name : {"torka-production-ja.ppd", "torka-production.ppd"}) {
        const auto dialog = dialogFor(sample(name));
        auto panels = plugIn->PDEPanelsForType(type, dialog);
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

TEST_F(BundleTest, OpensAndClosesAgainAndAgain) {
    const auto plugIn = *Open()->InstantiatePrincipalClass();
    for (int i = 0; i < 20; ++i) {
        const auto panels = plugIn->PDEPanelsForType(cfString(printDialogPanelType),
                                                     dialogFor(sample("torka-production.ppd")));
        ASSERT_TRUE(panels);
        static_cast<void>(panels->front()->panelView());
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
        const auto panels = plugIn->PDEPanelsForType(cfString(printDialogPanelType), dialog);
        ASSERT_TRUE(panels);
        const PDEPanelRef& panel = panels->front();
        EXPECT_EQ(panel->panelView(), nullptr) << content;
        EXPECT_TRUE(panel->willShow());
        EXPECT_TRUE(panel->saveValuesAndReturnError(nullptr));
        EXPECT_NE(dialog->settings->Value(cfString("*QVDuplex")), nullptr);
        panel->printWindowWillClose();
    }
    const fs::path copy = Copy();
    fs::remove(copy / "Contents/PrinterList.plist");
    const auto plugIn = *Open(copy)->InstantiatePrincipalClass();
    EXPECT_FALSE(
        plugIn->PDEPanelsForType(cfString(printDialogPanelType), dialogFor(sample("torka-production.ppd"))));
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
    struct Case {
        const char* name;
        std::function<void(const fs::path&)> spoil;
        const char* log;
        bool opens;
        bool instantiates;
    };
    const auto write = [](const fs::path& path, const std::string& text) {
        EXPECT_FALSE(platform::system().WriteFile(path, text, 0644));
    };
    const std::vector<Case> cases = {
        {"no Info.plist", [](const fs::path& bundle) { fs::remove(bundle / "Contents/Info.plist"); },
         "Info.plist cannot be used", false, false},
        {"broken Info.plist",
         [&](const fs::path& bundle) { write(bundle / "Contents/Info.plist", "<plist"); },
         "Info.plist cannot be used", false, false},
        {"no identifier",
         [&](const fs::path& bundle) {
             write(bundle / "Contents/Info.plist",
                   "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
         },
         "no CFBundleIdentifier", false, false},
        {"another class",
         [&](const fs::path& bundle) {
             std::string text = readFile(bundle / "Contents/Info.plist");
             text.replace(text.find("PDEPlugIn5D2E"), 13, "PDEPlugIn6D2E");
             write(bundle / "Contents/Info.plist", text);
         },
         "has no class", true, false},
        {"another folder's object",
         [&](const fs::path& bundle) {
             std::string text = readFile(bundle / "Contents/Info.plist");
             text.replace(text.find("libTorkaFeatures.so"), 19, "../evil.so");
             write(bundle / "Contents/Info.plist", text);
         },
         "names no shared object", true, false},
        {"no object",
         [](const fs::path& bundle) { fs::remove(bundle / "Contents/Linux/libTorkaFeatures.so"); },
         "cannot be loaded", true, false},
        {"no library",
         [&](const fs::path& bundle) { write(bundle / "Contents/Linux/libTorkaFeatures.so", "text"); },
         "cannot be loaded", true, false},
    };
    for (const Case& test : cases) {
        const fs::path copy = Copy();
        test.spoil(copy);
        const CapturingLog log;
        const auto bundle = openBundle(copy);
        EXPECT_EQ(static_cast<bool>(bundle), test.opens) << test.name;
        if (bundle) {
            EXPECT_EQ(static_cast<bool>((*bundle)->InstantiatePrincipalClass()), test.instantiates)
                << test.name;
        }
        ASSERT_EQ(log.Lines().size(), 1U) << test.name;
        EXPECT_THAT(log.Lines()[0], HasSubstr(test.log)) << test.name;
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

// The table's texts by language and key.
std::map<std::string, std::map<std::string, std::string>> allTables(const char* table) {
    std::map<std::string, std::map<std::string, std::string>> tables;
    const std::string lines = runPython(R"PY(
import pathlib, plistlib, sys
for path in sorted(pathlib.Path(sys.argv[1]).glob("*.lproj/" + sys.argv[2] + ".strings")):
    for key, text in plistlib.loads(path.read_bytes()).items():
        print(path.parent.stem, key, text.replace("\n", "\\n"), sep="\t")
)PY",
                                        {std::string(TORKA_BUNDLE) + "/Contents/Resources", table});
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
        const std::size_t key = line.find('\t') + 1;
        const std::size_t text = line.find('\t', key) + 1;
        tables[line.substr(0, key - 1)][line.substr(key, text - 1 - key)] = line.substr(text);
    }
    return tables;
}

// The placeholders for values and shortcut keys in a text.
std::multiset<std::string> places(const std::string& text) {
    std::multiset<std::string> found;
    for (std::size_t at = 0; (at = text.find('%', at)) != std::string::npos; ++at) {
        found.insert(text.substr(at, 2));
    }
    return found;
}

TEST_F(BundleTest, EveryLanguageHasEveryText) {
    std::set<std::string> tables;
    for (const auto& entry :
         fs::directory_iterator(std::string(TORKA_BUNDLE) + "/Contents/Resources/en.lproj")) {
        tables.insert(entry.path().stem());
    }
    EXPECT_THAT(tables, testing::IsSupersetOf({"Localizable", "BidiStrings"}));
    for (const std::string& table : tables) {
        auto languages = allTables(table.c_str());
        const auto english = languages["en"];
        ASSERT_FALSE(english.empty()) << table;
        for (const char* language : {"de", "fr", "ja", "zh_CN"}) {
            for (const auto& [key, text] : english) {
                const auto place = languages[language].find(key);
                ASSERT_NE(place, languages[language].end()) << language << ": " << table << ": " << key;
                EXPECT_NE(place->second, "") << language << ": " << key;
                EXPECT_EQ(places(place->second), places(text)) << language << ": " << key;
            }
            EXPECT_EQ(languages[language].size(), english.size()) << language << ": " << table;
        }
    }
    // The defaults in the source are the English texts, and no text of the source is without a table.
    EXPECT_EQ(runPython(R"PY(
import pathlib, plistlib, re, sys
root = pathlib.Path(sys.argv[1])
tables = {}
for name in ("BidiStrings", "Localizable"):
    tables |= plistlib.loads((root / f"bundle/Resources/en.lproj/{name}.strings").read_bytes())
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
                        {TORKA_SOURCE_DIR}),
              "");
}

QProgressDialog* shownWait() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<QProgressDialog*>(window);
        if (dialog != nullptr && dialog->isVisible()) {
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
