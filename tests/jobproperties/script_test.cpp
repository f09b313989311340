#include "FakePane.h"
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>

namespace torka::tests {

namespace {

// A script in a file that the environment names while the object lives.
class ScriptFile {
public:
    explicit ScriptFile(std::string_view text) {
        ::setenv("TORKA_JP_SCRIPT", folder.Write("script", text).c_str(), 1);
    }
    ScriptFile(const ScriptFile&) = delete;
    ScriptFile& operator=(const ScriptFile&) = delete;
    ~ScriptFile() { ::unsetenv("TORKA_JP_SCRIPT"); }
    std::string Report() const { return readFile(folder / "script.report"); }

private:
    TemporaryFolder folder;
};

wchar_t* wide(const wchar_t* text) { return const_cast<wchar_t*>(text); }

void fill(FakePane& pane) {
    pane.settings = {{L"*PageSize", L"A4"},        {L"*QVDuplex", L"None"},         {L"PageSize", L"Custom"},
                     {L"*PresetName", L"Morning"}, {L"num copies", L"1"},           {L"*QVStaple", L"None"},
                     {L"*QV_WATERMARK", L"1"},     {L"*Notes1", L"Grüße, \u00A7 7"}};
    pane.trays = {
        {wide(L"Tray 1"), wide(L"Tray1"), nullptr, wide(L"A4"), wide(L"Plain"), wide(L"White"), 250, 500}};
    pane.toners = {{wide(L"Cyan\tblue"), 62, 10, wide(L"#00aaff"), -1, 20000, SDM_SUPPLY_TONER},
                   {wide(L"Waste"), -3, -1, nullptr, 90, -1, SDM_SUPPLY_WASTE}};
    pane.information = {{L"ServerName", L"Alpha"}, {L"ServerVersion", L"7.0"}};
    pane.serverData = L"<SMDData/>";
    pane.presetNames = {L"Brochure"};
    pane.presetJob = {{L"QVDuplex", L"Short"}, {L"*QVStaple", L"TopLeft"}};
    pane.presetTessel = {{L"*QVNUpPages", L"2"}};
    pane.hasWatermarks = true;
    pane.watermarks = {L"0,0,0,255,0,0,0,0,0,450,0,0,48,Helvetica,ONE",
                       L"0,0,0,0,0,0,0,1,0,0,0,0,48,Helvetica,A, B"};
}

} // namespace

TEST(ModuleScript, EditsWhatComesBack) {
    struct Case {
        const char* script;
        std::vector<std::pair<const wchar_t*, const wchar_t*>> expected;
    };
    const Case cases[] = {
        {"", {{L"*QVDuplex", L"None"}, {L"*PresetName", L"Morning"}, {L"*Notes1", L"Grüße, \u00A7 7"}}},
        // A key with and one without an asterisk are two settings of the job. An edit clears the preset's
        // name.
        {"set PageSize B5", {{L"PageSize", L"B5"}, {L"*PageSize", L"A4"}, {L"*PresetName", L""}}},
        {"set QVDuplex Long\nset \"num copies\" 12", {{L"*QVDuplex", L"Long"}, {L"num copies", L"12"}}},
        {"set *Notes1 \"a \\\"b\\\"\\n\\u{1F600}\"", {{L"*Notes1", L"a \"b\"\n\U0001F600"}}},
        {"set *Notes1   two  words ", {{L"*Notes1", L"two  words"}}},
        {"set *New 1\nset *New \"\"", {{L"*New", L""}}},
        {"set *PresetName Evening", {{L"*PresetName", L"Evening"}}},
        {"set *QVDuplex None", {{L"*PresetName", L"Morning"}}}, // no change
        {"preset Brochure",
         {{L"*QVDuplex", L"Short"},
          {L"*QVStaple", L"TopLeft"},
          {L"*QVNUpPages", L"2"},
          {L"*PresetName", L"Brochure"}}},
        {"preset Brochure\nremove *QVStaple\nset *New 1\nrestore",
         {{L"*QVDuplex", L"None"},
          {L"*QVStaple", L"None"},
          {L"*PresetName", L"Morning"},
          {L"*New", L"<absent>"}}},
        {"remove *Notes1\nset *QVDuplex Long", {{L"*Notes1", L"<absent>"}, {L"*QVDuplex", L"Long"}}},
        {"watermark remove 0", {{L"*QV_WATERMARK", L"0"}}},
        {"watermark remove 1", {{L"*QV_WATERMARK", L"-1"}}},
        {"watermark select 0",
         {{L"*QV_WATERMARK", L"0"}, {L"*QV_WATERMARK_FIRSTPAGEONLY", L"False"}, {L"*PresetName", L""}}},
        {"watermark set 1 0,0,0,0,0,0,0,1,0,0,0,0,9,Courier,C", {{L"*QV_WATERMARK_FIRSTPAGEONLY", L"True"}}},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.script);
        FakePane pane;
        fill(pane);
        ScriptFile script(testCase.script);
        ASSERT_TRUE(pane.Run());
        EXPECT_EQ(pane.openResult, SDM_SUCCESS);
        EXPECT_EQ(pane.result, 0);
        for (const auto& [key, value] : testCase.expected) {
            EXPECT_EQ(pane.Value(key), value) << std::string(key, key + std::wcslen(key));
        }
    }
}

