// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bidi/module/JobPropertiesLibrary.h"
#include "connection/BonjourModuleController.h"
#include "output/BundleIdentifier.h"
#include "pane/data/PDEData.h"
#include "pane/panel/BundleHelpers.h"
#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/panel/UI_Panel.h"
#include "platform/memory/MemoryAlerts.h"
#include "platform/memory/MemoryBundle.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/posix/PosixLibraryLoader.h"
#include "tests/e2e/ServerData.h"

#include <gmock/gmock.h>

// Runs the full properties: from the pane through a real server and its filter to the sample module in its
// own library, back into the model, and from there into the printed job.

namespace torka::tests {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* controller = "10.0.0.8";

class Dialog final : public PDEPlugInCallback {
public:
    explicit Dialog(const std::string& queue)
        : session(std::make_shared<CupsSession>(queue)) {
        session->CurrentPrinter(printer);
    }
    PMPrintSession printSession() const override { return session; }
    PMPrintSettings printSettings() const override { return settings; }
    PMPageFormat pageFormat() const override { return format; }
    std::shared_ptr<Printer> PMPrinter() const override { return printer; }

    std::shared_ptr<CupsSession> session;
    std::shared_ptr<Printer> printer;
    std::shared_ptr<MemoryPrintSettings> settings = std::make_shared<MemoryPrintSettings>();
    std::shared_ptr<MemoryPageFormat> format = std::make_shared<MemoryPageFormat>();
};

// The folder of the bundle and the module. One for the process, because the process keeps the first bundle
// found.
const TemporaryFolder& installed() {
    static const TemporaryFolder folder;
    return folder;
}

class JobProperties : public ServerData {
protected:
    void SetUp() override {
        ServerData::SetUp();
        if (IsSkipped()) {
            return;
        }
        bundle->identifier = utf8Text(GetBundleID());
        bundle->path = installed() / "TorkaFeatures.bundle";
        std::filesystem::create_directories(bundle->path / "Contents");
        std::filesystem::copy_file(TORKA_SOURCE_DIR "/bundle/PrinterList.plist",
                                   bundle->path / "Contents/PrinterList.plist",
                                   std::filesystem::copy_options::overwrite_existing);
        registerBundle(bundle);
        setLibraryLoader(std::make_unique<PosixLibraryLoader>());
        auto presenter = std::make_unique<MemoryAlerts>();
        alertsShown = presenter.get();
        setAlerts(std::move(presenter));
        std::filesystem::remove(installed() / moduleFileName);
        std::filesystem::create_symlink(TORKA_SAMPLE_MODULE, installed() / moduleFileName);
        Give(controller, "data", "TrayInfo",
             "2\nUpper@Tray1@Card@A3@Heavy@White@120@500\nBypass@Bypass@EMPTY@EMPTY@EMPTY@EMPTY@-3@-2\n");
        Give(controller, "data", "TonerInfo", "1\nCyan@40@10@#00ffff@95@20000@1\n");
        Give(controller, "data", "PresetsList", "1\nGlossy\n");
        Give(controller, "data", "PresetsData",
             "Glossy\nJPKeyValues=2\nQVDuplex=ShortEdge\nQVOutProfile=Of the server\n"
             "TesselKeyValues=0\nPresetKeyValues=0\n");
    }
    void TearDown() override {
        panel.reset();
        unloadJobPropertiesLibrary();
        unsetenv("TORKA_JP_SCRIPT");
        setAlerts(nullptr);
        setLibraryLoader(nullptr);
        ServerData::TearDown();
    }

    void Open(const std::string& queue, const char* address = controller) {
        AddQueue(queue);
        dialog = std::make_shared<Dialog>(queue);
        panel = TorkaFeaturesPDE::initWithCallback(dialog);
        ASSERT_TRUE(panel);
        ASSERT_TRUE(panel->GetPDEDataPtr()->SetCorvianPrinterAddress(cfString(address), true));
    }
    // Opens the full properties with a window that obeys the script. Returns the script's report.
    std::string Launch(const std::string& script) {
        const std::filesystem::path path = folder.Write("window.script", script);
        setenv("TORKA_JP_SCRIPT", path.c_str(), 1);
        panel->GetUI_PanelPtr()->setReturnFromJP(0);
        panel->launchFullProperties();
        const std::filesystem::path report = path.string() + ".report";
        return std::filesystem::exists(report) ? readFile(report) : std::string();
    }
    std::string Value(const char* keyword) const {
        return utf8Text(panel->getPPDPtr()->CopyValueForKey(cfString(keyword)));
    }
    // Prints a job with the current settings and returns the document that reached the device.
    std::string Print(const std::string& queue) {
        EXPECT_TRUE(panel->shouldPrint());
        const auto ticket = cfCast<CFString>(dialog->settings->Value(cfString(ticketPathSetting)));
        const int job = *submitFile(queue, samplePath("plain.ps"), "proof",
                                    {{std::string(ticketPathSetting), utf8Text(ticket)}});
        WaitForEnd(job);
        return sandbox->Printed(job);
    }

