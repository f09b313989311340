// SPDX-License-Identifier: Apache-2.0
#include "connection/BonjourIPDiscovery.h"
#include "platform/memory/MemoryAlerts.h"
#include "platform/memory/MemoryEventLoop.h"
#include "platform/memory/MemoryNetServices.h"
#include "platform/memory/MemoryServiceDirectory.h"
#include "tests/connection/MemoryAddressOwner.h"
#include "tests/connection/MemoryAddressSheet.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::Pair;

ResolvedService answer(const std::string& host, const std::vector<std::string>& addresses) {
    ResolvedService resolved{host, 631, {}};
    for (const std::string& text : addresses) {
        HostAddress address;
        if (!parseIPv4Address(text, address)) {
            address.family = 10;
            address.bytes = {0xFE, 0x80};
        }
        resolved.addresses.push_back(address);
    }
    return resolved;
}

class DiscoveryTest : public ::testing::Test {
protected:
    // Opens the sheet and fills its table with the controllers announced so far.
    void OpenSheet() {
        controller->configureButtonClicked();
        loop->Run(milliseconds(300));
    }

    tests::ScopedMemorySystem system;
    tests::ScopedDouble<MemoryEventLoop, setMainEventLoop> loop;
    tests::ScopedDouble<MemoryServiceDirectory, setServiceDirectory> net;
    tests::ScopedDouble<MemoryAlerts, setAlerts> alertsShown;
    tests::ScopedDouble<MemoryNetServices, setNetServices> hosts;
    tests::MemoryAddressOwner owner;
    tests::MemoryAddressSheet sheet;
    std::shared_ptr<BonjourModuleController> controller = BonjourModuleController::init(owner, sheet);
};

TEST_F(DiscoveryTest, DeviceUrisBecomeAddresses) {
    const std::tuple<const char*, const char*, std::optional<ResolvedService>, const char*, bool> cases[] = {
        {"mdns://Office%20Printer._ipp._tcp.local./?bidi", "Office Printer",
         answer("o", {"10.0.0.9", "10.0.0.1"}), "10.0.0.9", true},
        {"dnssd://Lab._printer._tcp.local.", "Lab", answer("l", {"192.168.1.255"}), "192.168.1.255", true},
        {"mdns://x._ipp._tcp.local.y._printer._tcp.local./", "x._ipp._tcp.local.y", answer("x", {"1.2.3.4"}),
         "1.2.3.4", true},
        {"mdns://x._ipp._tcp.local.y/", "xy", answer("x", {"1.2.3.4"}), "1.2.3.4", true},
        {"mdns://Six._ipp._tcp.local.", "Six", answer("s", {"::1", "1.2.3.4"}), "", true},
        {"mdns://None._ipp._tcp.local.", "None", answer("n", {}), "", true},
        {"mdns://Mute._ipp._tcp.local.", "Mute", std::nullopt, "NO", false},
    };
    for (const auto& [uri, instance, announced, address, resolves] : cases) {
        SCOPED_TRACE(uri);
        if (announced) {
            net->Announce({instance, "_printer._tcp", "local."}, announced);
        }
        int done = 0;
        const auto discovery = BonjourIPDiscovery::initWithPrinterBonjourURL(
            CFURLCreateWithString(cfString(uri)), [&done] { ++done; });
        EXPECT_EQ(discovery->printAddress(), "");
        EXPECT_EQ(net->resolved.back().service, (NetService{instance, "_printer._tcp.", "local."}));
        EXPECT_EQ(net->resolved.back().timeout, seconds(2));
        loop->Run(milliseconds(1999));
        EXPECT_EQ(done, resolves ? 1 : 0);
        loop->Run(milliseconds(1));
        EXPECT_EQ(done, 1);
        EXPECT_EQ(discovery->printAddress(), address);
        EXPECT_EQ(discovery->didResolve(), resolves);
    }
}

TEST_F(DiscoveryTest, ValidatesAddresses) {
    const std::string invalid = "You have entered an invalid IP Address or DNS Name";
    for (const auto& [twoWay, text, alert] : std::vector<std::tuple<bool, const char*, std::string>>{
             {true, "10.1.2.3", ""},
             {true, "torka-7.Example.com", ""},
             {true, "", "The IP Address or DNS Name must be assigned."},
             {true, "10.1.2.3:631", invalid},
             {true, "my_host", invalid},
             {true, " 10.1.2.3", invalid},
             {true, "b\xC3\xBCro", invalid},
             {true, "a%s%n", invalid},
             {false, "", ""},
             {false, "any text: at_all", ""},
         }) {
        SCOPED_TRACE(text);
        alertsShown->shown.clear();
        sheet.bidi = twoWay;
        sheet.field = text;
        EXPECT_EQ(controller->validatePrinterAddress(), alert.empty());
        EXPECT_EQ(alertsShown->shown.empty() ? "" : alertsShown->shown[0].title, alert);
    }
}

