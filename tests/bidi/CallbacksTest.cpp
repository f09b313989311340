// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/CommandJob.h"
#include "bidi/module/JobPropertiesCallbacks.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySpooler.h"
#include "tests/bidi/JobPropertiesFixture.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

using ::testing::StartsWith;

class Callbacks : public tests::JobPropertiesTest {
protected:
    std::set<int> FilledSlots() const {
        std::set<int> filled;
        for (int slot = 2; slot < SDM_CALLBACK_SLOTS; ++slot) {
            if (mFuncList[static_cast<std::size_t>(slot)].function) {
                filled.insert(slot);
            }
        }
        return filled;
    }
    void Free(void* block) const {
        if (block) { // the array of an empty list may be null
            ASSERT_EQ(module.Callback<SDMFreeProc>(SDM_SLOT_FREE)(&block), SDM_SUCCESS);
        }
    }
    std::wstring Taken(wchar_t* text) const {
        const std::wstring copy = text;
        Free(text);
        return copy;
    }
    // The list as "key=value,...". Frees the list as a module does.
    std::wstring Taken(SDMKeyValueList* list) const {
        std::wstring text;
        for (std::size_t i = 0; i < list->count; ++i) {
            text += std::wstring(list->items[i].szKey) + L"=" + list->items[i].szValue + L",";
            Free(list->items[i].szKey);
            Free(list->items[i].szValue);
        }
        Free(list->items);
        Free(list);
        return text;
    }

    int server = 0; // its address serves as the module's handle
};

TEST_F(Callbacks, TheTableInBothStates) {
    mFuncList[24].function = [] {};
    Load(true);
    EXPECT_EQ(mFuncList[0].number, 19U);
    EXPECT_EQ(mFuncList[1].number, 1U);
    EXPECT_EQ(FilledSlots(),
              (std::set<int>{4, 5, 14, 19, 22, 23, 25, 26, 41, 43, 45, 46, 47, 51, 53, 55, 56, 57, 62, 63}));
    setField(record->bidiEnabled, "0");
    LoadJPModule();
    EXPECT_EQ(mFuncList[0].number, 19U);
    EXPECT_EQ(mFuncList[1].number, 0U);
    EXPECT_EQ(FilledSlots(),
              (std::set<int>{4, 6, 8, 9, 10, 12, 13, 14, 15, 19, 26, 41, 45, 51, 54, 56, 57, 62, 63}));
}