TEST(ModuleScript, KeepsOrderAndWatermarks) {
    FakePane pane;
    fill(pane);
    ScriptFile script("watermark add 0,0,0,0,0,0,0,0,0,0,0,0,9,Courier,third\nwatermark remove 7");
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(pane.returned, pane.settings);
    ASSERT_EQ(pane.returnedWatermarks.size(), 3U);
    EXPECT_EQ(pane.returnedWatermarks[1], pane.watermarks[1]);

    // Without a list from the pane or from the script, the pane's watermarks stay unchanged.
    pane.hasWatermarks = false;
    ScriptFile empty("");
    ASSERT_TRUE(pane.Run());
    EXPECT_FALSE(pane.hasReturnedWatermarks);
}

TEST(ModuleScript, KeyThatComesTwice) {
    FakePane pane;
    pane.settings = {{L"QVSimulation", L"None"}, {L"Notes1", L""}, {L"QVSimulation", L"Server profile"}};
    {
        ScriptFile script("");
        ASSERT_TRUE(pane.Run());
        EXPECT_EQ(pane.returned, pane.settings); // unchanged
    }
    ScriptFile script("set *QVSimulation Coated");
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(pane.returned,
              (Pairs{{L"QVSimulation", L"Coated"}, {L"Notes1", L""}, {L"QVSimulation", L"Coated"}}));
    pane.templateSettings = {{L"*QVSimulation", L"Press"}};
    ScriptFile restoring("set QVSimulation Coated\nrestore");
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(pane.returned[0].second, L"Press");
    EXPECT_EQ(pane.returned[2].second, L"Press");
}

// As in the pane, settings are secret when the description declares them so, or when their names say so.
TEST(ModuleScript, ReportMasksSecrets) {
    FakePane pane;
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("p.ppd", "*PPD-Adobe: \"4.3\"\n*%ZANJobNote *Code/Code: 8|Numeric|Password\n"
                              "*%ZANJobNote *Badge/Badge: 8|AESEncrypt\n"
                              "*%ZANJobNote *Notes1/Notes: 80|Any\n");
    pane.serverData = L"<SMDData><Configuration ppdLocation0=\"" + std::wstring(path.begin(), path.end()) +
                      L"\"/></SMDData>";
    pane.settings = {{L"*Code", L"1234"},           {L"Badge", L"b-77"},        {L"*Notes1", L"open"},
                     {L"*UnknownPassword", L"pwd"}, {L"QVUserAuthPwd", L"pw2"}, {L"*DeptPassword", L""}};
    ScriptFile script("print settings");
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(script.Report(), "[settings] 6\n*Code\t********\nBadge\t********\n*Notes1\topen\n"
                               "*UnknownPassword\t********\nQVUserAuthPwd\t********\n*DeptPassword\t\n");
}

