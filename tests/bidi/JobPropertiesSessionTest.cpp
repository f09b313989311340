// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixLibraryLoader.h"
#include "tests/bidi/JobPropertiesFixture.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;

class JobPropertiesSession : public tests::JobPropertiesTest {
protected:
    void Fill(bool twoWay) {
        KeyValueList settings;
        settings.Append(L"Duplex", L"Long");
        settings.Append(L"Copies", L"2");
        writeSettings(*record, settings.List());
        setField(record->bidiEnabled, twoWay ? "1" : "0");
        setField(record->printerAddress, "192.0.2.1");
        ASSERT_EQ(loadJobPropertiesLibrary(tests::FakeJobPropertiesModule::path).status,
                  ModuleStatus::loaded);
    }
    std::string Result() const { return std::string(fieldText(record->jpResult)); }
};

TEST_F(JobPropertiesSession, AcceptedSettingsComeBack) {
    Fill(true);
    setWatermarkDefinitions(*record, std::vector<std::string>{"0,DRAFT"});
    host.Put("ServerInfo", L"Alpha:ServerName\n");
    system->languages = {"zh-Hant-TW"};
    int server = 0;
    module.readyAfter = 12;
    module.edit = [&] {
        EXPECT_TRUE(mInsideOpenUI);
        EXPECT_EQ(mainJP(), 1); // called while the module's window is open
        SDMKeyValueList* list = nullptr;
        EXPECT_EQ(module.Callback<SDMGetListProc>(SDM_SLOT_GET_SERVER_INFO_ALL)(&server, &list), SDM_SUCCESS);
        moduleMemory(&server).FreeList(list);
        module.settings[0].second = L"Short";
        module.settings.emplace_back(L"PresetName", L"Brochure");
        module.watermarks.emplace_back(L"0,\x00C9PREUVE");
    };
    const auto start = system->now;
    EXPECT_EQ(mainJP(), 0);
    EXPECT_EQ(system->now - start, milliseconds(1200));
    ASSERT_EQ(host.waits.size(), 12U);
    EXPECT_EQ(host.waits[11].what, WaitFor::moduleReady);
    EXPECT_EQ(host.waits[11].waited, milliseconds(1100));
    EXPECT_EQ(host.waits[11].limit, milliseconds(0));
    EXPECT_THAT(module.calls,
                ElementsAre("begin", "settings 2", "watermarks", "open", "get settings", "get watermarks",
                            "terminate", "data server end", "end session", "end"));
    EXPECT_EQ(module.title, "Printing Preferences");
    EXPECT_EQ(Result(), "0");
    EXPECT_EQ(fieldText(record->count), "3");
    EXPECT_EQ(entryValue(*record, 0), "Short");
    EXPECT_EQ(entryKey(*record, 2), "PresetName");
    EXPECT_THAT(watermarkDefinitions(*record), ElementsAre("0,DRAFT", "0,\xC3\x89PREUVE"));
    EXPECT_TRUE(gotSharedListFromJP && gotServerPresetFromJP);
    EXPECT_EQ(sharedListCopyFromJP->watermarks, record->watermarks);
    EXPECT_EQ(gServerLanguage, "zh_TW");
    EXPECT_EQ(mPrevIPAddress, "192.0.2.1");
    EXPECT_TRUE(mPrevBidiEnabledState);
    EXPECT_EQ(paperUnit, 8192U);
    EXPECT_FALSE(mInsideOpenUI || mJPLoaded || sessionBegan);

    // A second, cancelled session. Its data server is ended all the same.
    module.calls.clear();
    module.windowResult = 1;
    system->metric = false;
    EXPECT_EQ(mainJP(), 0);
    EXPECT_EQ(Result(), "1");
    EXPECT_FALSE(gotSharedListFromJP || gotServerPresetFromJP);
    EXPECT_EQ(paperUnit, 4096U);
    EXPECT_THAT(module.calls, ElementsAre("begin", "settings 3", "watermarks", "open", "terminate",
                                          "data server end", "end session", "end"));
}

