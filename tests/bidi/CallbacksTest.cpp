// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/CommandJob.h"
#include "bidi/module/JobPropertiesCallbacks.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "platform/TextEncoding.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySpooler.h"
#include "tests/bidi/JobPropertiesFixture.h"
#include "tests/support/ScopedDouble.h"
#include "tests/support/SmallPPD.h"

#include <gmock/gmock.h>
#include <numeric>

namespace torka {
namespace {

using ::testing::Each;
using ::testing::IsNull;

class Callbacks : public tests::JobPropertiesTest {
protected:
    void Free(void* block) const { // the array of an empty list may be null
        ASSERT_TRUE(!block || module.Callback<SDMFreeProc>(SDM_SLOT_FREE)(&block) == SDM_SUCCESS);
    }
    static std::string Shown(const wchar_t* text) { return text ? utf8FromWide(text) : "-"; }
    // What a callback returned, as text. Frees it as a module does.
    std::string Taken(wchar_t* text) const {
        const std::string copy = Shown(text);
        Free(text);
        return copy;
    }
    std::string Taken(SDMKeyValueList* list) const {
        std::string text;
        for (std::size_t i = 0; list && i < list->count; ++i) {
            text += Taken(list->items[i].szKey) + "=" + Taken(list->items[i].szValue) + ";";
        }
        Free(list ? list->items : nullptr);
        Free(list);
        return list ? text : "-";
    }
    std::string Taken(SDMTrayInfoArray* trays) const {
        std::string text;
        for (const SDMTrayInfo& t : std::span(trays->items, trays->count)) {
            for (const wchar_t* field :
                 {t.name, t.key, t.mediaName, t.mediaSize, t.mediaType, t.mediaColor}) {
                text += Shown(field) + ",";
            }
            text += std::to_string(t.level) + "," + std::to_string(t.capacity) + ";";
        }
        memory().FreeTrays(trays);
        return text;
    }
    std::string Taken(SDMTonerInfoArray* toners) const {
        std::string text;
        for (const SDMTonerInfo& t : std::span(toners->items, toners->count)) {
            text += Shown(t.name) + "," + Shown(t.color);
            for (const int number : {t.level, t.lowLevel, t.highLevel, t.capacity, t.kind}) {
                text += "," + std::to_string(number);
            }
            text += ";";
        }
        memory().FreeToners(toners);
        return text;
    }
    ModuleMemory memory() const { return isTwoWay ? moduleMemory(nullptr) : ModuleMemory(); }
    // The answer of a callback with one result; "none" when nothing is available.
    template <typename Out, typename Call>
    std::string Answer(const Call& ask) {
        Out wrong{};
        Out* out = &wrong;
        EXPECT_EQ(ask(nullptr), SDM_NOT_AVAILABLE);
        if (ask(&out) != SDM_SUCCESS) {
            EXPECT_EQ(out, nullptr);
            return "none";
        }
        return Taken(out);
    }
    template <typename Out>
    std::string Answer(SDMRESULT (*callback)(SDMHANDLE, Out**)) {
        return Answer<Out>([&](Out** out) { return callback(&server, out); });
    }
    std::string Names() {
        wchar_t** names = nullptr;
        int32_t count = 7;
        const auto callback = module.Callback<SDMGetNamesProc>(SDM_SLOT_GET_SERVER_PRESET_NAMES_LIST);
        if (callback(&server, &names, &count) != SDM_SUCCESS) {
            return count == 0 && !names ? "none" : "out-parameter";
        }
        std::string text = std::to_string(count) + ":";
        for (const wchar_t* name : std::span(names, static_cast<std::size_t>(count))) {
            text += Shown(name) + ";";
        }
        memory().FreeNames(names, static_cast<std::size_t>(count));
        return text;
    }
    std::string Preset(const wchar_t* name) {
        SDMKeyValueList* lists[3] = {};
        const auto callback = module.Callback<SDMGetPresetProc>(SDM_SLOT_GET_SERVER_PRESET_DATA_BY_NAME);
        EXPECT_EQ(callback(&server, name, &lists[0], nullptr, &lists[2]), SDM_NOT_AVAILABLE);
        if (callback(&server, name, &lists[0], &lists[1], &lists[2]) != SDM_SUCCESS) {
            return lists[0] || lists[1] || lists[2] ? "out-parameter" : "none";
        }
        return Taken(lists[0]) + "|" + Taken(lists[1]) + "|" + Taken(lists[2]);
    }
    std::string Queue() {
        SDMKeyValueList* lists[2] = {};
        const auto callback = module.Callback<SDMGetTwoListsProc>(SDM_SLOT_GET_HOLD_QUEUE_ATTRIBUTES);
        return callback(&server, &lists[0], &lists[1]) == SDM_SUCCESS
                   ? Taken(lists[0]) + "|" + Taken(lists[1])
                   : "none";
    }

