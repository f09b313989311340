// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesState.h"
#include "platform/TextEncoding.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

class ExchangeRecord : public ::testing::Test {
protected:
    ~ExchangeRecord() override { Forget(); }
    static void Forget() {
        gotSharedListFromJP = gotServerPresetFromJP = false;
        sharedListCopyFromJP.reset();
    }
    using Pairs = std::initializer_list<std::pair<std::wstring, std::wstring>>;
    static KeyValueList ListOf(Pairs pairs) {
        KeyValueList list;
        for (const auto& [key, value] : pairs) {
            list.Append(key, value);
        }
        return list;
    }
    void Write(Pairs pairs) { writeSettings(*record, ListOf(pairs).List()); }
    KeyValueList Back() const {
        KeyValueList list;
        Create_SDMList_From_SharedMemoryList(list, *record);
        return list;
    }
    static std::string Raw(std::span<const char> field) { return {field.data(), field.size()}; }

    std::unique_ptr<SharedMemoryList> record = std::make_unique<SharedMemoryList>();
};

TEST_F(ExchangeRecord, FieldsKeepTheirBounds) {
    // Texts, and what a field of 8 bytes keeps of them.
    for (const auto& [text, kept] : std::vector<std::pair<std::string, std::string>>{
             {"", ""},
             {"1234567", "1234567"},
             {"12345678", "1234567"},
             {"12345\xC3\xA9", "12345\xC3\xA9"},
             {"123456\xC3\xA9", "123456"},
             {"1234\xF0\x9F\x96\xA8", "1234"},
             {std::string("ab\0cd", 5), "ab"},
             {std::string(20, '\x80'), std::string(7, '\x80')}, // invalid UTF-8 is cut anywhere
         }) {
        std::array<char, 10> bytes;
        bytes.fill('#');
        setField(std::span(bytes).first(8), text);
        EXPECT_EQ(Raw(bytes), kept + std::string(8 - kept.size(), '\0') + "##") << text;
    }
    for (const auto& [text, number] : std::vector<std::pair<std::string, long>>{
             {"", 0},
             {"12", 12},
             {"-1", -1},
             {"7 sheets", 7},
             {"x", 0},
             {"99999999999999999999", std::numeric_limits<long>::max()},
             {"-99999999999999999999", std::numeric_limits<long>::min()},
         }) {
        setField(record->count, text);
        EXPECT_EQ(fieldNumber(record->count), number) << text;
    }
    record->jpResult = {'1', '2', '3', '4'}; // no terminator
    EXPECT_EQ(fieldNumber(record->jpResult), 1234);
}

// The module's test returns more entries than the record has.
TEST_F(ExchangeRecord, CountsThatDoNotMatchTheEntriesAreHeldToTheRecord) {
    for (const auto& [count, extra, entries] :
         std::vector<std::tuple<const char*, const char*, std::size_t>>{{"99999", "0", 3000},
                                                                        {"-5", "0", 0},
                                                                        {"two", "", 0},
                                                                        {"2", "3", 5},
                                                                        {"2", "-3", 2},
                                                                        {"", "9999", 3000}}) {
        setField(record->count, count);
        setField(record->extraCount, extra);
        const KeyValueList back = Back();
        EXPECT_EQ(back.Count(), entries) << count << " + " << extra;
        for (std::size_t i = entryCount(*record); i < back.Count(); ++i) {
            EXPECT_TRUE(back.Key(i).empty() && back.Value(i).empty());
        }
    }
}

TEST_F(ExchangeRecord, TextsAreCutToTheirFields) {
    const std::wstring printer(1, static_cast<wchar_t>(0x1F5A8)); // four bytes
    record->values[3].fill('#');
    Write({{std::wstring(70, L'k'), std::wstring(800, L'v')},
           {L"Next", std::wstring(699, L'w') + printer},
           {std::wstring(63, L'x') + L"\x00E9", std::wstring(696, L'w') + printer}});
    EXPECT_EQ(Raw(record->keys[0]), std::string(64, 'k'));
    EXPECT_EQ(Raw(record->values[0]), std::string(700, 'v'));
    EXPECT_EQ(Raw(record->values[1]), std::string(699, 'w') + '\0');
    EXPECT_EQ(Raw(record->keys[2]), std::string(63, 'x') + '\0');
    EXPECT_EQ(Raw(record->values[2]), std::string(696, 'w') + "\xF0\x9F\x96\xA8");
    EXPECT_EQ(record->values[3][0], '#');
    const KeyValueList back = Back();
    EXPECT_EQ(back.Value(0), std::wstring(700, L'v'));
    EXPECT_EQ(back.Value(2), std::wstring(696, L'w') + printer);

    setField(record->values[0], "a\xFF\xC3(\xED\xA0\x80z");
    EXPECT_EQ(Back().Value(0), wideFromUtf8("a\xFF\xC3(\xED\xA0\x80z"));

    // The earlier settings are gone, and a null text becomes an empty one.
    SDMKeyValue items[] = {{nullptr, nullptr}};
    writeSettings(*record, {1, items});
    EXPECT_EQ(Raw(record->values[0]), std::string(700, '\0'));
    EXPECT_EQ(fieldText(record->count), "1");
    writeSettings(*record, {7, nullptr});
    EXPECT_EQ(fieldText(record->count), "0");
}