    TemporaryFolder folder;
    std::shared_ptr<MemoryBundle> bundle = std::make_shared<MemoryBundle>();
    std::shared_ptr<Dialog> dialog;
    std::shared_ptr<TorkaFeaturesPDE> panel;
    MemoryAlerts* alertsShown = nullptr;
};

TEST_F(JobProperties, ChangedSettingsReachTheJob) {
    Open("Properties");
    const std::string report =
        Launch("print trays\nprint toner\nprint presets\n"
               "set Notes1 from the module\nset QVScale 141\n"
               "watermark add 0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,PROOF\n"
               "watermark select 0\nset *QV_COPIES 3\nset SlipSheet_Tray Upper\npreset Glossy\n"
               "print settings\nresult 0\n");
    EXPECT_THAT(report, HasSubstr("Upper\tTray1\tCard\tA3\tHeavy\tWhite\t120\t500"));
    EXPECT_THAT(report, HasSubstr("Cyan\t1\t40\t10\t95\t20000\t#00ffff"));
    EXPECT_THAT(report, HasSubstr("Glossy"));
    EXPECT_TRUE(alertsShown->shown.empty());
    EXPECT_EQ(Value("*QVDuplex"), "ShortEdge");
    EXPECT_EQ(Value("*QVOutProfile"), "Of the server");
    EXPECT_EQ(Value("*Notes1"), "from the module");
    EXPECT_EQ(Value("*PresetName"), "Glossy");
    EXPECT_EQ(dialog->settings->Copies(), 3u);

    const std::string printed = Print("Properties");
    EXPECT_THAT(printed, StartsWith("%!PS"));
    for (const char* part : {"%%BeginFeature: *QVDuplex ShortEdge", "*QVOutProfile Of the server",
                             "%%ZANCustom1: from the module", "%%BeginFeature: *QVScale 141",
                             "%%BeginFeature: *SlipSheet_Tray Upper", "%%ZAN Begin Watermark resource"}) {
        EXPECT_THAT(printed, HasSubstr(part));
    }

    // A second session without changes leaves all values unchanged.
    const CFDictionaryRef values = panel->getPPDPtr()->CopyAllValues();
    Launch("result 0\n");
    EXPECT_TRUE(CFEqual(panel->getPPDPtr()->CopyAllValues(), values));
    EXPECT_EQ(panel->GetPDEDataPtr()->Watermarks().Count(), 1u);
    EXPECT_EQ(panel->GetPDEDataPtr()->SlipSheets().size(), 1u);
}

TEST_F(JobProperties, AControllerThatIsNotThereIsDoneWithout) {
    Open("Away", "10.99.99.99");
    alertsShown->answer = AlertButton::alternateButton; // cancel
    Launch("result 0\n");
    EXPECT_EQ(panel->GetUI_PanelPtr()->getReturnFromJP(), 0);
    EXPECT_EQ(alertsShown->shown.size(), 1u);
    alertsShown->answer = AlertButton::defaultButton; // continue
    const std::string report = Launch("print trays\nprint serverdata\nset QVDuplex ShortEdge\n");
    EXPECT_EQ(panel->GetUI_PanelPtr()->getReturnFromJP(), 1);
    EXPECT_FALSE(panel->GetPDEDataPtr()->isBIDIEnabled());
    EXPECT_THAT(report, HasSubstr("[trays] not offered"));
    EXPECT_THAT(report, HasSubstr("InstalledOptions key=\"QVFinisherUnit\" value=\"Saddle\""));
    EXPECT_EQ(Value("*QVDuplex"), "ShortEdge");
}

} // namespace

} // namespace torka::tests