    // Asks by a callback.
    using Ask = std::function<std::string()>;
    Ask List(int slot) {
        return [this, slot] { return Answer(module.Callback<SDMGetListProc>(slot)); };
    }
    template <typename Call>
    Ask Text(Call call) {
        return [this, call] { return Answer<wchar_t>(call); };
    }
    Ask Value(const wchar_t* key) {
        return Text([this, key](wchar_t** out) {
            return module.Callback<SDMGetServerValueProc>(SDM_SLOT_GET_SERVER_VALUE_FROM_DICT)(&server, 0,
                                                                                               out, key);
        });
    }
    Ask Info(int item) {
        return Text([this, item](wchar_t** out) { return sdmFuncPtrGetServerInfo(&server, item, out); });
    }
    Ask Feature(const wchar_t* name) {
        return Text(
            [this, name](wchar_t** out) { return sdmFuncPtrGetServerFeatureValue(&server, name, out); });
    }
    const Ask askTrays = [this] {
        return Answer(module.Callback<SDMGetTrayInfoProc>(SDM_SLOT_GET_TRAY_INFO));
    };
    const Ask askToners = [this] {
        return Answer(module.Callback<SDMGetTonerInfoProc>(SDM_SLOT_GET_TONER_INFO));
    };
    const Ask askServerData = [this] {
        return Answer(module.Callback<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA));
    };
    const Ask askNames = [this] { return Names(); };
    Ask PresetNamed(const wchar_t* name) {
        return [this, name] { return Preset(name); };
    }
    // The answer for a record with this text alone.
    std::string Asked(const Ask& ask, const char* name, std::wstring_view text) {
        host.data.clear();
        host.Put(name, text);
        return ask();
    }

