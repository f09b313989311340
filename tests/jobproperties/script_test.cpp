// SPDX-License-Identifier: Apache-2.0
#include "ModuleFixture.h"

#include "bidi/module/JobPropertiesLibrary.h"
#include "jobproperties/core/Server.h"

#include <gmock/gmock.h>
#include <malloc.h>

namespace torka::tests {

using testing::ElementsAre;
using testing::HasSubstr;

// A job, a template's locks and every record of a server.
class ModuleScript : public ModuleTest {
protected:
    ModuleScript() {
        SetSettings(job);
        setWatermarkDefinitions(*record, watermarks);
        setField(record->driverVersion, "1.2");
        setField(record->osVersion, "4.3");
        host.Put("BidiData", L"<SMDData/>");
        host.Put("TrayInfo", L"1\nTray 1@Tray1@EMPTY@A4@Plain@White@250@500\n");
        host.Put("TonerInfo", L"2\nCyan\tblue@62@10@#00aaff@-1@20000@1\nWaste@-3@-1@NULL@90@-1@3\n");
        host.Put("ServerInfo", L"Alpha:ServerName\n7.0:ServerVersion\n");
        host.Put("PresetsList", L"1\nBrochure\n");
        host.Put("PresetsData", L"Brochure\nJPKeyValues=2\nQVDuplex=Short\n*QVStaple=TopLeft\n"
                                L"TesselKeyValues=1\n*QVNUpPages=2\nPresetKeyValues=0\n");
    }
    const Pairs job = {{"*PageSize", "A4"},    {"*QVDuplex", "None"},
                       {"PageSize", "Custom"}, {"*PresetName", "Morning"},
                       {"num copies", "1"},    {"*QVStaple", "None"},
                       {"*QV_WATERMARK", "1"}, {"*Notes1", "Gr\u00FC\u00DFe, \u00A7 7"}};
    const std::vector<std::string> watermarks = {"0,0,0,255,0,0,0,0,0,450,0,0,48,Helvetica,ONE",
                                                 "0,0,0,0,0,0,0,1,0,0,0,0,48,Helvetica,A, B"};
};

TEST_F(ModuleScript, EditsWhatComesBack) {
    const std::pair<const char*, Pairs> cases[] = {
        {"", {{"*QVDuplex", "None"}, {"*PresetName", "Morning"}, {"*Notes1", "Gr\u00FC\u00DFe, \u00A7 7"}}},
        // A key with and one without an asterisk are two settings of the job. An edit clears the preset's
        // name.
        {"set PageSize B5", {{"PageSize", "B5"}, {"*PageSize", "A4"}, {"*PresetName", ""}}},
        {"set QVDuplex Long\nset \"num copies\" 12", {{"*QVDuplex", "Long"}, {"num copies", "12"}}},
        {"set *Notes1 \"a \\\"b\\\"\\n\\u{1F600}\"", {{"*Notes1", "a \"b\"\n\U0001F600"}}},
        {"set *Notes1   two  words ", {{"*Notes1", "two  words"}}},
        {"set *New 1\nset *New \"\"", {{"*New", ""}}},
        {"set *PresetName Evening", {{"*PresetName", "Evening"}}},
        {"set *QVDuplex None", {{"*PresetName", "Morning"}}}, // no change
        {"preset Brochure",
         {{"*QVDuplex", "Short"},
          {"*QVStaple", "TopLeft"},
          {"*QVNUpPages", "2"},
          {"*PresetName", "Brochure"}}},
        {"preset Brochure\nremove *QVStaple\nset *New 1\nrestore",
         {{"*QVDuplex", "None"}, {"*QVStaple", "None"}, {"*PresetName", "Morning"}, {"*New", "<absent>"}}},
        {"remove *Notes1\nset *QVDuplex Long", {{"*Notes1", "<absent>"}, {"*QVDuplex", "Long"}}},
        {"watermark remove 0", {{"*QV_WATERMARK", "0"}}},
        {"watermark remove 1", {{"*QV_WATERMARK", "-1"}}},
        {"watermark select 0",
         {{"*QV_WATERMARK", "0"}, {"*QV_WATERMARK_FIRSTPAGEONLY", "False"}, {"*PresetName", ""}}},
        {"watermark set 1 0,0,0,0,0,0,0,1,0,0,0,0,9,Courier,C", {{"*QV_WATERMARK_FIRSTPAGEONLY", "True"}}},
        {"overlong *QVStaple 699", {{"*QVStaple", std::string(699, 'x')}}},
    };
    for (const auto& [script, expected] : cases) {
        SetSettings(job);
        setWatermarkDefinitions(*record, watermarks);
        EXPECT_EQ(Run(script), "0") << script;
        for (const auto& [key, value] : expected) {
            EXPECT_EQ(Value(key), value) << script << key;
        }
    }
}

TEST_F(ModuleScript, KeepsOrderAndWatermarks) {
    EXPECT_EQ(Run("watermark add 0,0,0,0,0,0,0,0,0,0,0,0,9,Courier,third\nwatermark remove 7"), "0");
    EXPECT_EQ(Settings(), job);
    EXPECT_THAT(watermarkDefinitions(*record),
                ElementsAre(watermarks[0], watermarks[1], "0,0,0,0,0,0,0,0,0,0,0,0,9,Courier,third"));
    // Without a list from the pane or from the script, the pane's watermarks stay unchanged.
    setField(record->watermarksPresent, "0");
    Run("");
    EXPECT_EQ(watermarkDefinitions(*record).size(), 3U);
}

TEST_F(ModuleScript, KeyThatComesTwice) {
    const Pairs twice = {{"QVSimulation", "None"}, {"Notes1", ""}, {"QVSimulation", "Server profile"}};
    const auto after = [&](const char* script) {
        SetSettings(twice);
        Run(script);
        return Settings();
    };
    EXPECT_EQ(after(""), twice);
    EXPECT_EQ(after("set *QVSimulation Coated"),
              (Pairs{{"QVSimulation", "Coated"}, {"Notes1", ""}, {"QVSimulation", "Coated"}}));
    host.templateText = "<Category name=\"UI-Modification\">\n<Controls>\n"
                        "<ZANPPD key=\"*QVSimulation\" default=\"Press\"/>\n</Controls>\n</Category>";
    EXPECT_EQ(after("set QVSimulation Coated\nrestore"),
              (Pairs{{"QVSimulation", "Press"}, {"Notes1", ""}, {"QVSimulation", "Press"}}));
}

// As in the pane, settings are secret when the description declares them so, or when their names say so.
TEST_F(ModuleScript, ReportMasksSecrets) {
    SetDescription(folder.Write("p.ppd", "*PPD-Adobe: \"4.3\"\n*%ZANJobNote *Code/Code: 8|Numeric|Password\n"
                                         "*%ZANJobNote *Badge/Badge: 8|AESEncrypt\n"
                                         "*%ZANJobNote *Notes1/Notes: 80|Any\n"));
    SetSettings({{"*Code", "1234"},
                 {"Badge", "b-77"},
                 {"*Notes1", "open"},
                 {"*UnknownPassword", "pwd"},
                 {"QVUserAuthPwd", "pw2"},
                 {"*DeptPassword", ""}});
    for (const bool twoWay : {true, false}) {
        SetTwoWay(twoWay);
        Run("print settings");
        EXPECT_EQ(Report(), "[settings] 6\n*Code\t********\nBadge\t********\n*Notes1\topen\n"
                            "*UnknownPassword\t********\nQVUserAuthPwd\t********\n*DeptPassword\t\n");
    }
}

TEST_F(ModuleScript, TemplateOverridesLocksAndVeils) {
    host.templateText =
        "<Category name=\"UI-Modification\">\n<Controls>\n"
        "<ZANPPD key=\"QVDuplex\" default=\"Long\"/>\n<ZANPPD key=\"*Added\" default=\"1\"/>\n"
        "</Controls>\n<Lock>\n<ZANPPD key=\"QVDuplex\" value=\"True\"/>\n</Lock>\n<Show>\n"
        "<ZANPPD key=\"*Notes1\" value=\"False\"/>\n</Show>\n</Category>";
    host.Put("QueuePropList", L"*Collate=True\n");
    host.Put("ListLockedKeys", L"*PageSize=1\n");
    Run("set *QVDuplex None\nset *Notes1 x\nset PageSize B5\npreset Brochure\nforce *Added 2\n"
        "preset Nowhere\nprint readonly\nprint veiled\n");
    EXPECT_EQ(Value("*QVDuplex"), "Long");
    EXPECT_EQ(Value("QVDuplex"), "<absent>"); // the template sets the job's "*QVDuplex"
    EXPECT_EQ(Value("*Notes1"), job.back().second);
    EXPECT_EQ(Value("*QVStaple"), "TopLeft"); // from the preset, because it is not locked
    EXPECT_EQ(Value("*Added"), "2");
    EXPECT_EQ(Report(), "refused\t*QVDuplex\tlocked\nrefused\t*Notes1\tveiled\nrefused\tPageSize\tlocked\n"
                        "no preset\tNowhere\n[readonly] 2\nQVDuplex\t\n*PageSize\t\n[veiled] 1\n*Notes1\t\n");
}

// Every record in both states. The module frees what the callbacks give: a block that stays makes the
// allocator's count grow in every run, whatever else moves it now and then.
TEST_F(ModuleScript, ReportsTheServerAndFreesItsAnswers) {
    const std::string script = "print trays\nprint toner\nprint serverinfo\nprint presets\nprint help\n"
                               "print defaults\nprint versions\nprint title\npreset Brochure\n";
    for (const bool twoWay : {true, false}) {
        SetTwoWay(twoWay);
        Run("print serverdata\n");
        EXPECT_THAT(Report(), HasSubstr(twoWay ? "[serverdata] 1\n<SMDData/>\n"
                                               : "<SMDData>\\n <Configuration locale=\"en\""));
        int steadyRuns = 0;
        for (int i = 0; i < 50; ++i) {
            const std::size_t before = ::mallinfo2().uordblks;
            Run(script);
            streams.Clear();
            steadyRuns += ::mallinfo2().uordblks <= before ? 1 : 0;
        }
        EXPECT_GT(steadyRuns, 10);
        const std::string information = "[serverinfo] 2\nServerName\tAlpha\nServerVersion\t7.0\n";
        const std::string versions =
            "[versions] 2\nsystem\t4.3\ndriver\t1.2\n[title] 1\nPrinting Preferences\n";
        EXPECT_EQ(
            Report(),
            twoWay ? "[trays] 1\nTray 1\tTray1\t\tA4\tPlain\tWhite\t250\t500\n"
                     "[toner] 2\nCyan\\tblue\t1\t62\t10\t-1\t20000\t#00aaff\nWaste\t3\t-3\t-1\t90\t-1\t\n" +
                         information +
                         "[presets] 1\nBrochure\n[help] unavailable 4096\n[defaults] unavailable 4096\n" +
                         versions
                   : "[trays] not offered\n[toner] not offered\n" + information +
                         "[presets] not offered\n[help] not offered\n[defaults] not offered\n" + versions +
                         "no preset\tBrochure\n");
    }
}

TEST_F(ModuleScript, EndsOtherwise) {
    // `torka module` tells the other ends. An end fails once at most.
    for (const auto& [script, taken, queries, logged] : {std::tuple{"get-fail", false, 0U, 0U},
                                                         {"return-null", false, 0U, 0U},
                                                         {"not-ready 3\nend-fail", true, 3U, 1U},
                                                         {"", true, 0U, 0U}}) {
        const CapturingLog log;
        host.waits.clear();
        EXPECT_EQ(Run(script), "0") << script;
        EXPECT_EQ(gotSharedListFromJP, taken) << script;
        EXPECT_EQ(host.waits.size(), queries) << script;
        EXPECT_EQ(jobPropertiesFunctions()->DllEnd(), SDM_SUCCESS) << script;
        EXPECT_EQ(log.Lines().size(), logged) << script;
    }
    EXPECT_EQ(watermarkDefinitions(*record), watermarks);
    system->cancelAt = system->now + std::chrono::hours(1);
    EXPECT_EQ(Run("not-ready forever"), "1");
    EXPECT_EQ(system->now, system->cancelAt);
}

TEST_F(ModuleScript, ReturnsWhatNoPaneExpects) {
    for (const auto& [count, taken] : {std::pair(3500, 3000U), {2, 2U}, {0, 0U}}) {
        SetSettings(job);
        Run("return-count " + std::to_string(count));
        EXPECT_EQ(entryCount(*record), taken);
    }
    SetSettings(job);
    Run("overlong *QVStaple 800\ngarbage");
    EXPECT_EQ(Value("*QVStaple"), std::string(700, 'x'));
    EXPECT_EQ(Value("JPWithoutValue"), "");
    EXPECT_EQ(Value("JPSurrogates"), "\uFFFDa\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Value("JPBeyond"), "\uFFFD\uFFFD\uFFFD\U0010FFFF");
    EXPECT_THAT(Settings(), testing::IsSupersetOf(Pairs{{"JPTwice", "1"}, {"JPTwice", "2"}}));
}

TEST_F(ModuleScript, RefusesScriptsThatItDoesNotUnderstand) {
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
        testing::internal::CaptureStderr();
        EXPECT_EQ(Run(text), "-1") << text;
        EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr(message)) << text;
    }
    ::setenv("TORKA_JP_SCRIPT", "/nowhere/script", 1);
    EXPECT_EQ(Run(), "-1");
}

