// SPDX-License-Identifier: Apache-2.0
#include "connection/ZANCorvianPrinterPList.h"
#include "platform/PropertyList.h"
#include "tests/support/StringStore.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <initializer_list>
#include <variant>

namespace torka {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const end = "----- Data End -----";

// A value of a flat list, in short notation.
struct Value : std::variant<bool, int, std::string> {
    Value(const char* text)
        : variant(std::string(text)) {}
    Value(bool state)
        : variant(state) {}
    Value(int number)
        : variant(number) {}
};
using Values = std::vector<Value>;

CFArrayRef arrayOf(const Values& values) {
    std::vector<CFTypeRef> elements;
    for (const Value& value : values) {
        if (const auto* text = std::get_if<std::string>(&value)) {
            elements.push_back(cfString(*text));
        } else if (const auto* state = std::get_if<bool>(&value)) {
            elements.push_back(CFBooleanCreate(*state));
        } else {
            elements.push_back(CFNumberCreate(std::int32_t{std::get<int>(value)}));
        }
    }
    return CFArrayCreate(std::move(elements));
}

std::string xmlOf(const CFTypeRef& list) {
    const CFDataRef xml = CFPropertyListCreateXMLData(list);
    const auto bytes = CFDataGetBytes(xml);
    return {bytes.begin(), bytes.end()};
}

class AddressListTest : public ::testing::Test {
protected:
    static std::unique_ptr<PropertyListStore> StoreOf(const std::string& text) {
        return std::make_unique<tests::StringStore>(std::make_shared<std::string>(text));
    }
    std::unique_ptr<ZANCorvianPrinterPList> Make(const Values& values) {
        return std::make_unique<ZANCorvianPrinterPList>(StoreOf(xmlOf(arrayOf(values))));
    }
    static void ExpectElements(const ZANCorvianPrinterPList& list, const Values& values) {
        EXPECT_EQ(xmlOf(CFArrayCreate(list.Elements())), xmlOf(arrayOf(values)));
    }
    static std::vector<DataRow> Rows(std::initializer_list<std::string> texts) {
        std::vector<DataRow> rows;
        for (const std::string& text : texts) {
            std::strncpy(rows.emplace_back().data(), text.c_str(), sizeof(DataRow));
        }
        return rows;
    }
    static std::vector<std::string> Block(const ZANCorvianPrinterPList& list, const char* name, int id) {
        std::vector<CFStringRef> rows;
        if (!list.GetDataBlob(cfString(name), id, rows)) {
            return {"absent"};
        }
        std::vector<std::string> texts;
        for (const CFStringRef& row : rows) {
            texts.push_back(utf8Text(row));
        }
        return texts;
    }