TEST(ModuleScript, TemplateOverridesLocksAndVeils) {
    FakePane pane;
    fill(pane);
    pane.templateSettings = {{L"QVDuplex", L"Long"}, {L"*Added", L"1"}};
    pane.readOnly = {{L"QVDuplex", L""}};
    pane.veiled = {{L"*Notes1", L""}};
    pane.lockedKeys = {{L"*PageSize", L""}};
    ScriptFile script("set *QVDuplex None\nset *Notes1 x\nset PageSize B5\npreset Brochure\nforce *Added 2\n"
                      "preset Nowhere\nprint readonly\nprint veiled\n");
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(pane.Value(L"*QVDuplex"), L"Long");
    EXPECT_EQ(pane.Value(L"QVDuplex"), L"<absent>"); // the template sets the job's "*QVDuplex"
    EXPECT_EQ(pane.Value(L"*Notes1"), L"Grüße, \u00A7 7");
    EXPECT_EQ(pane.Value(L"*QVStaple"), L"TopLeft"); // from the preset, because it is not locked
    EXPECT_EQ(pane.Value(L"*Added"), L"2");
    EXPECT_EQ(script.Report(),
              "refused\t*QVDuplex\tlocked\nrefused\t*Notes1\tveiled\nrefused\tPageSize\tlocked\n"
              "no preset\tNowhere\n[readonly] 2\nQVDuplex\t\n*PageSize\t\n[veiled] 1\n*Notes1\t\n");
}

TEST(ModuleScript, ReportsTheServer) {
    FakePane pane;
    fill(pane);
    const std::string text =
        "print trays\nprint toner\nprint serverinfo\nprint presets\nprint help\nprint defaults\n"
        "print serverdata\nprint versions\nprint title\n";
    ScriptFile script(text);
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(script.Report(),
              "[trays] 1\nTray 1\tTray1\t\tA4\tPlain\tWhite\t250\t500\n"
              "[toner] 2\nCyan\\tblue\t1\t62\t10\t-1\t20000\t#00aaff\nWaste\t3\t-3\t-1\t90\t-1\t\n"
              "[serverinfo] 2\nServerName\tAlpha\nServerVersion\t7.0\n"
              "[presets] 1\nBrochure\n[help] unavailable 4096\n[defaults] not offered\n"
              "[serverdata] 1\n<SMDData/>\n[versions] 2\nsystem\t4.3\ndriver\t1.2\n"
              "[title] 1\nPrinting Preferences\n");

    pane.SetTwoWay(false);
    ScriptFile off("print trays\nprint presets\nprint serverdata\npreset Brochure\n");
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(
        off.Report(),
        "[trays] not offered\n[presets] not offered\n[serverdata] 1\n<SMDData/>\nno preset\tBrochure\n");
}

TEST(ModuleScript, CountsInBothStatesAgreeWithTheFree) {
    FakePane pane;
    fill(pane);
    pane.SetTwoWay(false);
    ScriptFile script("print serverinfo\nprint versions");
    ASSERT_TRUE(pane.Run()); // ~FakePane checks that every block was freed
    EXPECT_EQ(script.Report().substr(0, 15), "[serverinfo] 2\n");
}