// Every callback that returns a list from one record, in each state of two-way communication that has it.
TEST_F(Callbacks, ListsFromTheirRecords) {
    struct Case {
        int slot;
        const char* record;
        std::wstring text;
        std::wstring list;
        bool also; // whether the table has it with two-way communication off, too
    };
    const std::vector<Case> cases = {
        {SDM_SLOT_GET_PPD_DEFAULTS, "PpdDefaults", L"A=1\nB=EMPTYSTRING\n", L"A=1,B=,", false},
        {SDM_SLOT_UPDATE_HUE_KEEPER_OPTIONS, "HueKeeper", L"A=1\n", L"A=1,", false},
        {SDM_SLOT_GET_LOCL_HELP_STRINGS, "CDIHelpStrings", L"A=Help\n", L"A=Help,", false},
        {SDM_SLOT_GET_ALL_DEVICE_LINK_PROFILES, "DeviceLinkProfilesList", L"P=Q\n", L"P=Q,", false},
        {SDM_SLOT_GET_SERVER_INFO_ALL, "ServerInfo", L"Alpha:ServerName\n7.0:ServerVersion\n",
         L"ServerName=Alpha,ServerVersion=7.0,", true},
        {SDM_SLOT_GET_SERVER_FEATURES_ALL, "ServerFeatureSupport", L"F=1\n", L"F=1,", true},
        {SDM_SLOT_GET_COLOR_KEYS_FACTORY_DEFAULTS, "ColorDefaultList", L"C=0\n", L"C=0,", true},
    };
    for (const bool twoWay : {true, false}) {
        Load(twoWay);
        for (const Case& entry : cases) {
            if (!twoWay && !entry.also) {
                continue;
            }
            const auto callback = module.Callback<SDMGetListProc>(entry.slot);
            SDMKeyValueList wrong{};
            SDMKeyValueList* list = &wrong;
            host.data.clear();
            EXPECT_EQ(callback(&server, &list), SDM_NOT_AVAILABLE) << entry.record;
            EXPECT_EQ(list, nullptr) << entry.record;
            EXPECT_EQ(callback(&server, nullptr), SDM_NOT_AVAILABLE) << entry.record;
            host.Put(entry.record, entry.text);
            ASSERT_EQ(callback(&server, &list), SDM_SUCCESS) << entry.record;
            EXPECT_EQ(module.blocks.empty(), !twoWay) << entry.record; // the module does not see malloc's
            EXPECT_EQ(Taken(list), entry.list) << entry.record;
            host.data.clear();
            host.Put(entry.record, L"");
            EXPECT_EQ(callback(&server, &list), SDM_NOT_AVAILABLE) << entry.record;
            if (twoWay) {
                module.hasMemory = false;
                host.data.clear();
                host.Put(entry.record, entry.text);
                EXPECT_EQ(callback(&server, &list), SDM_NOT_AVAILABLE) << entry.record;
                module.hasMemory = true;
            }
        }
    }
    setJobPropertiesHost(nullptr);
    SDMKeyValueList* list = nullptr;
    EXPECT_EQ(sdmFuncPtrGetServerInfoAll(&server, &list), SDM_NOT_AVAILABLE);
}