TEST_F(DiscoveryTest, KeepsOneControllerForOnePanelModel) {
    tests::MemoryAddressSheet other;
    EXPECT_EQ(BonjourModuleController::init(owner, other), controller);
    EXPECT_EQ(other.delegate, nullptr);
    OpenSheet();
    controller.reset();
    EXPECT_EQ(owner.controller, nullptr);
    EXPECT_EQ(sheet.delegate, nullptr);
    EXPECT_FALSE(sheet.isOpen);
}

TEST_F(DiscoveryTest, ThePanesCheckBoxStoresOrAsks) {
    controller->setprinterIPField(cfString("10.0.0.1"));
    EXPECT_EQ(owner.shown, "10.0.0.1");
    EXPECT_FALSE(sheet.configureEnabled);
    sheet.ClickBidi(true);
    EXPECT_TRUE(owner.twoWay && controller->isBIDIEnabled() && sheet.configureEnabled);
    EXPECT_EQ(owner.address, "10.0.0.1");
    sheet.ClickBidi(false);
    EXPECT_FALSE(owner.twoWay || controller->isBIDIEnabled() || sheet.configureEnabled);
    EXPECT_EQ(owner.stores, 2);

    // Without a usable address the sheet opens, and two-way communication stays off until OK.
    for (const char* unusable : {"", "Office Printer"}) {
        controller->setprinterIPField(cfString(unusable));
        sheet.ClickBidi(true);
        EXPECT_TRUE(controller->validWindowSessionRunning() && sheet.isOpen && sheet.bidi);
        EXPECT_FALSE(controller->isBIDIEnabled());
        sheet.delegate->clickedCancel();
        EXPECT_FALSE(sheet.isOpen || sheet.bidi || controller->isBIDIEnabled());
        EXPECT_EQ(sheet.field, unusable);
        EXPECT_EQ(owner.stores, 2);
    }
}

TEST_F(DiscoveryTest, OKStoresWhatIsValid) {
    controller->setprinterIPField(cfString("10.0.0.1"));
    controller->setBIDIStatusON(true);
    OpenSheet();
    sheet.field = "10.0.0.2:80";
    sheet.delegate->OKClicked();
    EXPECT_TRUE(sheet.isOpen);
    EXPECT_EQ(sheet.focused, 2); // after opening, and after the alert
    EXPECT_EQ(owner.stores, 0);
    sheet.field = "10.0.0.2";
    sheet.delegate->OKClicked();
    EXPECT_FALSE(sheet.isOpen);
    EXPECT_EQ(owner.address + "|" + owner.shown + "|" + utf8Text(controller->printerIPField()),
              "10.0.0.2|10.0.0.2|10.0.0.2");
    EXPECT_TRUE(owner.twoWay);
    // With the check box off, the sheet accepts any text, even an empty one.
    OpenSheet();
    sheet.ClickBidi(false);
    EXPECT_TRUE(controller->isBIDIEnabled()); // until OK
    sheet.field = "";
    sheet.delegate->OKClicked();
    EXPECT_FALSE(owner.twoWay || controller->isBIDIEnabled());
    EXPECT_EQ(owner.stores, 2);
    EXPECT_EQ(alertsShown->shown.size(), 1U);
    EXPECT_EQ(loop->Installed(), 0U);
}

TEST_F(DiscoveryTest, ListedNamesStandForTheirAddresses) {
    net->Announce({"Office", "_printer._tcp", "local."}, answer("o.local.", {"10.0.0.5"}));
    net->Announce({"Raw", "_pdl-datastream._tcp", "local."}, answer("r.local.", {"::1"}));
    net->Announce({"10.0.0.9", "_printer._tcp", "local."}, answer("evil.local.", {"10.66.6.6"}));
    net->Announce({"Mute", "_printer._tcp", "local."});
    const std::pair<const char*, const char*> cases[] = {
        {"Office", "Office"}, // could be a host name
        {"10.0.0.9", "10.0.0.9"},
        {"Office._printer._tcp.local.", "10.0.0.5"},
        {"Raw._pdl-datastream._tcp.local.", "r.local"}, // the host's name in place of an IPv4 address
        {"Away._printer._tcp.local.", "Away"},
        {"Mute._printer._tcp.local.", "Mute"}, // listed, without an address
    };
    for (const auto& [typed, stored] : cases) {
        controller->setBIDIStatusON(true);
        OpenSheet();
        sheet.field = typed;
        sheet.delegate->OKClicked();
        EXPECT_EQ(owner.address, stored);
    }
}

