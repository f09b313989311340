// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/LiveRecords.h"
#include "bidi/records/RecordEncoding.h"
#include "platform/TextEncoding.h"
#include "platform/memory/MemoryNetServices.h"
#include "spooler/filter/LiveSource.h"
#include "spooler/filter/SupplyText.h"
#include "tests/support/ScopedDouble.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <tuple>

// Makes records from printers' attributes: values out of range, lists of different lengths, texts that could
// break a field.

namespace torka::tests {

namespace {

using namespace filter;

std::string recordOf(const std::vector<ControllerRecord>& records, const std::string& name) {
    const auto found = std::ranges::find(records, name, &ControllerRecord::name);
    return found == records.end() ? "absent" : utf8FromWide(wideFromPayload(found->payload));
}

const QueueChoices choices{{{"Tray1", "Tray 1"}, {"LCT", "Large Capacity"}},
                           {{"Plain", "Plain"}, {"Letterhead", "Letterhead Paper"}},
                           {{{"A4", "A4"}, 595, 842}}};

TEST(SupplyText, TakesItsPairsApart) {
    const SupplyText text(
        "name=Tray 1;xname=no;level=12;max=;low=+5;high=99999999999;odd;=;level=13;hex=0x10; pad=1");
    EXPECT_EQ(text.Text("name"), "Tray 1");
    EXPECT_EQ(text.Number("level"), 12) << "the first counts";
    EXPECT_EQ(text.Text("pad"), "") << "a blank belongs to the key";
    EXPECT_EQ(text.Text("odd"), "");
    for (const char* key : {"max", "low", "high", "hex", "none", ""}) {
        EXPECT_EQ(text.Number(key), supplyUnknown) << key;
    }
    EXPECT_EQ(SupplyText("").Text("name"), "");
    // A longer text is none.
    EXPECT_EQ(SupplyText(std::string(100'000, ';') + "level=1;").Number("level"), supplyUnknown);
}

TEST(LiveRecords, SuppliesOfEveryKind) {
    for (const auto& [supply, line] : std::vector<std::pair<const char*, const char*>>{
             {"type=toner;maxcapacity=400;level=100;colorantname=magenta;", "magenta@25@-1@#ff00ff@-1@-1@1"},
             {"type=inkCartridge;unit=percent;level=7;", "inkCartridge@7@-1@NULL@-1@-1@2"},
             {"type=toner;level=7;maxcapacity=-2;", "toner@-1@-1@NULL@-1@-1@1"},
             {"type=toner;level=-3;maxcapacity=100;", "toner@-3@-1@NULL@-1@-1@1"},
             {"type=fuser;unit=impressions;level=-1;maxcapacity=-1;", "fuser@-2@-1@NULL@-1@-2@0"},
             {"type=toner;level=2147483647;maxcapacity=1;", "toner@100@-1@NULL@-1@-1@1"},
             {"class=receptacleThatIsFilled;type=other;maxcapacity=8;level=2;", "other@75@-1@NULL@-1@-1@3"},
             {"", "@-1@-1@NULL@-1@-1@0"},
         }) {
        PrinterFacts facts;
        facts.supplies = {supply};
        EXPECT_EQ(recordOf(liveRecords(facts, {}, choices), "TonerInfo"), std::string("1\n") + line + "\n");
    }
}

TEST(LiveRecords, ListsThatDisagreeAndTextsThatAreMoreThanFields) {
    PrinterFacts queue;
    queue.markerNames = {"a@b\nc", "\xFF\xED\xA0\x80", std::string(5000, 'x'), "last"};
    queue.markerLevels = {101, -7};
    queue.markerColors = {"none", "#123456@\n", "red"};
    queue.markerTypes = {"wasteInk"};
    const std::string toner = recordOf(liveRecords({}, queue, {}), "TonerInfo");
    EXPECT_TRUE(toner.starts_with("4\na b c@100@-1@NULL@-1@-1@3\n")) << toner;
    EXPECT_NE(toner.find("@-1@-1@#123456  @-1@-1@0\n"), std::string::npos) << toner;
    EXPECT_NE(toner.find("\n" + std::string(255, 'x') + "@"), std::string::npos);
    queue.markerNames.assign(100'000, "x");
    EXPECT_TRUE(recordOf(liveRecords({}, queue, {}), "TonerInfo").starts_with("1000\n"));
    // A description alone is nothing live.
    EXPECT_EQ(recordOf(liveRecords({}, {}, choices), "TrayInfo"), "absent");
}

TEST(LiveRecords, TraysByWhatIsLoaded) {
    PrinterFacts device;
    device.mediaReady = {{"tray-1", "stationery-letterhead", "white", 21000, 29700},
                         {"lct", "continuous-roll", "", 1, 2147483647},
                         {"", "stationery", "", 0, 0}};
    EXPECT_EQ(recordOf(liveRecords(device, {}, choices), "TrayInfo"),
              "2\nTray 1@Tray1@Letterhead Paper@A4@Letterhead@White@-1@-1\n"
              "Large Capacity@LCT@Continuous roll@EMPTY@EMPTY@EMPTY@-1@-1\n");
    device.inputTrays = {"name=Tray 1;level=-1;maxcapacity=-1;", "level=5;maxcapacity=-2"};
    EXPECT_EQ(recordOf(liveRecords(device, {}, choices), "TrayInfo"),
              "2\nTray 1@Tray1@Letterhead Paper@A4@Letterhead@White@-1@-2\n"
              "EMPTY@EMPTY@EMPTY@EMPTY@EMPTY@EMPTY@5@-1\n");
}

TEST(LiveSource, RequestsMeanTheDeviceByNumbersOrByItsOwnName) {
    const ScopedDouble<platform::MemoryNetServices, platform::setNetServices> services;
    for (const char* name : {"press.example", "evil.example"}) {
        platform::parseNumericAddress("10.0.0.5", services->hosts[name]);
    }
    for (const auto& [address, uri, isMeant] : std::vector<std::tuple<const char*, const char*, bool>>{
             {"", "ipp://10.0.0.5/ipp", true},
             {"10.0.0.5", "ipp://10.0.0.5:631/ipp", true},
             {"::ffff:10.0.0.5", "ipp://10.0.0.5/ipp", true},
             {"2001:DB8:0:0::1", "ipp://[2001:db8::1]/ipp", true},
             {"10.0.0.50", "ipp://10.0.0.5/ipp", false},
             {"PRESS.example", "ipp://press.example/ipp", true},
             {"10.0.0.5", "ipp://press.example/ipp", true},
             {"10.0.0.6", "ipp://press.example/ipp", false},
             {"evil.example", "ipp://10.0.0.5/ipp", false}, // a name from a request is never looked up
             {"evil.example", "ipp://press.example/ipp", false},
             {"10.0.0.5", "dnssd://Office%20Printer._ipp._tcp.local/?uuid=1", true},
             {"10.0.0.5", "implicitclass://office/", true},
             {"10.0.0.5", "usb://Torka/Press?serial=1", true}}) {
        EXPECT_EQ(meansDevice(address, uri), isMeant) << address << " for " << uri;
    }
}

} // namespace

} // namespace torka::tests