TEST_F(JobPropertiesSession, ATemplateStandsBehindTheSettings) {
    Fill(false);
    host.templateText = "<Category name=\"UI-Modification\">\n<Controls>\n"
                        "<ZANPPD key=\"Duplex\" default=\"None\"/>\n<ZANPPD key=\"Duplex\" default=\"2\"/>\n"
                        "<ZANPPD key=\"Copies\"/>\n<Other key=\"C\" default=\"1\"/>\n</Controls>\n<Lock>\n"
                        "<ZANPPD key=\"Copies\" value=\"True\"/>\n</Lock>\n<Show>\n"
                        "<ZANPPD key=\"Secret\" value=\"False\"/>\n</Show>\n</Category>\n";
    host.title = std::string(254, 't') + "\xC3\xA9";
    EXPECT_EQ(mainJP(), 0);
    EXPECT_THAT(module.calls, ElementsAre("begin", "settings 2", "settings 1", "read-only", "veiled", "open",
                                          "get settings", "get watermarks", "end session", "end"));
    EXPECT_EQ(module.settings[0].second, L"None");
    EXPECT_THAT(module.readOnlyKeys, ElementsAre(L"Copies"));
    EXPECT_THAT(module.veiledKeys, ElementsAre(L"Secret"));
    EXPECT_EQ(module.title, std::string(254, 't')); // 256 bytes, whole characters
    EXPECT_EQ(entryValue(*record, 0), "None");

    // A template that finds no memory for all its lists, and one that is no template, leave the settings.
    module.returnsNull = true;
    for (std::size_t allowed = 0; std::ranges::count(module.calls, "read-only") == 0 || allowed < 2;
         ++allowed) {
        module.calls.clear();
        module.allocationsLeft = allowed;
        EXPECT_EQ(mainJP(), 0);
        EXPECT_TRUE(module.blocks.empty()) << allowed;
        ASSERT_LT(allowed, 100U);
    }
    module.allocationsLeft = SIZE_MAX;
    host.templateText = "<Controls>\n</Controls>";
    module.calls.clear();
    EXPECT_EQ(mainJP(), 0);
    EXPECT_THAT(module.calls, ElementsAre("begin", "settings 2", "open", "get settings", "get watermarks",
                                          "end session", "end"));
}

TEST_F(JobPropertiesSession, NothingStartsWithoutRecordOrModule) {
    EXPECT_EQ(mainJP(), 1);
    setField(record->jpResult, "-1");
    EXPECT_EQ(loadJobPropertiesLibrary("/elsewhere/libzanjp2.so").status, ModuleStatus::notInstalled);
    EXPECT_EQ(mainJP(), 1);
    EXPECT_EQ(Result(), "-1");
    Fill(true);
    sharedList = nullptr;
    EXPECT_EQ(mainJP(), 1);
    EXPECT_TRUE(UnloadJPModule());
    EXPECT_THAT(module.calls, testing::IsEmpty());
    // With any other name, OpenUI shows no window.
    sharedList = record.get();
    LoadJPModule();
    OpenUI("jpOther");
    EXPECT_EQ(Result(), "1");
    EXPECT_TRUE(UnloadJPModule());
    EXPECT_TRUE(isSandboxedApp());
    // A folder is no module.
    const tests::TemporaryFolder folder;
    setLibraryLoader(std::make_unique<PosixLibraryLoader>());
    EXPECT_EQ(loadJobPropertiesLibrary(folder.Path()).status, ModuleStatus::notInstalled);
    EXPECT_EQ(moduleBesideBundle("/opt/print/Torka.bundle/"), "/opt/print/libzanjp2.so");
    EXPECT_EQ(moduleBesideBundle("/opt/print/Torka.bundle"), "/opt/print/libzanjp2.so");
}

TEST(ServerLanguage, CodesOfLanguages) {
    std::istringstream rows(
        "en-US en ko ko_KR ja-JP ja fr-CA fr de de sv sv nl nl tr tr es es fi fi no no "
        "nb-NO no nn no ru ru pt-BR pt pt-PT pt it it da da pl pl cs cs_CZ wa fr ca-ES es "
        "hu en zh en zh-Hans-CN zh_CN zh-hant zh_TW ZH-TW en zh-CN en kok en fil en");
    for (std::string tag, code; rows >> tag >> code;) {
        EXPECT_EQ(serverLanguageCode(tag), code) << tag;
    }
    EXPECT_EQ(serverLanguageCode(""), "en");
    const tests::ScopedMemorySystem system;
    system->languages = {"nb", "en"};
    getCurrentLocaleCode();
    EXPECT_EQ(gServerLanguage, "no");
}

} // namespace
} // namespace torka