// Arguments that the pane never passes.
TEST_F(ModuleScript, SurvivesWhatItIsHanded) {
    const JobPropertiesFunctions& module = *jobPropertiesFunctions();
    const auto wide = [](const wchar_t* text) { return const_cast<wchar_t*>(text); };
    ::setenv("TORKA_JP_SCRIPT", folder.Write("script", "").c_str(), 1);
    std::array<SDMCallbackSlot, SDM_CALLBACK_SLOTS> table{}; // no free callback, no data
    table[SDM_SLOT_VERSION].number = SDM_CALLBACK_VERSION - 1;
    JPHANDLE session = &table;
    EXPECT_NE(module.BeginSession(nullptr, &session), SDM_SUCCESS);
    EXPECT_NE(module.BeginSession(table.data(), nullptr), SDM_SUCCESS);
    EXPECT_NE(module.BeginSession(table.data(), &session), SDM_SUCCESS);
    std::int32_t result = 7;
    SDMKeyValueList* list = nullptr;
    for (JPHANDLE handle : {JPHANDLE{nullptr}, JPHANDLE{&table}}) {
        EXPECT_EQ(module.IsServerReady(handle), 0);
        EXPECT_NE(module.OpenUI(handle, "", 3, 0, &result), SDM_SUCCESS);
        EXPECT_NE(module.GetJobKeyValues(handle, 0, &list, nullptr), SDM_SUCCESS);
        EXPECT_NE(module.EndSession(handle), SDM_SUCCESS);
        EXPECT_NE(module.Terminate(handle), SDM_SUCCESS);
    }
    EXPECT_EQ(result, 7);
    module.Free(nullptr);

    table[SDM_SLOT_VERSION].number = SDM_CALLBACK_VERSION;
    ASSERT_EQ(module.BeginSession(table.data(), &session), SDM_SUCCESS);
    SDMKeyValue entries[] = {{nullptr, wide(L"x")},        {wide(L""), wide(L"x")},
                             {wide(L"*Null"), nullptr},    {wide(L"*Same"), wide(L"1")},
                             {wide(L"*Same"), wide(L"2")}, {wide(L"*Odd"), wide(L"\xD800")}};
    const SDMKeyValueList noItems{5, nullptr};
    const SDMKeyValueList incredible{jobproperties::maximumListLength + 1, entries};
    const SDMKeyValueList good{std::size(entries), entries};
    for (const SDMKeyValueList* bad : {static_cast<const SDMKeyValueList*>(nullptr), &noItems, &incredible}) {
        EXPECT_NE(module.SetJobKeyValues(session, bad), SDM_SUCCESS);
        EXPECT_NE(module.SetJobReadOnlyKeys(session, bad), SDM_SUCCESS);
        EXPECT_NE(module.SetJobVeiledKeys(session, bad), SDM_SUCCESS);
    }
    EXPECT_EQ(module.SetJobKeyValues(session, &good), SDM_SUCCESS);
    wchar_t* definitions[] = {nullptr, wide(L"1")};
    const JPWatermarkList marks{2, definitions};
    const JPWatermarkList noDefinitions{2, nullptr};
    EXPECT_NE(module.SetWatermarks(session, nullptr), SDM_SUCCESS);
    EXPECT_NE(module.SetWatermarks(session, &noDefinitions), SDM_SUCCESS);
    EXPECT_EQ(module.SetWatermarks(session, &marks), SDM_SUCCESS);
    EXPECT_NE(module.OpenUI(session, "x", 3, 0, nullptr), SDM_SUCCESS);
    EXPECT_EQ(module.OpenUI(session, nullptr, 3, 0, &result), SDM_SUCCESS);
    EXPECT_NE(module.GetJobKeyValues(session, 0, nullptr, nullptr), SDM_SUCCESS);
    ASSERT_EQ(module.GetJobKeyValues(session, 0, &list, nullptr), SDM_SUCCESS);
    ASSERT_EQ(list->count, 4U);
    EXPECT_STREQ(list->items[0].szValue, L"");
    EXPECT_STREQ(list->items[2].szValue, L"2");
    EXPECT_STREQ(list->items[3].szValue, L"\xFFFD");
    moduleMemory(session).FreeList(list);
    EXPECT_EQ(module.Terminate(session), SDM_SUCCESS);
    EXPECT_EQ(module.DllEnd(), SDM_SUCCESS); // ends the session, too
    EXPECT_EQ(module.EndSession(session), SDM_NOT_AVAILABLE);
}

} // namespace torka::tests