TEST_F(DiscoveryTest, StoredServiceNamesAreResolved) {
    net->Announce({"Office Printer", "_printer._tcp", "local."}, answer("o", {"10.0.0.5"}));
    owner.address = "Office Printer";
    controller->setIPAddress();
    EXPECT_EQ(owner.shown, "Office Printer");
    loop->Run(seconds(3));
    EXPECT_EQ(owner.shown + "|" + owner.address, "10.0.0.5|10.0.0.5");
    owner.address = "b\xC3\xBCro 50%._printer._tcp.local."; // nobody answers
    controller->setIPAddress();
    EXPECT_EQ(net->resolved.back().service.name, "b\xC3\xBCro 50%");
    loop->Run(seconds(3));
    EXPECT_EQ(owner.shown, "b\xC3\xBCro 50%");
    const std::size_t asked = net->resolved.size();
    owner.address = "torka.example.com";
    controller->setIPAddress();
    EXPECT_EQ(net->resolved.size(), asked);
    EXPECT_EQ(owner.stores, 1);
}

TEST_F(DiscoveryTest, OneRowForEachController) {
    const ResolvedService office = answer("office.local.", {"10.0.0.5", "10.0.0.5", "::1"});
    net->Announce({"office", "_ipp._tcp", "local."}, office);
    net->Announce({"Office", "_printer._tcp", "local."}, office);
    net->Announce({"Lab", "_printer._tcp", "local."}, answer("lab.local.", {"10.0.0.6", "10.1.0.6"}));
    net->Announce({"Lab hold", "_printer._tcp", "local."}, answer("LAB.local.", {"10.0.0.6"}));
    net->Announce({"Chat", "_chat._tcp", "local."}, answer("c", {"10.0.0.7"}));
    OpenSheet();
    EXPECT_EQ(net->searches, 4U);
    EXPECT_EQ(sheet.status, "");
    EXPECT_THAT(sheet.rows,
                ElementsAre(Pair("Office", "10.0.0.5"), Pair("Lab, Lab hold", "10.0.0.6, 10.1.0.6")));
    net->Withdraw({"office", "_ipp._tcp", "local."});
    loop->Run(seconds(1));
    EXPECT_EQ(sheet.rows.size(), 2U); // still there as another service
    net->Withdraw({"Office", "_printer._tcp", "local."});
    net->Withdraw({"Lab", "_printer._tcp", "local."});
    loop->Run(seconds(1));
    EXPECT_THAT(sheet.rows, ElementsAre(Pair("Lab hold", "10.0.0.6")));
}

TEST_F(DiscoveryTest, SortsByNameAndByNumber) {
    for (const auto& [instance, address] : {std::pair("b", "10.0.0.10"), std::pair("C", "9.0.0.1"),
                                            std::pair("a", "10.0.0.9"), std::pair("d", "")}) {
        net->Announce({instance, "_ipp._tcp", "local."},
                      *address != '\0' ? std::optional(answer(instance, {address})) : std::nullopt);
    }
    OpenSheet();
    const auto order = [this] {
        std::string names;
        for (const auto& row : sheet.rows) {
            names += row.first;
        }
        return names;
    };
    EXPECT_EQ(order(), "bCad");
    using enum ControllerColumn;
    for (const auto& [column, sorted] :
         {std::pair(name, "abCd"), {name, "dCba"}, {addresses, "Cabd"}, {addresses, "baCd"}}) {
        sheet.delegate->didClickTableColumn(column);
        EXPECT_EQ(order(), sorted);
    }
    // The selection follows its controller, and new controllers are sorted in.
    sheet.SelectRow(2);
    sheet.delegate->didClickTableColumn(name);
    net->Announce({"B2", "_ipp._tcp", "local."}, answer("b2", {"10.0.0.2"}));
    loop->Run(milliseconds(300));
    EXPECT_EQ(order(), "abB2Cd");
    EXPECT_EQ(sheet.selected, 3U);
    EXPECT_EQ(intSort(-5, 3), -1);
    EXPECT_EQ(intSort(4294967295, 3), 1);
}

