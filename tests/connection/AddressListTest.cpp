// SPDX-License-Identifier: Apache-2.0
#include "connection/ZANCorvianPrinterPList.h"
#include "platform/PropertyList.h"
#include "tests/support/StringStore.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <initializer_list>
#include <sstream>

namespace torka {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A flat list in short notation: texts between bars, "+" and "-" for booleans, "#2" for a number, "END" for
// the mark at the end of an entry.
CFArrayRef listOf(const std::string& notation) {
    std::vector<CFTypeRef> elements;
    std::istringstream words(notation);
    for (std::string word; std::getline(words, word, '|');) {
        if (word == "+" || word == "-") {
            elements.push_back(CFBooleanCreate(word == "+"));
        } else if (word.starts_with('#')) {
            elements.push_back(CFNumberCreate(std::int32_t{std::stoi(word.substr(1))}));
        } else {
            elements.push_back(cfString(word == "END" ? "----- Data End -----" : word));
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
    std::unique_ptr<ZANCorvianPrinterPList> Make(const std::string& values) {
        return std::make_unique<ZANCorvianPrinterPList>(StoreOf(xmlOf(listOf(values))));
    }
    static void Put(ZANCorvianPrinterPList& list, int block, const char* row) {
        list.AddDataBlob(cfString("P"), 1, block, Rows({row}));
    }
    static void SetAddress(ZANCorvianPrinterPList& list, const char* address) {
        list.Add(cfString("P"), cfString(address), list.getIPEnabled(cfString("P")));
    }
    static void Switch(ZANCorvianPrinterPList& list) { // as the pane does
        list.Add(cfString("P"), list.Find(cfString("P")), !list.getIPEnabled(cfString("P")));
    }
    static void ExpectElements(const ZANCorvianPrinterPList& list, const std::string& values) {
        EXPECT_EQ(xmlOf(CFArrayCreate(list.Elements())), xmlOf(listOf(values)));
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
    // "10.0.0.1" and "true" stand before a boolean; the row "Lobby" is followed by a text.
    const auto list = Make("Office|10.0.0.1|+|2|0:2|Lobby|row|END|lobby|true|-|2|END|last");
    for (const auto& [name, place, address] :
         {std::tuple("office", 0, "10.0.0.1"), std::tuple("LOBBY", 5, "row"), std::tuple("10.0.0.1", -1, ""),
          std::tuple("true", -1, ""), std::tuple("2", 3, "0:2"), std::tuple("last", 13, ""),
          std::tuple("nowhere", -1, ""), std::tuple("", -1, "")}) {
        SCOPED_TRACE(name);
        bool found = place < 0;
        EXPECT_EQ(list->Exists(cfString(name), found), place);
        EXPECT_EQ(found, place >= 0);
        EXPECT_EQ(utf8Text(list->Find(cfString(name))), address);
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
    const std::pair<std::string, std::string> cases[] = {
        {"", "P|new|+|2|END"},
        {"p|old|-|2|0:1|row|END", "p|new|+|2|0:1|row|END"},
        {"P|old|-|0|rest|Q", "P|new|+|2|END|Q"},
        {"P|old|-|1|2|r1|r2|rest|Q", "P|new|+|2|END|Q"},
        {"P|old|-|1|0|rest", "P|new|+|2|END"},
        // Wrong counts, and values of a wrong kind.
        {"P|old|-|1|99|r1", "P|new|+|2|END"},
        {"P|old|-|1|-3|rest", "P|new|+|2|END"},
        {"P|old|-|1|4000000000|r", "P|new|+|2|END"},
        {"P|old|-|1|#2|rest", "P|new|+|2|END"},
        {"P|old|-|1", "P|new|+|2|END"},
        {"P|old|no|3|x", "P|new|+|3|x"},
        {"P|#1|#2|#3|#4", "P|new|+|#3|#4"},
        // Add completes entries that are cut.
        {"P", "P|new|+|2|END"},
        {"P|+", "P|+|P|new|+|2|END"}, // a text before a boolean is no name
        {"P|old", "P|new|+|2|END"},
        {"P|old|-", "P|new|+|2|END"},
        {"Q|a|+|2|END", "Q|a|+|2|END|P|new|+|2|END"},
    };
    for (const auto& [before, after] : cases) {
        const auto list = Make(before);
        SCOPED_TRACE(xmlOf(listOf(before)));
        EXPECT_EQ(list->Add(cfString("P"), cfString("new"), true), 1);
        ExpectElements(*list, after);
        EXPECT_TRUE(list->Changed());
    }
    const auto list = Make("");
    EXPECT_EQ(list->Add(nullptr, cfString("a"), true), 0);
    EXPECT_EQ(list->Add(cfString("P"), nullptr, true), 0);
    EXPECT_FALSE(list->Changed());
    EXPECT_THAT(list->Elements(), IsEmpty());
}

TEST_F(AddressListTest, BlocksReplaceTheFirstHeaderThatHoldsTheirNumber) {
    const CFStringRef name = cfString("P");
    const auto list = Make("P|a|+|2|END|Q|b|-|2|END");
    EXPECT_EQ(list->AddDataBlob(cfString("R"), 1, 0, Rows({"x"})), 1);
    EXPECT_FALSE(list->Changed());
    EXPECT_THAT(Block(*list, "P", 1), ElementsAre("absent"));

    list->AddDataBlob(name, 2, 11, Rows({"eleven", "and more", "beyond the count"}));
    list->AddDataBlob(name, 0, 0, {});
    ExpectElements(*list, "P|a|+|2|0:0|11:2|eleven|and more|END|Q|b|-|2|END");
    EXPECT_THAT(Block(*list, "P", 0), IsEmpty());
    EXPECT_THAT(Block(*list, "P", 11), ElementsAre("eleven", "and more"));
    // The search for block 1 finds block 11, and block 1 replaces it.
    EXPECT_THAT(Block(*list, "P", 1), ElementsAre("eleven", "and more"));
    list->AddDataBlob(name, 1, 1, Rows({"\xC3\xA9"}));
    ExpectElements(*list, "P|a|+|2|1:1|\xC3\xA9|0:0|END|Q|b|-|2|END");
    EXPECT_THAT(Block(*list, "P", 11), ElementsAre("absent"));
    EXPECT_THAT(Block(*list, "Q", 1), ElementsAre("absent"));

    // A row of invalid UTF-8 is left out, and a row without a NUL is cut. The header keeps the given count.
    std::vector<DataRow> odd = Rows({"bad \xFF", "good", std::string(1024, 'x')});
    list->AddDataBlob(name, 3, 1, odd);
    ExpectElements(*list, "P|a|+|2|1:3|good|" + std::string(1023, 'x') + "|0:0|END|Q|b|-|2|END");
}

TEST_F(AddressListTest, BlocksOfOddListsEndWithTheList) {
    // Block 7 before it gets one row, and the list afterwards.
    const std::tuple<std::string, std::vector<std::string>, std::string> cases[] = {
        {"P|a|+|2|7:1000000000|r", {"r"}, "P|a|+|2|7:1|n"},
        {"P|a|+|2|7:-5|r|END", {}, "P|a|+|2|7:1|n|r|END"},
        {"P|a|+|2|7:x|END", {}, "P|a|+|2|7:1|n|END"},
        {"P|a|+|2|x 7: 2|r|#5|s", {"r"}, "P|a|+|2|7:1|n|s"},
        {"P|a|+|0|7:1|r", {"absent"}, "P|a|+|0|7:1|n"},
        {"P|a|+|1|7:1|r", {"absent"}, "P|a|+|1|7:1|n"},
        {"P|a|+|2", {"absent"}, "P|a|+|2|7:1|n"},
        {"P|a|+|#2|+|END|7:1", {"absent"}, "P|a|+|#2|7:1|n|+|END|7:1"},
        {"P|a", {"absent"}, "P|a"},
    };
    for (const auto& [before, read, after] : cases) {
        const auto list = Make(before);
        SCOPED_TRACE(xmlOf(listOf(before)));
        EXPECT_EQ(Block(*list, "P", 7), read);
        list->AddDataBlob(cfString("P"), 1, 7, Rows({"n"}));
        ExpectElements(*list, after);
    }
}

TEST_F(AddressListTest, EntriesAreListedAndRemoved) {
    const auto list =
        Make("stray|A|10.0.0.1|+|2|0:1|*Duplex|1:9|w|END|B||-|1|1|old|rest|C|c.example|-|2|11:0");
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
    ExpectElements(*list, "stray|C|c.example|-|2|11:0");
    EXPECT_TRUE(list->RemoveEntry(cfString("C")));
    ExpectElements(*list, "stray");
}

// Two open lists of one store. Each row: what is stored, what one changes, what the other changes and saves
// before it, and what is stored then.
TEST_F(AddressListTest, SavingKeepsWhatAnotherHasSavedSince) {
    using List = ZANCorvianPrinterPList;
    using Change = std::function<void(List&)>;
    const CFStringRef name = cfString("P");
    const auto address = [](const char* text) { return [text](List& list) { SetAddress(list, text); }; };
    const auto block = [](int id, const char* row) { return [=](List& list) { Put(list, id, row); }; };
    const Change remove = [&](List& list) { list.RemoveEntry(name); };
    const Change turn = [&](List& list) { list.setIPEnabled(name, !list.getIPEnabled(name)); };
    const Change saveBoth = [&](List& list) {
        Put(list, 0, "q"); // no change
        Put(list, 1, "w");
    };
    const std::string both = "P|a|-|2|0:1|q|END|Q|b|-|2|END";
    const std::tuple<std::string, Change, Change, std::string> cases[] = {
        {both, block(1, "w"), address("new"), "P|new|-|2|1:1|w|0:1|q|END|Q|b|-|2|END"},
        {both, block(0, "x"), block(1, "w"), "P|a|-|2|0:1|x|1:1|w|END|Q|b|-|2|END"},
        {both, saveBoth, block(0, "x"), "P|a|-|2|1:1|w|0:1|x|END|Q|b|-|2|END"},
        {both, Switch, address("new"), "P|new|+|2|0:1|q|END|Q|b|-|2|END"},
        {both, turn, address("new"), "P|new|+|2|0:1|q|END|Q|b|-|2|END"},
        {both, address("new"), Switch, "P|new|+|2|0:1|q|END|Q|b|-|2|END"},
        {both, address("last"), address("new"), "P|last|-|2|0:1|q|END|Q|b|-|2|END"},
        {both, address("new"), address("new"), "P|new|-|2|0:1|q|END|Q|b|-|2|END"},
        {both, block(1, "w"), remove, "Q|b|-|2|END|P||-|2|1:1|w|END"},
        {both, address("new"), remove, "Q|b|-|2|END|P|new|-|2|END"},
        {both, remove, address("new"), "Q|b|-|2|END"},
        {"", address("of the queue"), address("chosen"), "P|chosen|-|2|END"},
    };
    for (const auto& [before, change, changeOfOther, after] : cases) {
        const auto kept = std::make_shared<std::string>(before.empty() ? "" : xmlOf(listOf(before)));
        List list(std::make_unique<tests::StringStore>(kept));
        List other(std::make_unique<tests::StringStore>(kept));
        change(list);
        changeOfOther(other);
        EXPECT_TRUE(other.Save());
        EXPECT_TRUE(list.Save());
        EXPECT_EQ(*kept, xmlOf(listOf(after)));
    }

    // An open list goes on with its own values, which replace nothing at later changes.
    const auto kept = std::make_shared<std::string>(xmlOf(listOf(both)));
    List list(std::make_unique<tests::StringStore>(kept));
    List other(std::make_unique<tests::StringStore>(kept));
    SetAddress(other, "new");
    other.Save();
    for (const int id : {1, 2}) {
        SetAddress(list, "a");
        Put(list, id, "row");
        EXPECT_TRUE(list.Save());
        EXPECT_EQ(utf8Text(list.Find(name)), "a");
    }
    List third(std::make_unique<tests::StringStore>(kept));
    Put(third, 1, "replaced");
    EXPECT_TRUE(third.Save());
    Put(list, 3, "row");
    EXPECT_TRUE(list.Save());
    EXPECT_EQ(*kept, xmlOf(listOf("P|new|-|2|3:1|row|1:1|replaced|2:1|row|0:1|q|END|Q|b|-|2|END")));
    *kept = "damaged"; // takes the place of no other list
    Put(list, 0, "last");
    EXPECT_TRUE(list.Save());
    EXPECT_EQ(*kept, xmlOf(CFArrayCreate(list.Elements())));
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