TEST_F(Callbacks, TheOtherRecords) {
    Load(true);
    host.Put("BidiData", L"<SMDData/>");
    host.Put("TrayInfo", L"1\nTray 1@Tray1@EMPTY@A4@Plain@White@120@500\n");
    host.Put("TonerInfo", L"1\nCyan@40@10@#00ffff@100@5000@1\n");
    host.Put("PresetsList", L"2\nBrochure\nPoster\n");
    host.Put("PresetsData", L"Brochure\nJPKeyValues=1\nA=1\nTesselKeyValues=0\nPresetKeyValues=1\nB=2\n");
    host.Put("ServerValFrmDict", L"12:Depth\n");
    host.Put("ServerValFrmDictspdmapen", L"yes");
    host.Put("ServerValFrmDictqfnorec", L"no");
    host.Put("QueuePropList", L"Q=1\n");
    wchar_t* text = nullptr;
    ASSERT_EQ(module.Callback<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA)(&server, &text), SDM_SUCCESS);
    EXPECT_EQ(Taken(text), L"<SMDData/>");

    SDMTrayInfoArray* trays = nullptr;
    ASSERT_EQ(module.Callback<SDMGetTrayInfoProc>(SDM_SLOT_GET_TRAY_INFO)(&server, &trays), SDM_SUCCESS);
    EXPECT_EQ(trays->items[0].mediaName, nullptr);
    EXPECT_STREQ(trays->items[0].mediaSize, L"A4");
    EXPECT_EQ(trays->items[0].capacity, 500);
    moduleMemory(nullptr).FreeTrays(trays);
    SDMTonerInfoArray* toners = nullptr;
    ASSERT_EQ(module.Callback<SDMGetTonerInfoProc>(SDM_SLOT_GET_TONER_INFO)(&server, &toners), SDM_SUCCESS);
    EXPECT_EQ(toners->items[0].level, 40);
    EXPECT_STREQ(toners->items[0].color, L"#00ffff");
    EXPECT_EQ(toners->items[0].kind, SDM_SUPPLY_TONER);
    moduleMemory(nullptr).FreeToners(toners);

    wchar_t** names = nullptr;
    int32_t count = 0;
    ASSERT_EQ(
        module.Callback<SDMGetNamesProc>(SDM_SLOT_GET_SERVER_PRESET_NAMES_LIST)(&server, &names, &count),
        SDM_SUCCESS);
    ASSERT_EQ(count, 2);
    EXPECT_STREQ(names[1], L"Poster");
    moduleMemory(nullptr).FreeNames(names, 2);
    SDMKeyValueList* lists[3] = {};
    const auto getPreset = module.Callback<SDMGetPresetProc>(SDM_SLOT_GET_SERVER_PRESET_DATA_BY_NAME);
    EXPECT_EQ(getPreset(&server, L"Poster", &lists[0], &lists[1], &lists[2]), SDM_NOT_AVAILABLE);
    EXPECT_EQ(getPreset(&server, L"Brochure", &lists[0], nullptr, &lists[2]), SDM_NOT_AVAILABLE);
    ASSERT_EQ(getPreset(&server, L"Brochure", &lists[0], &lists[1], &lists[2]), SDM_SUCCESS);
    EXPECT_EQ(Taken(lists[0]), L"A=1,");
    EXPECT_EQ(Taken(lists[1]), L"");
    EXPECT_EQ(Taken(lists[2]), L"B=2,");

    const auto getValue = module.Callback<SDMGetServerValueProc>(SDM_SLOT_GET_SERVER_VALUE_FROM_DICT);
    for (const auto& [key, value] : std::vector<std::pair<const wchar_t*, std::wstring>>{
             {L"Depth", L"12"}, {L"SPD_MAPPING_ENABLE", L"yes"}, {L"QF1_NO_RECORD", L"no"}}) {
        ASSERT_EQ(getValue(&server, 0, &text, key), SDM_SUCCESS);
        EXPECT_EQ(Taken(text), value);
    }
    EXPECT_EQ(getValue(&server, 0, &text, L"Width"), SDM_NOT_AVAILABLE);
    EXPECT_EQ(getValue(&server, 0, &text, nullptr), SDM_NOT_AVAILABLE);

    const auto getQueue = module.Callback<SDMGetTwoListsProc>(SDM_SLOT_GET_HOLD_QUEUE_ATTRIBUTES);
    ASSERT_EQ(getQueue(&server, &lists[0], &lists[1]), SDM_SUCCESS);
    EXPECT_EQ(Taken(lists[0]), L"Q=1,");
    EXPECT_EQ(lists[1], nullptr);
    host.Put("ListLockedKeys", L"L=1\n");
    ASSERT_EQ(getQueue(&server, &lists[0], &lists[1]), SDM_SUCCESS);
    EXPECT_EQ(Taken(lists[0]), L"Q=1,");
    EXPECT_EQ(Taken(lists[1]), L"L=1,");

    // After an empty toner record, the pane stops asking the server.
    host.data.clear();
    EXPECT_EQ(sdmFuncPtrGetTonerInfo(&server, &toners), SDM_NOT_AVAILABLE);
    EXPECT_FALSE(do_not_poll_for_Toner_Info_File);
    host.Put("TonerInfo", L"");
    EXPECT_EQ(sdmFuncPtrGetTonerInfo(&server, &toners), SDM_NOT_AVAILABLE);
    EXPECT_TRUE(do_not_poll_for_Toner_Info_File);
}

