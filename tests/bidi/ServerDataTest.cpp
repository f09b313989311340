// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/CUtil.h"
#include "bidi/serverdata/ServerDataToBuffer.h"
#include "bidi/serverdata/ServerDataToSDM.h"
#include "bidi/serverdata/ServerDataXml.h"
#include "bidi/serverdata/ServerRecords.h"
#include "platform/TextEncoding.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

// Records as they are written, and the server data as XML. CallbacksTest.cpp reads them.

namespace torka {
namespace {

using ::testing::ElementsAre;

const ModuleMemory memory;
const ModuleMemory noMemory([](SDMHANDLE, std::size_t) -> void* { return nullptr; }, std::free);

TEST(ServerData, SuppliesThatNeedAttention) {
    const auto supplies =
        readToners(L"8\nlow@5@5@NULL@-1@-1@1\nenough@6@5@NULL@-1@-1@1\nunknown@-1@5@NULL@-1@-1@1\n"
                   L"no bound@0@-1@NULL@-1@-1@1\nfull@90@0@NULL@90@-1@3\nroom@89@0@NULL@90@-1@3\n"
                   L"no bound@5@-1@NULL@-1@-1@3\nlow@0@0@NULL@-1@-1@1\n");
    ASSERT_TRUE(supplies);
    for (const TonerView& supply : *supplies) {
        EXPECT_EQ(needsAttention(supply), supply.name == L"low" || supply.name == L"full") << supply.level;
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
    const SDMTrayInfoArray trays{1, &tray};
    EXPECT_EQ(TrayInfoToBuffer(&trays), L"1\nTray 1 left\xFFFD@EMPTY@@EMPTY@EMPTY@K@-2@500\n");
    EXPECT_EQ(TrayInfoToBuffer(nullptr), L"0\n");
    SDMTonerInfo toner{};
    toner.name = name.data();
    toner.level = -3;
    const SDMTonerInfoArray toners{1, &toner};
    EXPECT_EQ(TonerInfoToBuffer(&toners), L"1\nTray 1 left\xFFFD@-3@0@NULL@0@0@0\n");
    EXPECT_EQ(TonerInfoToBuffer(nullptr), L"0\n");

    SDMKeyValue items[] = {{key.data(), value.data()},
                           {split.data(), key.data()},
                           {nullptr, key.data()},
                           {name.data(), nullptr}};
    const SDMKeyValueList list{4, items};
    EXPECT_EQ(PPDDefaultsToBuffer(&list), L"K=\xFEFF"
                                          L"a b\xFEFF\nTray@1 left\xFFFD=EMPTYSTRING\n");
    EXPECT_EQ(ServerPresetDataByNameToBuffer(L"P\n", &list, nullptr, &list),
              L"P \nJPKeyValues=2\nK=EFBBBFa bEFBBBF\nTray@1 left\xFFFD=\nTesselKeyValues=0\n"
              L"PresetKeyValues=2\nK=EFBBBFa bEFBBBF\nTray@1 left\xFFFD=\n");
    const wchar_t* texts[] = {L"Duplex=Both\nsides", L"", nullptr, L"no key", L"=odd"};
    EXPECT_EQ(LoclHelpStringsToBuffer(texts), L"Duplex=Both sides\n1=\n2=\n3=no key\n4==odd\n");
    EXPECT_EQ(ServerPresetNamesListToBuffer(texts), L"3\nDuplex=Both sides\nno key\n=odd\n");
    wchar_t* first = nullptr;
    wchar_t* second = nullptr;
    EXPECT_FALSE(GetCalibrationToSDM(L"Calibrations=a\n", memory, first, second));
    ASSERT_TRUE(GetCalibrationToSDM(CalibrationToBuffer(L"a\nb", L"c"), memory, first, second));
    EXPECT_EQ(std::wstring(first) + second, L"a bc");
    memory.Free(first);
    memory.Free(second);
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

// "none" where it is not available.
std::wstring xmlOf(const SharedMemoryList& record, const char* language, const ModuleMemory& from = memory) {
    wchar_t* text = nullptr;
    if (serverDataNonBidi(record, language, from, text) != SDM_SUCCESS) {
        return text ? L"out-parameter" : L"none";
    }
    const std::wstring xml(text);
    from.Free(text);
    return xml;
}

TEST(ServerDataXml, OfTheExchangeRecordIsWellFormed) {
    const tests::CapturingStreams streams;
    // Indexes and keys in any order; other items are skipped.
    auto record = recordOf(30, "2,29,*QVUnit1,,30,-1,none,2,");
    setField(record->values[2], "a\"&<>'\t\r\n\x01\xEF\xBF\xBE\xF0\x9F\x96\xA8\xff");
    EXPECT_THAT(installedOptions(*record), ElementsAre(2, 29, 1, 2));
    EXPECT_EQ(readByPython(xmlOf(*record, "zh_TW")),
              "zh_TW|/tmp/a & \"b\" <c>/\xE7\xB4\x99.ppd|None|Driver|None|UTF8\n"
              "'*QVUnit2''a\"&<>\\'\\t\\r\\n\\ufffd\\ufffd\\U0001f5a8\\ufffd'\n"
              "'*QVUnit29''Value29'\n'*QVUnit1''Value1'\n"
              "'*QVUnit2''a\"&<>\\'\\t\\r\\n\\ufffd\\ufffd\\U0001f5a8\\ufffd'\n");

    record = recordOf(30, "1,");
    setField(record->ppdCopyPath, "p");
    EXPECT_EQ(xmlOf(*record, "en"),
              L"<?xml version=\"1.0\" encoding=\"UTF8\"?>\n<SMDData>\n <Configuration locale=\"en\" "
              L"encoding=\"UTF8\" ppdLocation0=\"p\" ControlScope=\"Driver\"  /> \n <Device deviceName=\"\" "
              L"deviceID=\"0\"> \n  <InstallableOptions>\n   <InstalledOptions key=\"*QVUnit1\" "
              L"value=\"Value1\"/>\n  </InstallableOptions>\n </Device> \n</SMDData>");
    EXPECT_EQ(xmlOf(*record, "en", noMemory), L"none");
    EXPECT_TRUE(streams.Errors().empty());
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
        const std::wstring xml = xmlOf(*record, "en");
        EXPECT_LT(xml.size(), serverDataBlock / sizeof(wchar_t));
        EXPECT_TRUE(xml.ends_with(L"\"/>\n  </InstallableOptions>\n </Device> \n</SMDData>"));
        wasFull = wasFull || xml.size() == serverDataBlock / sizeof(wchar_t) - 1;
    }
    EXPECT_TRUE(wasFull) << "no length filled the block to its last unit";
    EXPECT_EQ(streams.Errors().at(0), "Server data: no room for 1 of 4 installed options\n");
    auto record = recordOf(1, "0,");
    setField(record->ppdCopyPath, std::string(500, '"'));
    EXPECT_EQ(xmlOf(*record, "en"), L"none");
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
        EXPECT_TRUE(readKeyValueSet(wideFromUtf8(tests::readFile(folder + name)))) << name;
    }
    const std::string xml = tests::readFile(folder + "/BidiData");
    EXPECT_EQ(readByPython(wideFromUtf8(xml)).find("en||press-floor-2|Driver|admin|UTF8\n"), 0U);
}

TEST(CUtil, TakesTextsApart) {
    EXPECT_EQ(CUtil::__replaceW(L"abc", L"", L"x"), L"abc");
    EXPECT_EQ(CUtil::findLineWithKey(L"b", L"a\n;ab;b\n", L"\n;"), L"ab");
    EXPECT_THAT(CUtil::tockenizeWstring(L"\na;;b\n", L";\n"), ElementsAre(L"a", L"b"));
    EXPECT_EQ(CUtil::wtoi(L" -12x"), -12);
}

} // namespace
} // namespace torka