TEST_F(ExchangeRecord, ByteOrderMarksTravelAsLetters) {
    const std::wstring mark = L"\xFEFF";
    for (const auto& [value, written, readAgain] :
         std::vector<std::tuple<std::wstring, std::string, std::wstring>>{
             {mark + L"a" + mark, "EFBBBFaEFBBBF", mark + L"a" + mark},
             {L"a" + mark, "a\xEF\xBB\xBF", L"a" + mark},
             {L"EFBBBFa", "EFBBBFa", mark + L"a"},
             {L"aEFBBBF", "aEFBBBF", L"aEFBBBF"},
             {mark + std::wstring(690, L'b') + mark, "EFBBBF" + std::string(690, 'b'),
              mark + std::wstring(690, L'b')},
         }) {
        Write({{mark, value}});
        EXPECT_EQ(entryValue(*record, 0), written);
        EXPECT_EQ(entryKey(*record, 0), "\xEF\xBB\xBF");
        EXPECT_EQ(Back().Value(0), readAgain);
    }
}

TEST_F(ExchangeRecord, APresetsNameGoesWhenItsSettingsChange) {
    // changed: the later value of "Duplex"
    for (const auto& [what, presetKey, name, changed, expected] : {
             std::tuple<const char*, const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*>{
                 "unchanged", L"PresetName", L"Brochure", L"Long", L"Brochure"},
             {"changed", L"PresetName", L"Brochure", L"Short", L""},
             {"changed, with an asterisk", L"*PresetName", L"Brochure", L"Short", L""},
             {"no preset of the server", L"PresetName", L"", L"Short", L""},
             {"another key", L"PresetNames", L"Brochure", L"Short", L"Brochure"},
         }) {
        Forget();
        const std::pair<std::wstring, std::wstring> preset(presetKey, name);
        const std::pair<std::wstring, std::wstring> ofNote(L"Bar", L"of the note");
        KeyValueList list = // with one key twice
            ListOf({preset, {L"Duplex", L"Long"}, {L"Bar", L"of the control"}, ofNote});
        setField(record->extraPending, "1");
        setField(record->extraCount, "4");
        Create_SharedMemoryList_From_SDMList(*record, list.List());
        EXPECT_EQ(fieldText(record->extraPending), "0");
        EXPECT_EQ(fieldText(record->extraCount), "0");
        EXPECT_TRUE(gotSharedListFromJP);
        ASSERT_TRUE(sharedListCopyFromJP);
        EXPECT_EQ(entryValue(*sharedListCopyFromJP, 1), "Long");

        // The pane's own list has another order, and a key that the module never saw.
        Write({{L"Unseen", L"1"}, {L"Duplex", changed}, preset, ofNote});
        EXPECT_EQ(Back().Value(2), expected) << what;
        EXPECT_FALSE(gotSharedListFromJP);
        // The check takes place only once.
        EXPECT_EQ(Back().Value(2), name) << what;
    }
}

TEST_F(ExchangeRecord, WatermarksGoInWhileThereIsRoom) {
    std::vector<std::string> definitions = {"0,0,0,255,0,0,0,0,0,450,0,0,48,Helvetica,A, B", "", "\xC3\xA9"};
    EXPECT_EQ(setWatermarkDefinitions(*record, definitions), 3U);
    EXPECT_EQ(watermarkDefinitions(*record), definitions);
    EXPECT_EQ(fieldNumber(record->watermarksPresent), 1);
    WatermarkDefinitions wide;
    Create_SDMWatermarkList_From_SharedMemoryList(wide, *record);
    ASSERT_EQ(wide.List().count, 3U);
    EXPECT_STREQ(wide.List().definitions[2], L"\x00E9");
    const auto again = std::make_unique<SharedMemoryList>();
    EXPECT_EQ(Create_SharedMemoryWatermarkList_From_SDMList(*again, wide.List()), 3U);
    EXPECT_EQ(again->watermarks, record->watermarks);

    definitions.assign(6, std::string(1023, 'w'));
    EXPECT_EQ(setWatermarkDefinitions(*record, definitions), 5U);
    EXPECT_THAT(
        watermarkDefinitions(*record),
        testing::ElementsAre(definitions[0], definitions[0], definitions[0], definitions[0], definitions[0]));
    EXPECT_EQ(fieldText(record->count), "");
    EXPECT_EQ(fieldText(record->watermarksPresent), "1");
    definitions.assign(1, std::string(1024, 'w'));
    EXPECT_EQ(setWatermarkDefinitions(*record, definitions), 0U);
    EXPECT_EQ(fieldNumber(record->watermarksPresent), 0);

    // A combined list without a NUL, and counts that exceed its definitions.
    record->watermarks.fill('x');
    for (const auto& [count, found] :
         std::vector<std::pair<const char*, std::size_t>>{{"9999999", 1}, {"-1", 0}, {"", 0}, {"1", 1}}) {
        setField(record->watermarkCount, count);
        EXPECT_EQ(watermarkDefinitions(*record).size(), found) << count;
        WatermarkDefinitions list;
        Create_SDMWatermarkList_From_SharedMemoryList(list, *record);
        EXPECT_EQ(list.Count(), found) << count;
    }
    wchar_t* texts[] = {nullptr};
    EXPECT_EQ(Create_SharedMemoryWatermarkList_From_SDMList(*record, {1, texts}), 0U);
    EXPECT_THAT(watermarkDefinitions(*record), testing::IsEmpty());
}

} // namespace
} // namespace torka