    tests::ScopedMemorySystem system;
};

TEST_F(AddressListTest, NamesAreFoundByTheirNeighbour) {
    struct Case {
        const char* name;
        CFIndex place;
        const char* address;
    };
    // "10.0.0.1" and "true" stand before a boolean; the row "Lobby" is followed by a text.
    const auto list = Make({"Office", "10.0.0.1", true, "2", "0:2", "Lobby", "row", end, //
                            "lobby", "true", false, "2", end, "last"});
    for (const Case& entry : {Case{"office", 0, "10.0.0.1"}, Case{"LOBBY", 5, "row"},
                              Case{"10.0.0.1", -1, ""}, Case{"true", -1, ""}, Case{"2", 3, "0:2"},
                              Case{"last", 13, ""}, Case{"nowhere", -1, ""}, Case{"", -1, ""}}) {
        SCOPED_TRACE(entry.name);
        bool found = entry.place < 0;
        EXPECT_EQ(list->Exists(cfString(entry.name), found), entry.place);
        EXPECT_EQ(found, entry.place >= 0);
        EXPECT_EQ(utf8Text(list->Find(cfString(entry.name))), entry.address);
    }
    EXPECT_TRUE(list->getIPEnabled(cfString("Office")));
    EXPECT_FALSE(list->getIPEnabled(cfString("last")));
    EXPECT_FALSE(list->setIPEnabled(cfString("nowhere"), true));
    EXPECT_FALSE(list->setIPEnabled(cfString("last"), true));
    EXPECT_FALSE(list->Changed());
    EXPECT_TRUE(list->setIPEnabled(cfString("OFFICE"), false));
    EXPECT_FALSE(list->getIPEnabled(cfString("Office")));
    EXPECT_TRUE(list->Changed());
    bool found = true;
    EXPECT_EQ(list->Exists(nullptr, found), -1);
    EXPECT_FALSE(found);
    EXPECT_TRUE(list->Find(nullptr));
}

// The result of Add for the entry "P" in each format.
TEST_F(AddressListTest, AddChangesAnEntryAndBringsItToTheCurrentFormat) {
    const std::pair<Values, Values> cases[] = {
        {{}, {"P", "new", true, "2", end}},
        {{"p", "old", false, "2", "0:1", "row", end}, {"p", "new", true, "2", "0:1", "row", end}},
        {{"P", "old", false, "0", "rest", "Q"}, {"P", "new", true, "2", end, "Q"}},
        {{"P", "old", false, "1", "2", "r1", "r2", "rest", "Q"}, {"P", "new", true, "2", end, "Q"}},
        {{"P", "old", false, "1", "0", "rest"}, {"P", "new", true, "2", end}},
        // Wrong counts, and values of a wrong kind.
        {{"P", "old", false, "1", "99", "r1"}, {"P", "new", true, "2", end}},
        {{"P", "old", false, "1", "-3", "rest"}, {"P", "new", true, "2", end}},
        {{"P", "old", false, "1", "4000000000", "r"}, {"P", "new", true, "2", end}},
        {{"P", "old", false, "1", 2, "rest"}, {"P", "new", true, "2", end}},
        {{"P", "old", false, "1"}, {"P", "new", true, "2", end}},
        {{"P", "old", "no", "3", "x"}, {"P", "new", true, "3", "x"}},
        {{"P", 1, 2, 3, 4}, {"P", "new", true, 3, 4}},
        // Add completes entries that are cut.
        {{"P"}, {"P", "new", true, "2", end}},
        {{"P", "old"}, {"P", "new", true, "2", end}},
        {{"P", "old", false}, {"P", "new", true, "2", end}},
        {{"Q", "a", true, "2", end}, {"Q", "a", true, "2", end, "P", "new", true, "2", end}},
    };
    for (const auto& [before, after] : cases) {
        const auto list = Make(before);
        SCOPED_TRACE(xmlOf(arrayOf(before)));
        EXPECT_EQ(list->Add(cfString("P"), cfString("new"), true), 1);
        ExpectElements(*list, after);
        EXPECT_TRUE(list->Changed());
    }
    const auto list = Make({});
    EXPECT_EQ(list->Add(nullptr, cfString("a"), true), 0);
    EXPECT_EQ(list->Add(cfString("P"), nullptr, true), 0);
    EXPECT_FALSE(list->Changed());
    EXPECT_THAT(list->Elements(), IsEmpty());
}

TEST_F(AddressListTest, BlocksReplaceTheFirstHeaderThatHoldsTheirNumber) {
    const CFStringRef name = cfString("P");
    const auto list = Make({"P", "a", true, "2", end, "Q", "b", false, "2", end});
    EXPECT_EQ(list->AddDataBlob(cfString("R"), 1, 0, Rows({"x"})), 1);
    EXPECT_FALSE(list->Changed());
    EXPECT_THAT(Block(*list, "P", 1), ElementsAre("absent"));

    list->AddDataBlob(name, 2, 11, Rows({"eleven", "and more", "beyond the count"}));
    list->AddDataBlob(name, 0, 0, {});
    ExpectElements(
        *list, {"P", "a", true, "2", "0:0", "11:2", "eleven", "and more", end, "Q", "b", false, "2", end});
    EXPECT_THAT(Block(*list, "P", 0), IsEmpty());
    EXPECT_THAT(Block(*list, "P", 11), ElementsAre("eleven", "and more"));
    // The search for block 1 finds block 11, and block 1 replaces it.
    EXPECT_THAT(Block(*list, "P", 1), ElementsAre("eleven", "and more"));
    list->AddDataBlob(name, 1, 1, Rows({"\xC3\xA9"}));
    ExpectElements(*list, {"P", "a", true, "2", "1:1", "\xC3\xA9", "0:0", end, "Q", "b", false, "2", end});
    EXPECT_THAT(Block(*list, "P", 11), ElementsAre("absent"));
    EXPECT_THAT(Block(*list, "Q", 1), ElementsAre("absent"));

    // A row of invalid UTF-8 is left out, and a row without a NUL is cut. The header keeps the given count.
    std::vector<DataRow> odd = Rows({"bad \xFF", "good", std::string(1024, 'x')});
    list->AddDataBlob(name, 3, 1, odd);
    ExpectElements(*list, {"P", "a", true, "2", "1:3", "good", std::string(1023, 'x').c_str(), "0:0", end,
                           "Q", "b", false, "2", end});
}

TEST_F(AddressListTest, BlocksOfOddListsEndWithTheList) {
    struct Case {
        Values before;
        std::vector<std::string> read; // block 7 before the change
        Values after;                  // the list after block 7 got one row
    };
    const Case cases[] = {
        {{"P", "a", true, "2", "7:1000000000", "r"}, {"r"}, {"P", "a", true, "2", "7:1", "n"}},
        {{"P", "a", true, "2", "7:-5", "r", end}, {}, {"P", "a", true, "2", "7:1", "n", "r", end}},
        {{"P", "a", true, "2", "7:x", end}, {}, {"P", "a", true, "2", "7:1", "n", end}},
        {{"P", "a", true, "2", "x 7: 2", "r", 5, "s"}, {"r"}, {"P", "a", true, "2", "7:1", "n", "s"}},
        {{"P", "a", true, "0", "7:1", "r"}, {"absent"}, {"P", "a", true, "0", "7:1", "n"}},
        {{"P", "a", true, "1", "7:1", "r"}, {"absent"}, {"P", "a", true, "1", "7:1", "n"}},
        {{"P", "a", true, "2"}, {"absent"}, {"P", "a", true, "2", "7:1", "n"}},
        {{"P", "a", true, 2, true, end, "7:1"},
         {"absent"},
         {"P", "a", true, 2, "7:1", "n", true, end, "7:1"}},
        {{"P", "a"}, {"absent"}, {"P", "a"}},
    };
    for (const Case& entry : cases) {
        const auto list = Make(entry.before);
        SCOPED_TRACE(xmlOf(arrayOf(entry.before)));
        EXPECT_EQ(Block(*list, "P", 7), entry.read);
        list->AddDataBlob(cfString("P"), 1, 7, Rows({"n"}));
        ExpectElements(*list, entry.after);
    }
}

TEST_F(AddressListTest, EntriesAreListedAndRemoved) {
    const auto list =
        Make({"stray", "A",         "10.0.0.1", true, "2",   "0:1", "*Duplex", "1:9", "w", end, //
              "B",     "",          false,      "1",  "1",   "old", "rest",                     //
              "C",     "c.example", false,      "2",  "11:0"});
    const std::vector<PrinterAddressEntry> entries = list->Entries();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(utf8Text(entries[0].name), "A");
    EXPECT_EQ(utf8Text(entries[0].address), "10.0.0.1");
    EXPECT_TRUE(entries[0].ipEnabled);
    ASSERT_EQ(entries[0].blocks.size(), 2U);
    EXPECT_EQ(utf8Text(entries[0].blocks[0].rows.at(0)), "*Duplex");
    EXPECT_EQ(entries[0].blocks[1].id, 1);
    EXPECT_EQ(entries[0].blocks[1].rows.size(), 1U); // the end mark ends the rows
    EXPECT_EQ(utf8Text(entries[1].format), "1");
    EXPECT_THAT(entries[1].blocks, IsEmpty());
    EXPECT_EQ(utf8Text(entries[2].name), "C");

    EXPECT_FALSE(list->RemoveEntry(cfString("D")));
    EXPECT_TRUE(list->RemoveEntry(cfString("a")));
    EXPECT_TRUE(list->RemoveEntry(cfString("b")));
    ExpectElements(*list, {"stray", "C", "c.example", false, "2", "11:0"});
    EXPECT_TRUE(list->RemoveEntry(cfString("C")));
    ExpectElements(*list, {"stray"});
}

TEST_F(AddressListTest, AnythingButAnArrayIsNoList) {
    for (const std::string& text :
         {std::string(), std::string("<plist>"), xmlOf(cfString("P")),
          xmlOf(CFDictionaryCreate({{cfString("P"), cfString("a")}})), std::string("\0\xFF", 2)}) {
        ZANCorvianPrinterPList list(StoreOf(text));
        EXPECT_FALSE(list.Loaded());
        EXPECT_THAT(list.Elements(), IsEmpty());
        EXPECT_EQ(list.Add(cfString("P"), cfString("a"), false), 1);
        EXPECT_TRUE(list.Save());
        EXPECT_FALSE(list.Changed());
    }
    ZANCorvianPrinterPList list(StoreOf(""));
    list.Add(CFStringCreateWithCharacters(u"\x01"), cfString("a"), false); // XML cannot hold U+0001
    EXPECT_FALSE(list.Save());
    EXPECT_EQ(list.Error(), -108);
    EXPECT_TRUE(list.Changed());
}

} // namespace
} // namespace torka