TEST_F(Callbacks, OutsideTheTable) {
    Load(true);
    host.Put("ServerInfo", L"Alpha:ServerName\n7.0:ServerVersion\n");
    host.Put("ServerFeatureSupport", L"Fold=1\nTrim=0\n");
    wchar_t* text = nullptr;
    ASSERT_EQ(sdmFuncPtrGetServerInfo(&server, JPSERVERINFO_SERVER_VERSION, &text), SDM_SUCCESS);
    EXPECT_EQ(Taken(text), L"7.0");
    for (const int item : {2, 17, -1}) {
        EXPECT_EQ(sdmFuncPtrGetServerInfo(&server, item, &text), SDM_NOT_AVAILABLE) << item;
    }
    int32_t supported = 0;
    EXPECT_EQ(sdmFuncPtrIsServerFeatureSupported(&server, L"Fold", &supported), SDM_SUCCESS);
    EXPECT_EQ(supported, 1);
    EXPECT_EQ(sdmFuncPtrIsServerFeatureSupported(&server, L"Trim", &supported), SDM_SUCCESS);
    EXPECT_EQ(supported, 0);
    EXPECT_EQ(sdmFuncPtrIsServerFeatureSupported(&server, L"Glue", &supported), SDM_NOT_AVAILABLE);
    ASSERT_EQ(sdmFuncPtrGetServerFeatureValue(&server, L"Trim", &text), SDM_SUCCESS);
    EXPECT_EQ(Taken(text), L"0");
}

TEST_F(Callbacks, VersionsAreTextAndNoFormat) {
    for (const bool twoWay : {true, false}) {
        Load(twoWay);
        setField(record->driverVersion, "1%% 2%s %n%");
        setField(record->osVersion, "4.5 %d%%");
        for (const auto& [kind, version] :
             std::vector<std::pair<int, std::wstring>>{{SDM_VERSION_DRIVER, L"1% 2%s %n%"},
                                                       {SDM_VERSION_SYSTEM, L"4.5 %d%%"},
                                                       {2, L""},
                                                       {-1, L""}}) {
            wchar_t* text = nullptr;
            ASSERT_EQ(
                module.Callback<SDMGetDriverVersionProc>(SDM_SLOT_GET_DRIVER_VERSION)(&server, kind, &text),
                SDM_SUCCESS);
            if (twoWay) {
                EXPECT_EQ(module.blocks[text], 8192U);
            }
            EXPECT_EQ(Taken(text), version) << kind;
        }
    }
}

TEST_F(Callbacks, FreeInBothStates) {
    Load(true);
    auto callback = module.Callback<SDMFreeProc>(SDM_SLOT_FREE);
    void* block = module.Allocate(8);
    EXPECT_EQ(callback(&block), SDM_SUCCESS);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(callback(&block), SDM_INVALID_ARGUMENT);
    EXPECT_EQ(callback(nullptr), SDM_INVALID_ARGUMENT);
    Load(false);
    callback = module.Callback<SDMFreeProc>(SDM_SLOT_FREE);
    block = std::malloc(8);
    void* const place = block;
    EXPECT_EQ(callback(&block), SDM_SUCCESS);
    EXPECT_EQ(block, place);
    block = nullptr;
    EXPECT_EQ(callback(&block), SDM_NOT_AVAILABLE);
    EXPECT_EQ(callback(nullptr), SDM_NOT_AVAILABLE);
}

TEST_F(Callbacks, ServerDataWithoutTwoWayCommunication) {
    Load(false);
    gServerLanguage = "ja";
    KeyValueList settings;
    settings.Append(L"InstalledTray", L"<True>");
    writeSettings(*record, settings.List());
    setField(record->installableOptions, "0,");
    setField(record->ppdCopyPath, "/tmp/a.ppd");
    wchar_t* text = nullptr;
    ASSERT_EQ(module.Callback<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA)(nullptr, &text), SDM_SUCCESS);
    const std::wstring xml = Taken(text);
    EXPECT_THAT(xml,
                StartsWith(L"<?xml version=\"1.0\" encoding=\"UTF8\"?>\n<SMDData>\n "
                           L"<Configuration locale=\"ja\" encoding=\"UTF8\" ppdLocation0=\"/tmp/a.ppd\""));
    EXPECT_NE(xml.find(L"<InstalledOptions key=\"InstalledTray\" value=\"&lt;True&gt;\"/>"),
              std::wstring::npos);
    sharedList = nullptr;
    EXPECT_EQ(sdmFuncPtrGetServerDataNonBidi(nullptr, &text), SDM_NOT_AVAILABLE);
    EXPECT_EQ(text, nullptr);
}

