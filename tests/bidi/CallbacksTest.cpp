// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/CommandJob.h"
#include "bidi/module/JobPropertiesCallbacks.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySpooler.h"
#include "tests/bidi/JobPropertiesFixture.h"
#include "tests/support/ScopedDouble.h"
#include "tests/support/SmallPPD.h"

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
    // What a callback returned, as text. Frees it as a module does.
    std::wstring Taken(wchar_t* text) const {
        const std::wstring copy = text;
        Free(text);
        return copy;
    }
    std::wstring Taken(SDMKeyValueList* list) const {
        std::wstring text;
        for (std::size_t i = 0; list && i < list->count; ++i) {
            text += std::wstring(list->items[i].szKey) + L"=" + list->items[i].szValue + L",";
            Free(list->items[i].szKey);
            Free(list->items[i].szValue);
        }
        Free(list ? list->items : nullptr);
        Free(list);
        return list ? text : L"-";
    }
    std::wstring Taken(SDMTrayInfoArray* trays) const {
        const SDMTrayInfo tray = trays->items[0];
        const std::wstring text =
            (tray.mediaName ? L"?" : L"-") + std::wstring(tray.mediaSize) + std::to_wstring(tray.capacity);
        moduleMemory(nullptr).FreeTrays(trays);
        return text;
    }
    std::wstring Taken(SDMTonerInfoArray* toners) const {
        const SDMTonerInfo toner = toners->items[0];
        const std::wstring text = std::to_wstring(toner.level) + toner.color + std::to_wstring(toner.kind);
        moduleMemory(nullptr).FreeToners(toners);
        return text;
    }
    // The answer of a callback with one result; "none" when nothing is available.
    template <typename Out, typename Ask>
    std::wstring Answer(const Ask& ask) {
        Out wrong{};
        Out* out = &wrong;
        EXPECT_EQ(ask(nullptr), SDM_NOT_AVAILABLE);
        if (ask(&out) != SDM_SUCCESS) {
            EXPECT_EQ(out, nullptr);
            return L"none";
        }
        return Taken(out);
    }
    template <typename Out>
    std::wstring Answer(SDMRESULT (*callback)(SDMHANDLE, Out**)) {
        return Answer<Out>([&](Out** out) { return callback(&server, out); });
    }
    std::wstring Names() {
        wchar_t** names = nullptr;
        int32_t count = 7;
        const auto callback = module.Callback<SDMGetNamesProc>(SDM_SLOT_GET_SERVER_PRESET_NAMES_LIST);
        if (callback(&server, &names, &count) != SDM_SUCCESS) {
            return count == 0 && !names ? L"none" : L"out-parameter";
        }
        const std::wstring last = names[count - 1];
        moduleMemory(nullptr).FreeNames(names, static_cast<std::size_t>(count));
        return last;
    }
    std::wstring Preset(const wchar_t* name) {
        SDMKeyValueList* lists[3] = {};
        const auto callback = module.Callback<SDMGetPresetProc>(SDM_SLOT_GET_SERVER_PRESET_DATA_BY_NAME);
        EXPECT_EQ(callback(&server, name, &lists[0], nullptr, &lists[2]), SDM_NOT_AVAILABLE);
        return callback(&server, name, &lists[0], &lists[1], &lists[2]) == SDM_SUCCESS
                   ? Taken(lists[0]) + L"|" + Taken(lists[1]) + L"|" + Taken(lists[2])
                   : L"none";
    }
    std::wstring Queue() {
        SDMKeyValueList* lists[2] = {};
        const auto callback = module.Callback<SDMGetTwoListsProc>(SDM_SLOT_GET_HOLD_QUEUE_ATTRIBUTES);
        return callback(&server, &lists[0], &lists[1]) == SDM_SUCCESS
                   ? Taken(lists[0]) + L"|" + Taken(lists[1])
                   : L"none";
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

// Every callback that reads a record, in each state of two-way communication that has it.
TEST_F(Callbacks, AnswersFromTheirRecords) {
    const auto list = [this](int slot) {
        return [this, slot] { return Answer(module.Callback<SDMGetListProc>(slot)); };
    };
    const auto text = [this](auto ask) { return [this, ask] { return Answer<wchar_t>(ask); }; };
    const auto value = [&](const wchar_t* key) {
        return text([this, key](wchar_t** out) {
            return module.Callback<SDMGetServerValueProc>(SDM_SLOT_GET_SERVER_VALUE_FROM_DICT)(&server, 0,
                                                                                               out, key);
        });
    };
    const auto preset = [this](const wchar_t* name) { return [this, name] { return Preset(name); }; };
    const auto info = [&](int item) {
        return text([this, item](wchar_t** out) { return sdmFuncPtrGetServerInfo(&server, item, out); });
    };
    const auto feature = [&](const wchar_t* name) {
        return text(
            [this, name](wchar_t** out) { return sdmFuncPtrGetServerFeatureValue(&server, name, out); });
    };
    struct Case {
        std::function<std::wstring()> ask;
        const char* record;
        std::wstring content;
        std::wstring answer;
        bool also = false; // whether two-way communication that is off has it, too
    };
    const std::wstring information = L"Alpha:ServerName\n7.0:ServerVersion\n";
    const std::wstring presets = L"Brochure\nJPKeyValues=1\nA=1\nTesselKeyValues=0\nPresetKeyValues=1\nB=2\n";
    const std::vector<Case> cases = {
        {list(SDM_SLOT_GET_PPD_DEFAULTS), "PpdDefaults", L"A=1\nB=EMPTYSTRING\n", L"A=1,B=,"},
        {list(SDM_SLOT_UPDATE_HUE_KEEPER_OPTIONS), "HueKeeper", L"A=1\n", L"A=1,"},
        {list(SDM_SLOT_GET_LOCL_HELP_STRINGS), "CDIHelpStrings", L"A=Help\n", L"A=Help,"},
        {list(SDM_SLOT_GET_ALL_DEVICE_LINK_PROFILES), "DeviceLinkProfilesList", L"P=Q\n", L"P=Q,"},
        {list(SDM_SLOT_GET_SERVER_INFO_ALL), "ServerInfo", information,
         L"ServerName=Alpha,ServerVersion=7.0,", true},
        {list(SDM_SLOT_GET_SERVER_FEATURES_ALL), "ServerFeatureSupport", L"F=1\n", L"F=1,", true},
        {list(SDM_SLOT_GET_COLOR_KEYS_FACTORY_DEFAULTS), "ColorDefaultList", L"C=0\n", L"C=0,", true},
        {[this] { return Queue(); }, "QueuePropList", L"Q=1\n", L"Q=1,|-", true},
        {[this] { return Answer(module.Callback<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA)); }, "BidiData",
         L"<SMDData/>", L"<SMDData/>"},
        {[this] { return Answer(module.Callback<SDMGetTrayInfoProc>(SDM_SLOT_GET_TRAY_INFO)); }, "TrayInfo",
         L"1\nTray 1@Tray1@EMPTY@A4@Plain@White@120@500\n", L"-A4500"},
        {[this] { return Answer(module.Callback<SDMGetTonerInfoProc>(SDM_SLOT_GET_TONER_INFO)); },
         "TonerInfo", L"1\nCyan@40@10@#00ffff@100@5000@1\n", L"40#00ffff1"},
        {[this] { return Names(); }, "PresetsList", L"2\nBrochure\nPoster\n", L"Poster"},
        {preset(L"Brochure"), "PresetsData", presets, L"A=1,||B=2,"},
        {preset(L"Poster"), "PresetsData", presets, L"none"},
        {value(L"Depth"), "ServerValFrmDict", L"12:Depth\n", L"12"},
        {value(L"Width"), "ServerValFrmDict", L"12:Depth\n", L"none"},
        {value(nullptr), "ServerValFrmDict", L"12:Depth\n", L"none"},
        {value(L"SPD_MAPPING_ENABLE"), "ServerValFrmDictspdmapen", L"yes", L"yes"},
        {value(L"QF1_NO_RECORD"), "ServerValFrmDictqfnorec", L"no", L"no"},
        {info(JPSERVERINFO_SERVER_VERSION), "ServerInfo", information, L"7.0", true},
        {info(2), "ServerInfo", information, L"none", true},
        {info(17), "ServerInfo", information, L"none", true},
        {info(-1), "ServerInfo", information, L"none", true},
        {feature(L"Trim"), "ServerFeatureSupport", L"Fold=1\nTrim=0\n", L"0", true},
    };
    for (const bool twoWay : {true, false}) {
        Load(twoWay);
        for (const Case& entry : cases) {
            if (!twoWay && !entry.also) {
                continue;
            }
            SCOPED_TRACE(entry.record);
            host.data.clear();
            EXPECT_EQ(entry.ask(), L"none");
            host.Put(entry.record, L"");
            EXPECT_EQ(entry.ask(), L"none");
            host.data.clear();
            host.Put(entry.record, entry.content);
            EXPECT_EQ(entry.ask(), entry.answer);
            module.hasMemory = false; // concerns only two-way communication; else malloc is used
            EXPECT_EQ(entry.ask(), twoWay ? L"none" : entry.answer);
            module.hasMemory = true;
        }
    }
    Load(true);
    host.Put("QueuePropList", L"Q=1\n");
    host.Put("ListLockedKeys", L"L=1\n");
    EXPECT_EQ(Queue(), L"Q=1,|L=1,");
    host.Put("ServerFeatureSupport", L"Fold=1\nTrim=0\n");
    for (const auto& [name, result, isSupported] : std::vector<std::tuple<const wchar_t*, int, int>>{
             {L"Fold", SDM_SUCCESS, 1}, {L"Trim", SDM_SUCCESS, 0}, {L"Glue", SDM_NOT_AVAILABLE, 0}}) {
        int32_t supported = 7;
        EXPECT_EQ(sdmFuncPtrIsServerFeatureSupported(&server, name, &supported), result);
        EXPECT_EQ(supported, isSupported);
    }
    // After an empty toner record, the pane stops asking the server.
    host.data.clear();
    do_not_poll_for_Toner_Info_File = false;
    EXPECT_EQ(Answer(sdmFuncPtrGetTonerInfo), L"none");
    EXPECT_FALSE(do_not_poll_for_Toner_Info_File);
    host.Put("TonerInfo", L"");
    EXPECT_EQ(Answer(sdmFuncPtrGetTonerInfo), L"none");
    EXPECT_TRUE(do_not_poll_for_Toner_Info_File);
    setJobPropertiesHost(nullptr);
    EXPECT_EQ(Answer(sdmFuncPtrGetServerInfoAll), L"none");
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

TEST_F(Callbacks, AnEmptyPathOfTheDescriptionIsFilledForTheModule) {
    struct Case {
        std::wstring record;
        std::wstring given;
    };
    Load(true);
    setField(record->ppdCopyPath, "/a & b.ppd");
    for (const Case& each :
         {Case{L"<Configuration locale=\"en\" ppdLocation0=\"\" server=\"s\"/>",
               L"<Configuration locale=\"en\" ppdLocation0=\"/a &amp; b.ppd\" server=\"s\"/>"},
          {L"<Configuration ppdLocation0=\"/its/own.ppd\"/>",
           L"<Configuration ppdLocation0=\"/its/own.ppd\"/>"},
          {L"<Configuration/><Other ppdLocation0=\"\"/>", L"<Configuration/><Other ppdLocation0=\"\"/>"},
          {L"<Other ppdLocation0=\"\"", L"<Other ppdLocation0=\"\""},
          {L"<Configuration ppdLocation0=\"\"", L"<Configuration ppdLocation0=\"\""}}) {
        host.data.clear();
        host.Put("BidiData", each.record);
        wchar_t* text = nullptr;
        ASSERT_EQ(module.Callback<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA)(&server, &text), SDM_SUCCESS);
        EXPECT_EQ(Taken(text), each.given);
    }
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
    const tests::ScopedDouble<MemorySpooler, setSpooler> queues;
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
    setDestinationPPD(
        folder.Write("Office.ppd", tests::afterMessages(tests::smallPPD, streams.Errors())).string());
    for (const bool twoWay : {true, false}) {
        Load(twoWay);
        wchar_t* text = nullptr;
        ASSERT_EQ(sdmFuncPtrGetLocalPresetsData(&server, &text, 0), SDM_SUCCESS);
        EXPECT_EQ(Taken(text), L"\xFEFF<Presets/>");
    }
    setDestinationPPD("");
    wchar_t* text = nullptr;
    EXPECT_EQ(sdmFuncPtrGetLocalPresetsData(&server, &text, 0), SDM_NOT_AVAILABLE);
}

} // namespace
} // namespace torka
