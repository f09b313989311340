// SPDX-License-Identifier: Apache-2.0
#include "pane/exchange/ServerExchange.h"
#include "platform/posix/PosixNetServices.h"
#include "tests/e2e/ServerData.h"
#include "tests/support/Neighbours.h"

#include <algorithm>
#include <future>
#include <gmock/gmock.h>
#include <signal.h>
#include <sstream>
#include <utility>

// Trays and toner as reported by a real server's queue, or by its printer, on this machine and on another
// one.

namespace torka::tests {

namespace {

constexpr const char* ippPrinter = TORKA_SOURCE_DIR "/tests/support/printer.py";

class LiveData : public ServerData {
protected:
    void AddBackend(const std::string& name, const std::string& says) const {
        const TemporaryFolder folder;
        const std::filesystem::path backend = *sandbox / ("lib/backend/" + name);
        std::filesystem::copy_file(
            folder.Write("b", "#!/bin/sh\n[ $# -eq 0 ] && exit 0\n" + says + "\nexec cat > /dev/null\n"),
            backend, std::filesystem::copy_options::overwrite_existing);
        std::filesystem::permissions(backend, std::filesystem::perms(0755));
    }
};

TEST_F(LiveData, AQueuesMarkersAreItsToner) {
    AddBackend("marks", R"(echo "ATTR: marker-names='\"Cyan Toner\",\"Black @ 2\",Waste' )"
                        R"(marker-colors=#00FFFF,#000000,none marker-levels=40,-3,12 )"
                        R"(marker-types=toner,toner,waste-toner marker-low-levels=5,5,0 )"
                        R"(marker-high-levels=100,100,90" >&2)");
    const PMPrinter printer = AddQueue("Marked", "marks:/");
    ASSERT_EQ(runTool({"command", "send", "Marked", "Command_LocaleCode", "de"}).status, 0);
    ASSERT_EQ(Ask(printer, ""), ServerDataOutcome::read);
    EXPECT_EQ(Record("TonerInfo"), "3\nCyan Toner@40@5@#00FFFF@100@-1@1\nBlack   2@-3@5@#000000@100@-1@1\n"
                                   "Waste@12@0@NULL@90@-1@3\n");
    EXPECT_THAT(Record("TrayInfo"), testing::StartsWith("7\nTray 1@Tray1@EMPTY@EMPTY@EMPTY@EMPTY@-1@-1\n"));
    EXPECT_EQ(Record("ServerInfo"), "Marked:ServerName\nTorka Production 90, controller 4.2:ProductFamily\n");
    // Stored records replace live ones.
    Give("10.0.0.30", "data", "TrayInfo", "stored");
    ASSERT_EQ(Ask(printer, "10.0.0.30"), ServerDataOutcome::read);
    EXPECT_EQ(Record("TrayInfo"), "stored");
    EXPECT_TRUE(Record("TonerInfo").starts_with("3\n"));
}

TEST_F(LiveData, AnIppPrinterIsAskedItself) {
    AddBackend("ipp", "");
    std::istringstream told(runCommand({"/usr/bin/python3", ippPrinter, "127.0.0.1", "0"}).output);
    std::string port;
    pid_t device = 0;
    ASSERT_TRUE(told >> port >> device);
    const PMPrinter printer = AddQueue("Direct", "ipp://localhost:" + port + "/ipp/print");
    ASSERT_EQ(Ask(printer, "127.0.0.1"), ServerDataOutcome::read) << "the device's host under another name";
    EXPECT_EQ(Record("TonerInfo"), "2\nCyan@25@-1@#00ffff@-1@20000@1\nWaste Box@10@-1@NULL@-1@-1@3\n");
    EXPECT_EQ(Record("TrayInfo"), "2\nTray 1@Tray1@Plain@A4@Plain@Light blue@120@500\n"
                                  "Bypass Tray@Bypass@EMPTY@EMPTY@EMPTY@EMPTY@-3@-1\n");
    EXPECT_EQ(Record("ServerInfo"), "Büro  2:ServerName\n4.2:ServerVersion\nTorka Fly:ProductFamily\n");
    EXPECT_EQ(Ask(printer, "192.0.2.1"), ServerDataOutcome::connectionError) << "another's address";
    EXPECT_EQ(kill(device, SIGTERM), 0);
    EXPECT_EQ(Ask(printer, ""), ServerDataOutcome::connectionError);
    EXPECT_EQ(CPPDMsgHdlr(ppdPath, "InvalidPrinterAddress").GetCStringData(), "yes");
}

// Queues of printers on another machine, with the server's filter between them and the pane.

class Neighbours : public LiveData {
protected:
    void SetUp() override {
        if (hasNeighbour()) {
            LiveData::SetUp();
            setNetServices(std::make_unique<platform::PosixNetServices>());
        }
    }
    void TearDown() override {
        setNetServices(nullptr);
        LiveData::TearDown();
    }
    // What the request of the last command took along beside its address.
    std::string NumbersSent() const {
        std::filesystem::path last;
        for (const auto& file : std::filesystem::directory_iterator(*sandbox / "spool")) {
            if (file.path().filename().string().starts_with('d') && file.path() > last) {
                last = file.path();
            }
        }
        const auto request = parseUpdateRequest(readFile(last));
        EXPECT_TRUE(request) << last;
        return request ? std::string(valueOf(*request, "address")) : "";
    }
    static ServerExchange::Answer Fetch(ServerExchange& pane, const PMPrinter& printer,
                                        const std::string& address) {
        return pane.FetchServerData(printer, address, "", {}, ServerExchange::Failures::quiet);
    }
};

TEST_F(Neighbours, ADiscoveredQueueAnswersForTheAddressThatIsStored) {
    if (!hasNeighbour()) {
        return runWithNeighbour({"_ipp._tcp 631 - Office Printer"});
    }
    AddBackend("dnssd", R"(echo "ATTR: marker-names=Cyan marker-types=toner marker-levels=40" >&2)");
    const PMPrinter printer = AddQueue("Found", "dnssd://Office%20Printer._ipp._tcp.local/?uuid=1");
    ASSERT_EQ(runTool({"command", "send", "Found", "Command_LocaleCode", "de"}).status, 0);
    ServerExchange pane({});
    pane.SetQueue(ppdPath, "Found", "Office Printer");
    for (const auto& [address, numbers] :
         {std::pair("10.77.0.2", ""), std::pair("::FFFF:10.77.0.2", ""), std::pair("press.test", "10.77.0.2"),
          std::pair("Office Printer", "10.77.0.2")}) {
        EXPECT_EQ(Fetch(pane, printer, address), ServerExchange::Answer::read) << address;
        EXPECT_EQ(NumbersSent(), numbers) << address;
    }
    const std::filesystem::path found = twoWayPlace("Found", bonjourFileSuffix);
    EXPECT_EQ(readFile(found), "10.77.0.2\n");
    EXPECT_EQ(pane.FoundAddress(), "10.77.0.2");
    std::ofstream(found) << "press.test\n";
    EXPECT_EQ(pane.FoundAddress(), "") << "numbers alone are taken";

    AddBackend("mdns", "");
    const PMPrinter lost = AddQueue("Lost", "mdns://Nobody._ipp._tcp.local/?uuid=2");
    const std::filesystem::path stale = twoWayPlace("Lost", bonjourFileSuffix);
    std::ofstream(stale) << "10.0.0.5\n";
    EXPECT_EQ(Ask(lost, ""), ServerDataOutcome::connectionError);
    EXPECT_FALSE(std::filesystem::exists(stale)) << "a service that is gone has no address";
}

TEST_F(Neighbours, TheFilterLooksUpItsDevicesHostAloneAndNotWithoutEnd) {
    if (!hasNeighbour()) {
        return runWithNeighbour({}, std::string("import runpy, sys\nsys.argv = ['', '") + neighbourAddress +
                                        "', '8631']\nrunpy.run_path('" + ippPrinter + "')\n");
    }
    AddBackend("ipp", "");
    const PMPrinter printer = AddQueue("Direct", "ipp://press.test:8631/ipp/print");
    ServerExchange pane({});
    pane.SetQueue(ppdPath, "Direct");
    for (const auto& [address, numbers] :
         {std::pair("10.77.0.2", ""), std::pair("alias.test", "10.77.0.2")}) {
        EXPECT_EQ(Fetch(pane, printer, address), ServerExchange::Answer::read) << address;
        EXPECT_EQ(NumbersSent(), numbers) << address;
    }
    // A host that the name server is silent about, for minutes: the commands end before the pane gives up.
    for (const char* queue : {"Silent", "SilentToo"}) {
        AddQueue(queue, "ipp://silent.test/ipp/print");
    }
    auto lookUp = std::async(std::launch::async, [] {
        ExpectTool({"serverdata", "-d", "Silent", "--address", "10.77.0.2"}, 2,
                   "could not reach the controller at 10.77.0.2");
    });
    const auto asked = [](const char* name) { return std::ranges::count(namesAsked(), name); };
    const auto before = asked("press.test");
    // The same name in a request without numbers, and with those of another machine.
    for (const char* line : {"", "address=10.77.0.9\n"}) {
        EXPECT_EQ(Ask(printer, "other.test", line), ServerDataOutcome::connectionError) << line;
    }
    EXPECT_EQ(asked("other.test"), 0);
    EXPECT_GT(asked("press.test"), before) << "the second request's numbers are held against the device's";
    EXPECT_EQ(Ask(std::make_shared<CupsPrinter>("SilentToo"), ""), ServerDataOutcome::connectionError);
    lookUp.get();
    EXPECT_GT(asked("silent.test"), 0);
}

} // namespace

} // namespace torka::tests