TEST(ModuleScript, EndsOtherwise) {
    const Module& module = Module::Loaded();
    FakePane pane;
    fill(pane);
    {
        ScriptFile script("begin-fail");
        EXPECT_FALSE(pane.Run());
    }
    for (const std::int32_t result : {1, 2, 77}) {
        ScriptFile script("result " + std::to_string(result));
        ASSERT_TRUE(pane.Run());
        EXPECT_EQ(pane.result, result);
    }
    {
        ScriptFile script("open-fail\nget-fail");
        ASSERT_TRUE(pane.Run());
        EXPECT_EQ(pane.openResult, SDM_NOT_AVAILABLE);
        EXPECT_FALSE(pane.hasReturnedList);
    }
    {
        ScriptFile script("return-null");
        ASSERT_TRUE(pane.Run());
        EXPECT_FALSE(pane.hasReturnedList || pane.hasReturnedWatermarks);
    }
    {
        ScriptFile script("not-ready 3\nend-fail");
        JPHANDLE session = nullptr;
        ASSERT_EQ(module.beginSession(pane.table.data(), &session), SDM_SUCCESS);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(module.isServerReady(session), 0);
        }
        EXPECT_NE(module.isServerReady(session), 0);
        EXPECT_EQ(module.endSession(session), SDM_SUCCESS);
        EXPECT_EQ(module.dllEnd(), SDM_NOT_AVAILABLE);
        EXPECT_EQ(module.dllEnd(), SDM_SUCCESS); // once
    }
    {
        ScriptFile script("not-ready forever");
        JPHANDLE session = nullptr;
        ASSERT_EQ(module.beginSession(pane.table.data(), &session), SDM_SUCCESS);
        for (int i = 0; i < 10000; ++i) {
            ASSERT_EQ(module.isServerReady(session), 0);
        }
        EXPECT_EQ(module.dllEnd(), SDM_SUCCESS); // also ends the session
        EXPECT_EQ(module.endSession(session), SDM_NOT_AVAILABLE);
    }
}

TEST(ModuleScript, ReturnsWhatNoPaneExpects) {
    FakePane pane;
    fill(pane);
    for (const std::size_t count : {std::size_t{3500}, std::size_t{2}, std::size_t{0}}) {
        ScriptFile script("return-count " + std::to_string(count));
        ASSERT_TRUE(pane.Run());
        EXPECT_EQ(pane.returned.size(), count);
    }
    ScriptFile script("overlong *QVStaple 800\ngarbage");
    ASSERT_TRUE(pane.Run());
    EXPECT_EQ(pane.Value(L"*QVStaple"), std::wstring(800, L'x'));
    EXPECT_EQ(pane.Value(L"JPWithoutValue"), L"<null>");
    EXPECT_EQ(pane.Value(L"JPSurrogates")[0], wchar_t{0xD800});
    EXPECT_EQ(pane.Value(L"JPBeyond")[0], wchar_t{0x110000});
    EXPECT_EQ(std::count_if(pane.returned.begin(), pane.returned.end(),
                            [](const auto& entry) { return entry.first == L"JPTwice"; }),
              2);
}

TEST(ModuleScript, RefusesScriptsThatItDoesNotUnderstand) {
    FakePane pane;
    const std::pair<const char*, const char*> cases[] = {
        {"set", "line 1: a word is missing"},
        {"\n# comment\nfly away", "line 3: unknown command"},
        {"result many", "line 1: \"many\" is no whole number"},
        {"restore now", "line 1: there is more than restore takes"},
        {"setx a b", "line 1: unknown command"},
        {"set *Notes1 \"open", "line 1: a word in quotes"},
        {"set *Notes1 \"\\u{zz}\"", "line 1: a word in quotes"},
        {"set *Notes1 \"a\"b", "line 1: a word in quotes"},
    };
    for (const auto& [text, message] : cases) {
        ScriptFile script(text);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(pane.Run()) << text;
        EXPECT_NE(testing::internal::GetCapturedStderr().find(message), std::string::npos) << text;
    }
    ::setenv("TORKA_JP_SCRIPT", "/nowhere/script", 1);
    EXPECT_FALSE(pane.Run());
    ::unsetenv("TORKA_JP_SCRIPT");
}