    const std::wstring tonerText =
        L"2\nCyan@55@10@#00ffff@90@20000@1\nWaste@-3@0@NULL@2147483647@-2147483648@3\n";
    const std::wstring trayText = L"2\nTray 1@Tray1@Letterhead@A4@Plain@White@420@550\n"
                                  L"Bypass@EMPTY@N/A@0@@\x7D19@-1@N/A\n";
    const std::wstring presetText =
        L"Brochure\nJPKeyValues=2\nDuplex=True\nNotes1=a=b\nTesselKeyValues=0\n"
        L"PresetKeyValues=1\nPresetName=EFBBBFx EFBBBF\n"
        L"Proof\nJPKeyValues=1\nCopies=\nTesselKeyValues=1\nA=EFBBBE\nPresetKeyValues=0\n";
    const std::wstring infoText =
        L"Alpha:ServerName\n7.0:ServerVersion\n64:MemSize:x\n:PSSupport\nPCLSupport\n";
    bool isTwoWay = true; // of the table
    int server = 0;       // its address serves as the module's handle
};

TEST_F(Callbacks, TheTableInBothStates) {
    mFuncList[24].function = [] {};
    using Slots = std::vector<std::size_t>;
    const Slots two{4, 5, 14, 19, 22, 23, 25, 26, 41, 43, 45, 46, 47, 51, 53, 55, 56, 57, 62, 63};
    const Slots one{4, 6, 8, 9, 10, 12, 13, 14, 15, 19, 26, 41, 45, 51, 54, 56, 57, 62, 63};
    Load(true);
    for (const bool twoWay : {true, false}) {
        setField(record->bidiEnabled, twoWay ? "1" : "0");
        LoadJPModule();
        EXPECT_EQ(mFuncList[0].number, 19U);
        EXPECT_EQ(mFuncList[1].number, twoWay ? 1U : 0U);
        Slots filled(SDM_CALLBACK_SLOTS - 2);
        std::iota(filled.begin(), filled.end(), 2U);
        std::erase_if(filled, [](std::size_t slot) { return !mFuncList[slot].function; });
        EXPECT_EQ(filled, twoWay ? two : one);
    }
}

// Every callback that reads a record, in each state of two-way communication that has it. A callback that
// finds nothing leaves no block, whichever allocation fails.
TEST_F(Callbacks, AnswersFromTheirRecords) {
    const struct {
        Ask ask;
        const char* record;
        std::wstring content;
        std::string answer;
        bool also = false; // whether two-way communication that is off has it, too
    } cases[] = {
        {List(SDM_SLOT_GET_PPD_DEFAULTS), "PpdDefaults", L"K=v\nL=EMPTYSTRING\nM=", "K=v;L=;M=;"},
        {List(SDM_SLOT_UPDATE_HUE_KEEPER_OPTIONS), "HueKeeper", L"K=v\nL=EMPTYSTRING\n\nK==\n",
         "K=v;L=EMPTYSTRING;K==;"},
        {List(SDM_SLOT_GET_LOCL_HELP_STRINGS), "CDIHelpStrings", L"A=Both sides\n", "A=Both sides;"},
        {List(SDM_SLOT_GET_ALL_DEVICE_LINK_PROFILES), "DeviceLinkProfilesList", L"P=Q\n", "P=Q;"},
        {List(SDM_SLOT_GET_SERVER_INFO_ALL), "ServerInfo", L"Alpha:ServerName\n7:1:ServerVersion",
         "ServerName=Alpha;1:ServerVersion=7;", true},
        {List(SDM_SLOT_GET_SERVER_FEATURES_ALL), "ServerFeatureSupport", L"F=1\n", "F=1;", true},
        {List(SDM_SLOT_GET_COLOR_KEYS_FACTORY_DEFAULTS), "ColorDefaultList", L"C=0\n", "C=0;", true},
        {[this] { return Queue(); }, "QueuePropList", L"Q=EMPTYSTRING\n", "Q=;|-", true},
        {askServerData, "BidiData", L"<SMDData/>", "<SMDData/>"},
        // Only an empty path of the description is filled.
        {askServerData, "BidiData", L"<Configuration locale=\"en\" ppdLocation0=\"\" server=\"s\"/>",
         "<Configuration locale=\"en\" ppdLocation0=\"/a &amp; b.ppd\" server=\"s\"/>"},
        {askServerData, "BidiData", L"<Configuration ppdLocation0=\"/its/own.ppd\"/>",
         "<Configuration ppdLocation0=\"/its/own.ppd\"/>"},
        {askServerData, "BidiData", L"<Configuration/><Other ppdLocation0=\"\"/>",
         "<Configuration/><Other ppdLocation0=\"\"/>"},
        {askServerData, "BidiData", L"<Other ppdLocation0=\"\"/><Configuration/>",
         "<Other ppdLocation0=\"\"/><Configuration/>"},
        {askServerData, "BidiData", L"<Configuration ppdLocation0=\"\"", "<Configuration ppdLocation0=\"\""},
        {askTrays, "TrayInfo", trayText,
         "Tray 1,Tray1,Letterhead,A4,Plain,White,420,550;Bypass,-,-,-,,\xE7\xB4\x99,-1,-1;"},
        {askTrays, "TrayInfo", L"0\n", ""},
        {askToners, "TonerInfo", tonerText,
         "Cyan,#00ffff,55,10,90,20000,1;Waste,-,-3,0,2147483647,-2147483648,3;"},
        {askNames, "PresetsList", L"2\nAlpha\nBeta", "2:Alpha;Beta;"},
        {askNames, "PresetsList", L"0\n", "0:"},
        {PresetNamed(L""), "PresetsData", presetText,
         "Duplex=True;Notes1=a=b;||PresetName=\xEF\xBB\xBFx \xEF\xBB\xBF;"},
        {PresetNamed(L"Proof"), "PresetsData", presetText, "Copies=;|A=EFBBBE;|"},
        {Value(L"Depth"), "ServerValFrmDict", L"12:Depth\n", "12"},
        {Value(L"SPD_MAPPING_ENABLE"), "ServerValFrmDictspdmapen", L"yes", "yes"},
        {Value(L"QF1_NO_RECORD"), "ServerValFrmDictqfnorec", L"no", "no"},
        {Info(JPSERVERINFO_SERVER_NAME), "ServerInfo", infoText, "Alpha", true},
        {Info(JPSERVERINFO_SERVER_VERSION), "ServerInfo", infoText, "7.0", true},
        {Info(JPSERVERINFO_MEM_SIZE), "ServerInfo", infoText, "64", true},
        {Feature(L"Trim"), "ServerFeatureSupport", L"Fold=1\nTrim=0\n", "0", true},
    };
    setField(record->ppdCopyPath, "/a & b.ppd");
    for (const bool twoWay : {true, false}) {
        Load(isTwoWay = twoWay);
        for (const auto& entry : cases) {
            if (!twoWay && !entry.also) {
                continue;
            }
            SCOPED_TRACE(entry.record);
            host.data.clear();
            EXPECT_EQ(entry.ask(), "none");
            EXPECT_EQ(Asked(entry.ask, entry.record, L""), "none");
            EXPECT_EQ(Asked(entry.ask, entry.record, entry.content), entry.answer);
            module.allocationsLeft = twoWay ? 0 : SIZE_MAX; // without two-way communication malloc is used
            std::string got = entry.ask();
            EXPECT_TRUE(got == entry.answer || twoWay) << got;
            for (std::size_t allowed = 1; got == "none" && allowed < 100; ++allowed) {
                module.allocationsLeft = allowed;
                got = entry.ask();
                EXPECT_TRUE(module.blocks.empty()) << allowed;
            }
            EXPECT_EQ(got, entry.answer);
            module.allocationsLeft = SIZE_MAX;
            for (const wchar_t unit : {L'\0', L'\xD834', L'\xDFFF', wchar_t{0x110000}, wchar_t{-1}}) {
                EXPECT_EQ(Asked(entry.ask, entry.record, entry.content + unit), "none");
            }
            EXPECT_TRUE(module.blocks.empty());
        }
    }
    Load(isTwoWay = true);
    host.data.clear();
    host.Put("QueuePropList", L"Q=1\n");
    host.Put("ListLockedKeys", L"L=1\n");
    EXPECT_EQ(Queue(), "Q=1;|L=1;");
    const std::pair<const wchar_t*, int> features[] = {
        {L"K=1", 1}, {L"K=TRUE", 1}, {L"K=yes", 1}, {L"K=0", 0}, {L"K=10", 0}, {L"K=", 0}, {L"L=1", -1}};
    for (const auto& [value, isSupported] : features) {
        int32_t supported = 7;
        host.data.clear();
        host.Put("ServerFeatureSupport", value);
        EXPECT_EQ(sdmFuncPtrIsServerFeatureSupported(&server, L"K", &supported),
                  isSupported < 0 ? SDM_NOT_AVAILABLE : SDM_SUCCESS);
        EXPECT_EQ(supported, std::max(isSupported, 0));
    }
    // After an empty toner record, the pane stops asking the server.
    host.data.clear();
    do_not_poll_for_Toner_Info_File = false;
    EXPECT_EQ(askToners(), "none");
    EXPECT_FALSE(do_not_poll_for_Toner_Info_File);
    EXPECT_EQ(Asked(askToners, "TonerInfo", L""), "none");
    EXPECT_TRUE(do_not_poll_for_Toner_Info_File);
    setJobPropertiesHost(nullptr);
    EXPECT_EQ(Answer(sdmFuncPtrGetServerInfoAll), "none");
}

TEST_F(Callbacks, CutRecordsAreRefused) {
    Load(true);
    const std::size_t between = presetText.find(L"Proof"); // where a cut leaves a complete record
    for (const auto& [ask, name, text, complete] :
         {std::tuple(askToners, "TonerInfo", tonerText, std::wstring::npos),
          {askTrays, "TrayInfo", trayText, std::wstring::npos},
          {PresetNamed(L""), "PresetsData", presetText, between}}) {
        for (std::size_t size = 0; size < text.size(); ++size) {
            EXPECT_EQ(Asked(ask, name, text.substr(0, size)) == "none", size != complete) << name << size;
        }
    }
}

TEST_F(Callbacks, BadRecordsAreRefused) {
    Load(true);
    const auto lines = [](const std::vector<Ask>& asks, const char* name,
                          const std::vector<std::wstring>& texts) { return std::tuple(asks, name, texts); };
    const auto cases = {
        lines({askTrays}, "TrayInfo",
              {L"1\n" + trayText.substr(2),          // one line too many
               L"3\n" + trayText.substr(2),          // one line too few
               L"2147483647\n" + trayText.substr(2), // must not allocate
               L"4294967298\n" + trayText.substr(2), // 2 in 32 bits
               L"-1\n", L"\n", L" 1\nTray 1@a@b@c@d@e@1@2\n",
               L"1\nTray 1@a@b@c@d@e@1\n",     // one field too few
               L"1\nTray 1@a@b@c@d@e@1@2@3\n", // one field too many
               L"1\nTray 1@a@b@c@d@e@1@2@\n", L"1\nTray 1@a@b@c@d@e@2147483648@2\n",
               L"1\nTray 1@a@b@c@d@e@@2\n", L"1\nTray 1@a@b@c@d@e@1.5@2\n"}),
        lines({askToners}, "TonerInfo",
              {L"1\nCyan@1@2@NULL@3@4@-2147483649\n", L"1\nCyan@1@2@3@4@5\n", L"1\nCyan@1@2@NULL@3@4@0x5\n"}),
        lines({askNames}, "PresetsList", {L"3\nAlpha\nBeta\n", L"1\nAlpha\nBeta\n", L"Alpha\n"}),
        lines({PresetNamed(L"P")}, "PresetsData",
              {L"Q\nJPKeyValues=0\nTesselKeyValues=0\nPresetKeyValues=0\n", // another preset
               L"P\nJPKeyValues=1\nTesselKeyValues=0\nPresetKeyValues=0\n",
               L"P\nJPKeyValues=0\nPresetKeyValues=0\nTesselKeyValues=0\n",
               L"P\nJPKeyValues=1\n=v\nTesselKeyValues=0\nPresetKeyValues=0\n",
               L"P\nJPKeyValues=0\nTesselKeyValues=0\nPresetKeyValues=0\nmore\n",
               L"P\nJPKeyValues=99999999\nTesselKeyValues=0\nPresetKeyValues=0\n"}),
        lines({List(SDM_SLOT_GET_PPD_DEFAULTS)}, "PpdDefaults", {L"K=v\nno pair\n"}),
        lines({List(SDM_SLOT_GET_SERVER_INFO_ALL)}, "ServerInfo", {L"Alpha:ServerName\nno key:\n"}),
        lines({Value(L"Width"), Value(nullptr)}, "ServerValFrmDict", {L"12:Depth\n"}),
        // Items that select nothing, with an empty value, without a colon; an item that is not there.
        lines({Info(-1), Info(2), Info(99), Info(JPSERVERINFO_PS_SUPPORT), Info(JPSERVERINFO_PCL_SUPPORT),
               Info(JPSERVERINFO_SERVER_OS)},
              "ServerInfo", {infoText}),
        lines({Info(JPSERVERINFO_SERVER_NAME)}, "ServerInfo",
              {L"ServerName\nA:ServerName"}), // the first line with the key decides
        lines({Feature(L"K")}, "ServerFeatureSupport", {L"KK=v\n", L"K=\n"}),
    };
    for (const auto& [asks, name, texts] : cases) {
        for (const Ask& ask : asks) {
            for (const std::wstring& text : texts) {
                EXPECT_EQ(Asked(ask, name, text), "none") << utf8FromWide(text);
                EXPECT_TRUE(module.blocks.empty());
            }
        }
    }
}

// A module reads its variables after SDM_SUCCESS: what they held before must not pass for an answer.
TEST_F(Callbacks, VariablesWithoutAnAnswerAreEmptied) {
    Load(isTwoWay = false);
    wchar_t unit = L'x';
    std::uint8_t byte = 1;
    std::size_t size = 7;
    std::int32_t count = 7;
    SDMKeyValueList list{};
    SDMFontInfoArray font{};
    wchar_t* texts[6] = {&unit, &unit, &unit, &unit, &unit, &unit};
    std::uint8_t* png = &byte;
    SDMKeyValueList* lists[] = {&list, &list};
    SDMFontInfoArray* fonts[] = {&font, &font};
    SDMRESULT expected = SDM_SUCCESS;
    const auto ask = [&]<typename Proc>(Proc, int slot, auto... outs) {
        EXPECT_EQ(module.Callback<Proc>(slot)(&server, outs...), expected) << slot;
    };
    ask(SDMGetListProc(), SDM_SLOT_UPDATE_OUTSIDE_PPD_OPTIONS, &lists[0]);
    ask(SDMGetListProc(), SDM_SLOT_UPDATE_HUE_KEEPER_OPTIONS, &lists[1]);
    ask(SDMGetFontListProc(), SDM_SLOT_GET_FONT_LIST, &fonts[0]);
    ask(SDMGetFontsProc(), SDM_SLOT_GET_FONTS, enumSDMFlagFontFormat(), &fonts[1]);
    ask(SDMGetTextByNameProc(), SDM_SLOT_GET_SERVER_FEATURE_VALUE, L"Trim", &texts[0]);
    ask(SDMGetTwoTextsProc(), SDM_SLOT_GET_CALIBRATION, &texts[1], &texts[2]);
    ask(SDMGetTwoTextsProc(), SDM_SLOT_GET_CALIBRATION_EX, &texts[3], &texts[4]);
    ask(SDMGetTextProc(), SDM_SLOT_GET_NON_TORKA_CALIBRATION_INFO, &texts[5]);
    ask(SDMGetThumbnailProc(), SDM_SLOT_GET_PREVIEW_PAGE_THUMBNAIL_PNG, 1, &png, &size);
    ask(SDMGetCountProc(), SDM_SLOT_GET_PREVIEW_PAGES_COUNT, &count);
    EXPECT_THAT(lists, Each(IsNull()));
    EXPECT_THAT(fonts, Each(IsNull()));
    EXPECT_THAT(texts, Each(IsNull()));
    EXPECT_TRUE(png == nullptr && size == 0 && count == 0);
    expected = SDM_NOT_AVAILABLE;
    ask(SDMGetTextByNameProc(), SDM_SLOT_GET_DEVICE_LINK_PROFILE, L"P", &texts[0]);
    Load(true);
    ask(SDMGetCountProc(), SDM_SLOT_GET_PREVIEW_PAGES_COUNT, &count);
    ask(SDMGetTextProc(), SDM_SLOT_UPDATE_QUILLFORM_MASTERS, &texts[0]);
    ask(SDMGetTwoTextsProc(), SDM_SLOT_GET_CALIBRATION, &texts[0], &texts[1]);
    ask(SDMGetTwoTextsProc(), SDM_SLOT_GET_CALIBRATION_EX, &texts[0], &texts[1]);
}

TEST_F(Callbacks, VersionsAreTextAndNoFormat) {
    for (const bool twoWay : {true, false}) {
        Load(twoWay);
        setField(record->driverVersion, "1%% 2%s %n%");
        setField(record->osVersion, "4.5 %d%%");
        for (const auto& [kind, version] : std::vector<std::pair<int, std::string>>{
                 {SDM_VERSION_DRIVER, "1% 2%s %n%"}, {SDM_VERSION_SYSTEM, "4.5 %d%%"}, {2, ""}, {-1, ""}}) {
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
    for (const bool twoWay : {true, false}) {
        Load(twoWay);
        const auto callback = module.Callback<SDMFreeProc>(SDM_SLOT_FREE);
        const int nothing = twoWay ? SDM_INVALID_ARGUMENT : SDM_NOT_AVAILABLE;
        void* block = twoWay ? module.Allocate(8) : std::malloc(8);
        void* const left = twoWay ? nullptr : block;
        EXPECT_EQ(callback(&block), SDM_SUCCESS);
        EXPECT_EQ(block, left);
        block = nullptr;
        EXPECT_EQ(callback(&block), nothing);
        EXPECT_EQ(callback(nullptr), nothing);
    }
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
    EXPECT_THAT(utf8Text(printer->sent[0].title), testing::StartsWith("Command_WritePresetData0"));
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
        EXPECT_EQ(Taken(text), "\xEF\xBB\xBF<Presets/>");
    }
    // The server no longer knows the job. The description tells whether the queue took the presets.
    printer->commandJob = 7;
    const wchar_t* stored[] = {L"\xFEFF<Presets/>"};
    EXPECT_EQ(sdmFuncPtrSetLocalPresetsData(&server, stored, 1), SDM_SUCCESS);
    EXPECT_EQ(sdmFuncPtrSetLocalPresetsData(&server, presets, 1), SDM_NOT_AVAILABLE);
    setDestinationPPD("");
    wchar_t* text = nullptr;
    EXPECT_EQ(sdmFuncPtrGetLocalPresetsData(&server, &text, 0), SDM_NOT_AVAILABLE);
}

} // namespace
} // namespace torka
