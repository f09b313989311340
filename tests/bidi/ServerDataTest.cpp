// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/ByteOrderMark.h"
#include "bidi/serverdata/CUtil.h"
#include "bidi/serverdata/ServerDataToBuffer.h"
#include "bidi/serverdata/ServerDataToSDM.h"
#include "bidi/serverdata/ServerDataXml.h"
#include "bidi/serverdata/ServerRecords.h"
#include "platform/TextEncoding.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/support/TestSupport.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

// Converts record texts to the module's structures and back. Counts every block: a converter that refuses
// leaves no block, whichever allocation fails.

namespace torka {
namespace {

using ::testing::ElementsAre;

std::size_t blocks = 0;
std::size_t allocationsLeft = SIZE_MAX;

void* allocateCounted(SDMHANDLE /*handle*/, std::size_t size) {
    if (allocationsLeft == 0) {
        return nullptr;
    }
    --allocationsLeft;
    ++blocks;
    return std::malloc(size);
}

void freeCounted(void* block) {
    --blocks;
    std::free(block);
}

const ModuleMemory memory(allocateCounted, freeCounted);

std::string shown(const wchar_t* text) { return text ? utf8FromWide(text) : "-"; }

std::string shown(const SDMKeyValueList* list) {
    std::string all;
    for (std::size_t i = 0; i < list->count; ++i) {
        all += shown(list->items[i].szKey) + "=" + shown(list->items[i].szValue) + ";";
    }
    return all;
}

// A converter that returns its result as a text; "false" for a refusal.
using Convert = std::function<std::string(std::wstring_view text)>;

Convert listBy(bool (*convert)(std::wstring_view, const ModuleMemory&, SDMKeyValueList*&)) {
    return [convert](std::wstring_view text) -> std::string {
        SDMKeyValueList* list = nullptr;
        if (!convert(text, memory, list)) {
            return list ? "out-parameter" : "false";
        }
        std::string all = shown(list);
        memory.FreeList(list);
        return all;
    };
}

std::string toners(std::wstring_view text) {
    SDMTonerInfoArray* array = nullptr;
    if (!GetTonerInfoToSDM(text, memory, array)) {
        return array ? "out-parameter" : "false";
    }
    std::string all;
    for (std::size_t i = 0; i < array->count; ++i) {
        const SDMTonerInfo& item = array->items[i];
        all += shown(item.name) + "," + std::to_string(item.level) + "," + std::to_string(item.lowLevel) +
               "," + shown(item.color) + "," + std::to_string(item.highLevel) + "," +
               std::to_string(item.capacity) + "," + std::to_string(item.kind) + ";";
    }
    EXPECT_EQ(TonerInfoToBuffer(array), std::wstring(text)) << "written again";
    memory.FreeToners(array);
    return all;
}

std::string trays(std::wstring_view text) {
    SDMTrayInfoArray* array = nullptr;
    if (!GetTrayInfoToSDM(text, memory, array)) {
        return array ? "out-parameter" : "false";
    }
    std::string all;
    for (std::size_t i = 0; i < array->count; ++i) {
        const SDMTrayInfo& item = array->items[i];
        for (const wchar_t* field :
             {item.name, item.key, item.mediaName, item.mediaSize, item.mediaType, item.mediaColor}) {
            all += shown(field) + ",";
        }
        all += std::to_string(item.level) + "," + std::to_string(item.capacity) + ";";
    }
    memory.FreeTrays(array);
    return all;
}

std::string presetNames(std::wstring_view text) {
    wchar_t** names = nullptr;
    int count = 7;
    if (!GetServerPresetNamesListToSDM(text, memory, names, count)) {
        return names || count ? "out-parameter" : "false";
    }
    std::string all = std::to_string(count) + ":";
    for (int i = 0; i < count; ++i) {
        all += shown(names[i]) + ";";
    }
    CUtil::deallocateArrayOfStrings(memory, names, static_cast<std::size_t>(count));
    return all;
}

std::string presetOf(std::wstring_view text, std::wstring_view name) {
    SDMKeyValueList* job = nullptr;
    SDMKeyValueList* tessel = nullptr;
    SDMKeyValueList* preset = nullptr;
    if (!GetServerPresetDataByNameToSDM(text, memory, name, job, tessel, preset)) {
        return job || tessel || preset ? "out-parameter" : "false";
    }
    std::string all = shown(job) + "|" + shown(tessel) + "|" + shown(preset);
    for (SDMKeyValueList* list : {job, tessel, preset}) {
        memory.FreeList(list);
    }
    return all;
}

Convert textBy(const std::function<bool(std::wstring_view, wchar_t*&)>& convert) {
    return [convert](std::wstring_view text) -> std::string {
        wchar_t* out = nullptr;
        if (!convert(text, out)) {
            return out ? "out-parameter" : "false";
        }
        std::string all = shown(out);
        memory.Free(out);
        return all;
    };
}

Convert serverInfo(int item) {
    return textBy([item](std::wstring_view text, wchar_t*& out) {
        return GetServerInfoToSDM(text, memory, item, out);
    });
}

Convert featureValue(const std::wstring& key) {
    return textBy([key](std::wstring_view text, wchar_t*& out) {
        return GetServerFeatureValueToSDM(text, memory, key, out);
    });
}

std::string calibration(std::wstring_view text) {
    wchar_t* first = nullptr;
    wchar_t* second = nullptr;
    if (!GetCalibrationToSDM(text, memory, first, second)) {
        return first || second ? "out-parameter" : "false";
    }
    std::string all = shown(first) + "|" + shown(second);
    memory.Free(first);
    memory.Free(second);
    return all;
}

std::string overrides(std::wstring_view text) {
    SDMKeyValueList* job = nullptr;
    SDMKeyValueList* locked = nullptr;
    SDMKeyValueList* hidden = nullptr;
    if (!GetDMTOverridesToSDM(text, memory, job, locked, hidden)) {
        return job || locked || hidden ? "out-parameter" : "false";
    }
    std::string all = shown(job) + "|" + shown(locked) + "|" + shown(hidden);
    for (SDMKeyValueList* list : {job, locked, hidden}) {
        memory.FreeList(list);
    }
    return all;
}

const std::wstring tonerText =
    L"2\nCyan@55@10@#00ffff@90@20000@1\nWaste@-3@0@NULL@2147483647@-2147483648@3\n";
const std::wstring trayText = L"2\nTray 1@Tray1@Letterhead@A4@Plain@White@420@550\n"
                              L"Bypass@EMPTY@N/A@0@@\x7D19@-1@N/A\n";
const std::wstring presetText =
    L"Brochure\nJPKeyValues=2\nDuplex=True\nNotes1=a=b\nTesselKeyValues=0\n"
    L"PresetKeyValues=1\nPresetName=EFBBBFx EFBBBF\n"
    L"Proof\nJPKeyValues=1\nCopies=\nTesselKeyValues=1\nA=EFBBBE\nPresetKeyValues=0\n";
const std::wstring infoText = L"Alpha:ServerName\n7.0:ServerVersion\n64:MemSize:x\n:PSSupport\nPCLSupport\n";
const std::wstring templateText = L"<T><Category name=\"UI-Modification\">\n<Controls>\n"
                                  L"<ZANPPD key=\"B\" default=\"2\"/>\n<ZANPPD key=\"A\" default=\"\"/>\n"
                                  L"<ZANPPD key=\"B\" default=\"3\"/>\n<ZANPPD key=\"None\"/>\n"
                                  L"<Other key=\"C\" default=\"1\"/>\n</Controls>\n<Lock>\n"
                                  L"<ZANPPD key=\"L\" value=\"True\"/>\n</Lock>\n<Show>\n"
                                  L"<ZANPPD key=\"S\" value=\"False\"/>\n</Show>\n</Category></T>";

struct Case {
    const char* name;
    Convert convert;
    std::wstring text;
    std::string expected;
};

std::vector<Case> goodCases() {
    const auto unicode = utf8FromWide(L"\x7D19");
    return {
        {"toner", toners, tonerText, "Cyan,55,10,#00ffff,90,20000,1;Waste,-3,0,-,2147483647,-2147483648,3;"},
        {"trays", trays, trayText,
         "Tray 1,Tray1,Letterhead,A4,Plain,White,420,550;Bypass,-,-,-,," + unicode + ",-1,-1;"},
        {"no trays", trays, L"0\n", ""},
        {"names", presetNames, L"2\nAlpha\nBeta", "2:Alpha;Beta;"},
        {"no names", presetNames, L"0\n", "0:"},
        {"first preset", [](std::wstring_view text) { return presetOf(text, L""); }, presetText,
         "Duplex=True;Notes1=a=b;||PresetName=\xEF\xBB\xBFx \xEF\xBB\xBF;"},
        {"second preset", [](std::wstring_view text) { return presetOf(text, L"Proof"); }, presetText,
         "Copies=;|A=EFBBBE;|"},
        {"set", listBy(UpdateHueKeeperOptionsToSDM), L"K=v\nL=EMPTYSTRING\n\nK==\n",
         "K=v;L=EMPTYSTRING;K==;"},
        {"defaults", listBy(PPDDefaultsToSDM), L"K=v\nL=EMPTYSTRING\nM=", "K=v;L=;M=;"},
        {"queue", listBy(QueueDefaultsToSDM), L"Duplex=EMPTYSTRING\n", "Duplex=;"},
        {"links", listBy(GetAllDeviceLinkProfilesToSDM), L"P=Press to press\n", "P=Press to press;"},
        {"help", listBy(GetLoclHelpStringsToSDM), L"Duplex=Both sides\n", "Duplex=Both sides;"},
        {"all information", listBy(GetServerInfoAllToSDM), L"Alpha:ServerName\n7:1:ServerVersion",
         "ServerName=Alpha;1:ServerVersion=7;"},
        {"name", serverInfo(0), infoText, "Alpha"},
        {"version", serverInfo(1), infoText, "7.0"},
        {"memory", serverInfo(16), infoText, "64"},
        {"feature", featureValue(L"Tracking"), L"Other=0\nTracking=Yes\n", "Yes"},
        {"calibration", calibration, L"Calibrations=a,b\nCurrentCalibration=\n", "a,b|"},
        {"masters", textBy([](std::wstring_view text, wchar_t*& out) {
             return UpdateQuillformMastersToSDM(text, memory, out);
         }),
         L"1\n2", "1\n2"},
        {"local presets", textBy([](std::wstring_view text, wchar_t*& out) {
             return GetLocalPresetsDataToSDM(text, memory, out);
         }),
         L"<EFBBBF/>", "<\xEF\xBB\xBF/>"},
        {"template", overrides, templateText, "A=;B=2;|L=True;|S=False;"},
    };
}

TEST(ServerData, IsReadAndEveryBlockIsCounted) {
    const tests::CapturingStreams streams;
    for (const Case& test : goodCases()) {
        EXPECT_EQ(test.convert(test.text), test.expected) << test.name;
        EXPECT_EQ(blocks, 0U) << test.name;
        std::size_t allowed = 0;
        for (std::string got = "false"; got == "false" && allowed < 100; ++allowed) {
            allocationsLeft = allowed;
            got = test.convert(test.text);
            EXPECT_TRUE(got == "false" || got == test.expected) << test.name << " after " << allowed;
            EXPECT_EQ(blocks, 0U) << test.name << " after " << allowed;
        }
        EXPECT_LT(allowed, 100U) << test.name;
        allocationsLeft = SIZE_MAX;
        for (const wchar_t unit : {L'\0', L'\xD834', L'\xDFFF', wchar_t{0x110000}, wchar_t{-1}}) {
            EXPECT_EQ(test.convert(test.text + unit), "false") << test.name;
        }
        EXPECT_EQ(test.convert(L""), "false") << test.name;
        EXPECT_EQ(blocks, 0U) << test.name;
    }
}

TEST(ServerData, SuppliesThatNeedAttention) {
    const auto supplies =
        readToners(L"7\nlow@5@5@NULL@-1@-1@1\nenough@6@5@NULL@-1@-1@1\nunknown@-1@5@NULL@-1@-1@1\n"
                   L"no bound@0@-1@NULL@-1@-1@1\nfull@90@0@NULL@90@-1@3\nroom@89@0@NULL@90@-1@3\n"
                   L"no bound@5@-1@NULL@-1@-1@3\n");
    ASSERT_TRUE(supplies);
    for (const TonerView& supply : *supplies) {
        EXPECT_EQ(needsAttention(supply), supply.name == L"low" || supply.name == L"full") << supply.level;
    }
}

TEST(ServerData, CutRecordsAreRefused) {
    for (const auto& [convert, text] :
         std::initializer_list<std::pair<Convert, std::wstring>>{{toners, tonerText}, {trays, trayText}}) {
        for (std::size_t size = 0; size < text.size(); ++size) {
            EXPECT_EQ(convert(text.substr(0, size)), "false") << size;
        }
    }
    // A record that is cut between two presets is complete.
    const std::size_t between = presetText.find(L"Proof");
    for (std::size_t size = 0; size < presetText.size(); ++size) {
        EXPECT_EQ(presetOf(presetText.substr(0, size), L"") == "false", size != between) << size;
    }
    EXPECT_EQ(blocks, 0U);
}

TEST(ServerData, BadRecordsAreRefused) {
    const auto preset = [](std::wstring_view text) { return presetOf(text, L"P"); };
    const auto feature = featureValue(L"K");
    const std::vector<std::pair<Convert, std::wstring>> cases = {
        {trays, L"1\n" + trayText.substr(2)},                                  // one line too many
        {trays, L"3\n" + trayText.substr(2)},                                  // one line too few
        {trays, L"2147483647\n" + trayText.substr(2)},                         // must not allocate
        {trays, L"4294967298\n" + trayText.substr(2)},                         // 2 in 32 bits
        {trays, L"-1\n"},                                                      //
        {trays, L"\n"},                                                        //
        {trays, L" 1\nTray 1@a@b@c@d@e@1@2\n"},                                //
        {trays, L"1\nTray 1@a@b@c@d@e@1\n"},                                   // one field too few
        {trays, L"1\nTray 1@a@b@c@d@e@1@2@3\n"},                               // one field too many
        {trays, L"1\nTray 1@a@b@c@d@e@1@2@\n"},                                //
        {trays, L"1\nTray 1@a@b@c@d@e@2147483648@2\n"},                        //
        {trays, L"1\nTray 1@a@b@c@d@e@@2\n"},                                  //
        {trays, L"1\nTray 1@a@b@c@d@e@1.5@2\n"},                               //
        {toners, L"1\nCyan@1@2@NULL@3@4@-2147483649\n"},                       //
        {toners, L"1\nCyan@1@2@3@4@5\n"},                                      //
        {toners, L"1\nCyan@1@2@NULL@3@4@0x5\n"},                               //
        {presetNames, L"3\nAlpha\nBeta\n"},                                    //
        {presetNames, L"1\nAlpha\nBeta\n"},                                    //
        {presetNames, L"Alpha\n"},                                             //
        {preset, L"Q\nJPKeyValues=0\nTesselKeyValues=0\nPresetKeyValues=0\n"}, // another preset
        {preset, L"P\nJPKeyValues=1\nTesselKeyValues=0\nPresetKeyValues=0\n"},
        {preset, L"P\nJPKeyValues=0\nPresetKeyValues=0\nTesselKeyValues=0\n"},
        {preset, L"P\nJPKeyValues=1\n=v\nTesselKeyValues=0\nPresetKeyValues=0\n"},
        {preset, L"P\nJPKeyValues=0\nTesselKeyValues=0\nPresetKeyValues=0\nmore\n"},
        {preset, L"P\nJPKeyValues=99999999\nTesselKeyValues=0\nPresetKeyValues=0\n"},
        {listBy(PPDDefaultsToSDM), L"K=v\nno pair\n"},
        {listBy(GetServerInfoAllToSDM), L"Alpha:ServerName\nno key:\n"},
        {serverInfo(2), infoText},                    // selects nothing
        {serverInfo(99), infoText},                   //
        {serverInfo(14), infoText},                   // an empty value
        {serverInfo(13), infoText},                   // no colon
        {serverInfo(0), L"ServerName\nA:ServerName"}, // the first line with the key decides
        {serverInfo(11), infoText},                   //
        {feature, L"KK=v\n"},                         //
        {feature, L"K=\n"},                           //
        {calibration, L"Calibrations=a\n"},           //
        {overrides, L"<Controls>\n</Controls>"},      // no category
        {overrides, L"<Category name=\"UI-Modification\"><Controls></Controls>"},
    };
    const tests::CapturingStreams streams;
    for (const auto& [convert, text] : cases) {
        EXPECT_EQ(convert(text), "false") << utf8FromWide(text);
        EXPECT_EQ(blocks, 0U);
    }
    SDMKeyValueList* list = nullptr;
    EXPECT_FALSE(SDMAllocKeyValueListFromKeyValueSet(memory, "K=\xff\n", list));
    ASSERT_TRUE(SDMAllocKeyValueListFromKeyValueSet(memory, "K=\xC3\xA9\n", list));
    EXPECT_EQ(shown(list), "K=\xC3\xA9;");
    memory.FreeList(list);
    bool isSupported = true;
    EXPECT_FALSE(IsServerFeatureSupportedToSDM(L"K=1", L"L", isSupported));
    EXPECT_FALSE(isSupported);
    for (const auto& [value, expected] : std::initializer_list<std::pair<std::wstring, bool>>{
             {L"1", true}, {L"TRUE", true}, {L"yes", true}, {L"0", false}, {L"10", false}, {L"", false}}) {
        EXPECT_TRUE(IsServerFeatureSupportedToSDM(L"K=" + value, L"K", isSupported));
        EXPECT_EQ(isSupported, expected);
    }
}

// Texts that the formats cannot carry unchanged.
TEST(ServerData, IsWrittenSoThatItCanBeRead) {
    std::wstring name = L"Tray@1\nleft\xD800";
    std::wstring value = L"\xFEFF"
                         L"a\nb\xFEFF";
    std::wstring empty;
    std::wstring key = L"K";
    std::wstring split = L"K=L";
    SDMTrayInfo tray{name.data(), nullptr, empty.data(), nullptr, nullptr, key.data(), -2, 500};
    const SDMTrayInfoArray trayArray{1, &tray};
    const std::wstring trayRecord = TrayInfoToBuffer(&trayArray);
    EXPECT_EQ(trayRecord, L"1\nTray 1 left\xFFFD@EMPTY@@EMPTY@EMPTY@K@-2@500\n");
    EXPECT_EQ(trays(trayRecord), "Tray 1 left\xEF\xBF\xBD,-,,-,-,K,-2,500;");

    SDMKeyValue items[] = {{key.data(), value.data()},
                           {split.data(), key.data()},
                           {nullptr, key.data()},
                           {name.data(), nullptr}};
    const SDMKeyValueList list{4, items};
    EXPECT_EQ(PPDDefaultsToBuffer(&list), L"K=\xFEFF"
                                          L"a b\xFEFF\nTray@1 left\xFFFD=EMPTYSTRING\n");
    EXPECT_EQ(AllDeviceLinkProfilesToBuffer(&list), L"K=\xFEFF"
                                                    L"a b\xFEFF\nTray@1 left\xFFFD=\n");
    const std::wstring preset = ServerPresetDataByNameToBuffer(L"P\n", &list, nullptr, &list);
    EXPECT_EQ(preset, L"P \nJPKeyValues=2\nK=EFBBBFa bEFBBBF\nTray@1 left\xFFFD=\nTesselKeyValues=0\n"
                      L"PresetKeyValues=2\nK=EFBBBFa bEFBBBF\nTray@1 left\xFFFD=\n");
    EXPECT_EQ(presetOf(preset + preset, L"P ").substr(0, 13), "K=\xEF\xBB\xBF"
                                                              "a b\xEF\xBB\xBF;T");

    const wchar_t* texts[] = {L"Duplex=Both\nsides", L"", nullptr, L"no key", L"=odd"};
    EXPECT_EQ(LoclHelpStringsToBuffer(texts), L"Duplex=Both sides\n1=\n2=\n3=no key\n4==odd\n");
    const std::wstring names = ServerPresetNamesListToBuffer(texts);
    EXPECT_EQ(presetNames(names), "3:Duplex=Both sides;no key;=odd;");
    EXPECT_EQ(calibration(CalibrationToBuffer(L"a\nb", L"c")), "a b|c");
    for (const std::wstring& record : {TonerInfoToBuffer(nullptr), TrayInfoToBuffer(nullptr)}) {
        EXPECT_EQ(record, L"0\n");
    }
    EXPECT_EQ(PreviewPagesCountToBuffer(12), L"12");
    EXPECT_EQ(blocks, 0U);
}

// Parses the XML with Python and prints the attributes of the configuration and of every option.
constexpr const char* pythonXml = R"PY(
import sys, xml.etree.ElementTree as tree
root = tree.fromstring(sys.stdin.buffer.read().decode())
assert root.tag == 'SMDData' and [e.tag for e in root] == ['Configuration', 'Device']
c, d = root
print(c.get('locale'), c.get('ppdLocation0'), c.get('server'), c.get('ControlScope'), c.get('username'), c.get('encoding'), sep='|')
assert d.attrib == {'deviceName': '', 'deviceID': '0'} and d[0].tag == 'InstallableOptions' and len(d) == 1
for o in d[0]:
    assert o.tag == 'InstalledOptions' and len(o.attrib) == 2
    print(ascii(o.get('key')) + ascii(o.get('value')))
)PY";

std::string readByPython(std::wstring_view xml) { return tests::runPython(pythonXml, {}, utf8FromWide(xml)); }

std::unique_ptr<SharedMemoryList> recordOf(std::size_t entries, std::string_view options) {
    auto record = std::make_unique<SharedMemoryList>();
    for (std::size_t i = 0; i < entries; ++i) {
        setField(record->keys[i], "*QVUnit" + std::to_string(i));
        setField(record->values[i], "Value" + std::to_string(i));
    }
    setFieldNumber(record->count, static_cast<long>(entries));
    setField(record->ppdCopyPath, "/tmp/a & \"b\" <c>/\xE7\xB4\x99.ppd");
    setField(record->installableOptions, options);
    return record;
}

TEST(ServerDataXml, OfTheExchangeRecordIsWellFormed) {
    const tests::CapturingStreams streams;
    // Indexes and keys in any order; other items are skipped.
    auto record = recordOf(30, "2,29,*QVUnit1,,30,-1,none,2,");
    setField(record->values[2], "a\"&<>'\t\r\n\x01\xEF\xBF\xBE\xF0\x9F\x96\xA8\xff");
    EXPECT_THAT(installedOptions(*record), ElementsAre(2, 29, 1, 2));
    wchar_t* text = nullptr;
    ASSERT_EQ(serverDataNonBidi(*record, "zh_TW", memory, text), SDM_SUCCESS);
    EXPECT_EQ(readByPython(text), "zh_TW|/tmp/a & \"b\" <c>/\xE7\xB4\x99.ppd|None|Driver|None|UTF8\n"
                                  "'*QVUnit2''a\"&<>\\'\\t\\r\\n\\ufffd\\ufffd\\U0001f5a8\\ufffd'\n"
                                  "'*QVUnit29''Value29'\n'*QVUnit1''Value1'\n"
                                  "'*QVUnit2''a\"&<>\\'\\t\\r\\n\\ufffd\\ufffd\\U0001f5a8\\ufffd'\n");
    memory.Free(text);

    record = recordOf(30, "1,");
    setField(record->ppdCopyPath, "p");
    ASSERT_EQ(serverDataNonBidi(*record, "en", memory, text), SDM_SUCCESS);
    EXPECT_EQ(std::wstring(text),
              L"<?xml version=\"1.0\" encoding=\"UTF8\"?>\n<SMDData>\n <Configuration locale=\"en\" "
              L"encoding=\"UTF8\" ppdLocation0=\"p\" ControlScope=\"Driver\"  /> \n <Device deviceName=\"\" "
              L"deviceID=\"0\"> \n  <InstallableOptions>\n   <InstalledOptions key=\"*QVUnit1\" "
              L"value=\"Value1\"/>\n  </InstallableOptions>\n </Device> \n</SMDData>");
    memory.Free(text);
    allocationsLeft = 0;
    EXPECT_EQ(serverDataNonBidi(*record, "en", memory, text), SDM_NOT_AVAILABLE);
    EXPECT_EQ(text, nullptr);
    allocationsLeft = SIZE_MAX;
    EXPECT_TRUE(streams.Errors().empty());
    EXPECT_EQ(blocks, 0U);
}

// The block holds 2,048 units with the terminator, and never a part of an option.
TEST(ServerDataXml, StaysWithinItsBlock) {
    const tests::CapturingStreams streams;
    bool wasFull = false;
    for (std::size_t length = 300; length < 460; ++length) {
        auto record = recordOf(4, "0,1,2,3,");
        for (std::size_t i = 0; i < 4; ++i) {
            setField(record->values[i], std::string(i == 3 ? length : 400, 'v'));
        }
        wchar_t* text = nullptr;
        ASSERT_EQ(serverDataNonBidi(*record, "en", memory, text), SDM_SUCCESS);
        const std::wstring xml(text);
        EXPECT_LT(xml.size(), serverDataBlock / sizeof(wchar_t));
        EXPECT_TRUE(xml.ends_with(L"\"/>\n  </InstallableOptions>\n </Device> \n</SMDData>"));
        wasFull = wasFull || xml.size() == serverDataBlock / sizeof(wchar_t) - 1;
        memory.Free(text);
    }
    EXPECT_TRUE(wasFull) << "no length filled the block to its last unit";
    EXPECT_EQ(streams.Errors().at(0), "Server data: no room for 1 of 4 installed options\n");
    auto record = recordOf(1, "0,");
    setField(record->ppdCopyPath, std::string(500, '"'));
    wchar_t* text = nullptr;
    EXPECT_EQ(serverDataNonBidi(*record, "en", memory, text), SDM_NOT_AVAILABLE);
    EXPECT_EQ(blocks, 0U);
}

TEST(ServerDataXml, OfTheServerIsWellFormed) {
    const std::wstring xml =
        ServerDataToBuffer(L"QVFinisherUnit=<Finisher>\nQVFolderUnit=\n", "ja", "/etc/p\".ppd", "10.0.0.5&");
    EXPECT_EQ(
        xml.find(L"<?xml version=\"1.0\" encoding=\"UTF8\"?>\n <SMDData>\n <Configuration locale=\"ja\" "
                 L"encoding=\"UTF8\" ppdLocation0=\"/etc/p&quot;.ppd\" server=\"10.0.0.5&amp;\" "
                 L"ControlScope=\"Driver\" username=\"admin\" /> \n"),
        0U);
    EXPECT_EQ(readByPython(xml), "ja|/etc/p\".ppd|10.0.0.5&|Driver|admin|UTF8\n"
                                 "'QVFinisherUnit''<Finisher>'\n'QVFolderUnit'''\n");
}

// `torka serverdata` shows the samples of the other records.
TEST(ServerData, SamplesAreWhole) {
    const std::string folder = TORKA_SOURCE_DIR "/samples/server-data/data";
    for (const char* name :
         {".ja/CDIHelpStrings", "/CDIHelpStrings", "/ColorDefaultList", "/DeviceLinkProfilesList",
          "/HueKeeper", "/ListLockedKeys", "/PpdDefaults", "/QueuePropList", "/ServerFeatureSupport"}) {
        EXPECT_NE(listBy(QueueDefaultsToSDM)(wideFromUtf8(tests::readFile(folder + name))), "false") << name;
    }
    const std::string xml = tests::readFile(folder + "/BidiData");
    EXPECT_EQ(readByPython(wideFromUtf8(xml)).find("en||press-floor-2|Driver|admin|UTF8\n"), 0U);
}

TEST(CUtil, TakesTextsApart) {
    EXPECT_EQ(CUtil::__replace("aXXbXX", "XX", "XXX"), "aXXXbXXX");
    EXPECT_EQ(CUtil::__replaceW(L"abc", L"", L"x"), L"abc");
    EXPECT_EQ(CUtil::findLineWithKey(L"b", L"a\n;ab;b\n", L"\n;"), L"ab");
    EXPECT_THAT(CUtil::tockenizeWstring(L"\na;;b\n", L";\n"), ElementsAre(L"a", L"b"));
    EXPECT_EQ(CUtil::wtoi(L" -12x"), -12);
    wchar_t** array = nullptr;
    ASSERT_TRUE(CUtil::AllocMemory(memory, array, 3, 2));
    array[2][2] = L'\0'; // the last unit of the last row
    CUtil::deallocTwoDimenArray(memory, array, 3);
    allocationsLeft = 2;
    EXPECT_FALSE(CUtil::AllocMemory(memory, array, 3, 2));
    EXPECT_EQ(array, nullptr);
    allocationsLeft = SIZE_MAX;
    EXPECT_EQ(blocks, 0U);
}

} // namespace
} // namespace torka