TEST(ModuleInterface, SurvivesWhatItIsHanded) {
    const Module& module = Module::Loaded();
    ScriptFile script("");
    FakePane pane;
    JPHANDLE session = &pane;
    EXPECT_NE(module.beginSession(nullptr, &session), SDM_SUCCESS);
    EXPECT_NE(module.beginSession(pane.table.data(), nullptr), SDM_SUCCESS);
    pane.table[SDM_SLOT_VERSION].number = SDM_CALLBACK_VERSION - 1;
    EXPECT_NE(module.beginSession(pane.table.data(), &session), SDM_SUCCESS);
    // Invalid session handles.
    std::int32_t result = 7;
    SDMKeyValueList* list = nullptr;
    for (JPHANDLE handle : {JPHANDLE{nullptr}, JPHANDLE{&pane}}) {
        EXPECT_EQ(module.isServerReady(handle), 0);
        EXPECT_NE(module.openUI(handle, "", 3, 0, &result), SDM_SUCCESS);
        EXPECT_NE(module.getJobKeyValues(handle, 0, &list, nullptr), SDM_SUCCESS);
        EXPECT_NE(module.endSession(handle), SDM_SUCCESS);
        EXPECT_NE(module.terminate(handle), SDM_SUCCESS);
    }
    EXPECT_EQ(result, 7);
    module.free(nullptr);

    // A table with only its version: no free callback, no data.
    FakePane bare;
    bare.table = {};
    bare.table[SDM_SLOT_VERSION].number = SDM_CALLBACK_VERSION;
    ASSERT_EQ(module.beginSession(bare.table.data(), &session), SDM_SUCCESS);
    SDMKeyValue entries[] = {{nullptr, wide(L"x")},        {wide(L""), wide(L"x")},
                             {wide(L"*Null"), nullptr},    {wide(L"*Same"), wide(L"1")},
                             {wide(L"*Same"), wide(L"2")}, {wide(L"*Odd"), wide(L"\xD800")}};
    const SDMKeyValueList noItems{5, nullptr};
    const SDMKeyValueList incredible{SIZE_MAX, entries};
    const SDMKeyValueList good{std::size(entries), entries};
    for (const SDMKeyValueList* bad : {static_cast<const SDMKeyValueList*>(nullptr), &noItems, &incredible}) {
        EXPECT_NE(module.setJobKeyValues(session, bad), SDM_SUCCESS);
        EXPECT_NE(module.setReadOnlyKeys(session, bad), SDM_SUCCESS);
        EXPECT_NE(module.setVeiledKeys(session, bad), SDM_SUCCESS);
    }
    EXPECT_EQ(module.setJobKeyValues(session, &good), SDM_SUCCESS);
    wchar_t* definitions[] = {nullptr, wide(L"1")};
    const JPWatermarkList watermarks{2, definitions};
    const JPWatermarkList noDefinitions{2, nullptr};
    EXPECT_NE(module.setWatermarks(session, nullptr), SDM_SUCCESS);
    EXPECT_NE(module.setWatermarks(session, &noDefinitions), SDM_SUCCESS);
    EXPECT_EQ(module.setWatermarks(session, &watermarks), SDM_SUCCESS);
    EXPECT_NE(module.openUI(session, "x", 3, 0, nullptr), SDM_SUCCESS);
    EXPECT_EQ(module.openUI(session, nullptr, 3, 0, &result), SDM_SUCCESS);
    EXPECT_NE(module.getJobKeyValues(session, 0, nullptr, nullptr), SDM_SUCCESS);
    ASSERT_EQ(module.getJobKeyValues(session, 0, &list, nullptr), SDM_SUCCESS);
    ASSERT_EQ(list->count, 4U);
    EXPECT_STREQ(list->items[0].szValue, L"");
    EXPECT_STREQ(list->items[2].szValue, L"2");
    EXPECT_STREQ(list->items[3].szValue, L"\xFFFD");
    for (std::size_t i = 0; i < list->count; ++i) {
        module.free(list->items[i].szKey);
        module.free(list->items[i].szValue);
    }
    module.free(list->items);
    module.free(list);
    EXPECT_EQ(module.endSession(session), SDM_SUCCESS);
}

} // namespace torka::tests