TEST_F(Callbacks, PresetsOfThisComputer) {
    auto madeSpooler = std::make_unique<MemorySpooler>();
    MemorySpooler* queues = madeSpooler.get();
    setSpooler(std::move(madeSpooler));
    queues->destinations = {{"Office"}};
    const auto printer = std::make_shared<MemoryPrinter>();
    printer->name = "Office";
    const tests::TemporaryFolder folder;
    // The command job completes, and the queue has stored its text.
    printer->onSend = [&](const MemoryPrinter::SentCommand& sent) {
        queues->jobs = {{1, utf8Text(sent.title), "Office", jobStateCompleted}};
    };
    Load(true);
    const wchar_t* presets[] = {L"\xFEFF<Presets/>\xFEFF"};
    EXPECT_EQ(sdmFuncPtrSetLocalPresetsData(&server, presets, 1), SDM_NOT_AVAILABLE); // no printer
    host.printer = printer;
    EXPECT_EQ(sdmFuncPtrSetLocalPresetsData(&server, nullptr, 1), SDM_NOT_AVAILABLE);
    EXPECT_EQ(sdmFuncPtrSetLocalPresetsData(&server, presets, 0), SDM_NOT_AVAILABLE);
    EXPECT_EQ(sdmFuncPtrSetLocalPresetsData(&server, presets, 1), SDM_SUCCESS);
    ASSERT_EQ(printer->sent.size(), 1U);
    EXPECT_EQ(utf8Text(printer->sent[0].command), "EFBBBF<Presets/>EFBBBF");
    EXPECT_THAT(utf8Text(printer->sent[0].title), StartsWith("Command_WritePresetData0"));
    queues->jobs.clear();
    printer->onSend = nullptr; // the job never completes
    EXPECT_EQ(sdmFuncPtrSetLocalPresetsData(&server, presets, 1), SDM_NOT_AVAILABLE);

    streams.Clear();
    EXPECT_GT(CPPDMsgHdlr("", "localPreset").Commit(L"EFBBBF<Presets/>"), 0);
    std::string ppd = "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*PCFileName: \"A.PPD\"\n"
                      "*Manufacturer: \"A\"\n*Product: \"(A)\"\n*PSVersion: \"(3010) 1\"\n*ModelName: \"A\"\n"
                      "*NickName: \"A\"\n*ShortNickName: \"A\"\n*LanguageLevel: \"3\"\n"
                      "*LanguageVersion: English\n*LanguageEncoding: ISOLatin1\n";
    for (const std::string& message : streams.Errors()) {
        std::istringstream words(message.substr(5));
        for (std::string word; words >> word;) {
            const std::size_t equals = word.find('=');
            const bool isQuoted = word.find('"') != std::string::npos;
            ppd += "*" + word.substr(0, equals) + ": " + (isQuoted ? "" : "\"") + word.substr(equals + 1) +
                   (isQuoted ? "\n" : "\"\n");
        }
    }
    setDestinationPPD(folder.Write("Office.ppd", ppd).string());
    for (const bool twoWay : {true, false}) {
        Load(twoWay);
        wchar_t* text = nullptr;
        ASSERT_EQ(sdmFuncPtrGetLocalPresetsData(&server, &text, 0), SDM_SUCCESS);
        EXPECT_EQ(Taken(text), L"\xFEFF<Presets/>");
    }
    setDestinationPPD("");
    wchar_t* text = nullptr;
    EXPECT_EQ(sdmFuncPtrGetLocalPresetsData(&server, &text, 0), SDM_NOT_AVAILABLE);
    setSpooler(nullptr);
}

} // namespace
} // namespace torka