TEST_F(DiscoveryTest, TheSelectedServiceIsResolvedWithProgress) {
    net->answerTime = seconds(9); // exceeds the list's own limit
    net->Announce({"Slow", "_ipp._tcp", "local."}, answer("slow.local", {"10.0.0.8"}));
    net->Announce({"Mute", "_ipp._tcp", "local."});
    hosts->hostCacheEnabled = true;
    OpenSheet();
    sheet.SelectRow(0);
    EXPECT_EQ(hosts->hostCacheFlushes, 1);
    EXPECT_TRUE(sheet.progress);
    EXPECT_EQ(sheet.field, "Slow");
    loop->Run(seconds(10));
    EXPECT_FALSE(sheet.progress);
    EXPECT_EQ(sheet.field, "10.0.0.8");
    EXPECT_THAT(sheet.rows, ElementsAre(Pair("Slow", "10.0.0.8"), Pair("Mute", "")));

    sheet.SelectRow(1);
    loop->Run(milliseconds(14999));
    EXPECT_TRUE(sheet.progress);
    loop->Run(milliseconds(1));
    EXPECT_FALSE(sheet.progress);
    EXPECT_EQ(sheet.status, "DISCOVERY_NO_ANSWER");

    hosts->hostCacheEnabled = false;
    system->minorVersion = 3;
    sheet.SelectRow(1);
    EXPECT_FALSE(sheet.progress);
    EXPECT_EQ(hosts->hostCacheFlushes, 2);
    sheet.field = "typed"; // typed during the resolution, and kept
    net->answerTime = milliseconds(1);
    net->Withdraw({"Mute", "_ipp._tcp", "local."});
    loop->Run(seconds(20));
    EXPECT_EQ(sheet.field, "typed");
    sheet.delegate->clickedCancel();
    EXPECT_EQ(net->running, 0U);
    EXPECT_EQ(loop->Installed(), 0U);
}

TEST_F(DiscoveryTest, ThePrintersOwnControllerIsSelectedFirst) {
    net->Announce({"Other", "_ipp._tcp", "local."}, answer("other", {"10.0.0.1"}));
    net->Announce({"Office Printer", "_ipp._tcp", "local."}, answer("office", {"10.0.0.5"}));
    controller->setprinterIPField(cfString("Office Printer._printer._tcp.local."));
    sheet.ClickBidi(true);
    loop->Run(seconds(1));
    EXPECT_EQ(sheet.selected, 1U);
    EXPECT_EQ(sheet.field, "10.0.0.5");
    sheet.delegate->OKClicked();
    EXPECT_EQ(owner.address, "10.0.0.5");
    OpenSheet(); // selects the controller by its address
    EXPECT_EQ(sheet.selected, 1U);
}

TEST_F(DiscoveryTest, HostileNamesAndFloodsStayHarmless) {
    net->Announce({"<b>x</b>\n\x1B[2J\xE2\x80\xAE"
                   "cod",
                   "_printer._tcp", "local."},
                  answer("<i>h", {"::1"}));
    net->Announce({std::string(4000, 'n'), "_printer._tcp", "local."});
    net->Announce({"\xFF\xFE", "_printer._tcp", "local."});
    for (int i = 0; i < 1200; ++i) {
        net->Announce({"flood " + std::to_string(i), "_printer._tcp", "local."});
    }
    net->answerTime = milliseconds(1);
    OpenSheet();
    ASSERT_EQ(sheet.rows.size(), ControllerList::maximumControllers);
    EXPECT_LT(sheet.reloads, 10);
    EXPECT_EQ(sheet.status, "DISCOVERY_TOO_MANY");
    EXPECT_EQ(net->maximumRunning, ControllerList::maximumResolutions);
    EXPECT_THAT(sheet.rows[0], Pair("<b>x</b>\xEF\xBF\xBD\xEF\xBF\xBD[2J\xEF\xBF\xBD"
                                    "cod",
                                    "")); // a host name with markup is no address
    EXPECT_EQ(CFStringGetLength(plainServiceName(std::string(4000, 'n'))), 255);
    std::string faces = "x";
    for (int i = 0; i < 200; ++i) {
        faces += "\xF0\x9F\x98\x80";
    }
    EXPECT_EQ(CFStringGetLength(plainServiceName(faces)), 255); // 1 + 127 pairs
    EXPECT_EQ(CFStringGetLength(plainServiceName(faces.substr(1))), 254);
}

TEST_F(DiscoveryTest, SearchesAgainUntilTheDaemonIsThere) {
    net->failure = "no daemon";
    net->Announce({"Office", "_ipp._tcp", "local."}, answer("office", {"10.0.0.5"}));
    OpenSheet();
    EXPECT_EQ(sheet.status, "DISCOVERY_UNAVAILABLE");
    loop->Run(seconds(11));
    EXPECT_EQ(net->searches, 12U);
    net->failure.clear();
    loop->Run(seconds(6));
    EXPECT_EQ(sheet.status, "");
    EXPECT_EQ(sheet.rows.size(), 1U);
    sheet.delegate->clickedCancel();

    // Without a directory or a loop, the sheet accepts a typed address.
    setServiceDirectory(nullptr);
    OpenSheet();
    EXPECT_EQ(sheet.status, "DISCOVERY_UNAVAILABLE");
    sheet.field = "10.0.0.9";
    sheet.delegate->didClickTableColumn(ControllerColumn::name);
    sheet.delegate->OKClicked();
    EXPECT_EQ(owner.address, "10.0.0.9");
    const auto lost = BonjourIPDiscovery::initWithPrinterBonjourURL(nullptr);
    EXPECT_EQ(lost->printAddress(), "NO");
}

} // namespace
} // namespace torka
