// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Neighbours.h"
#include "pane/exchange/ServerExchange.h"
#include "platform/posix/PosixNetServices.h"
#include "tests/e2e/LiveData.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

// Queues of printers on another machine, with the server's filter between them and the pane.

namespace torka::tests {

namespace {

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
        return runWithNeighbour({}, ippPrinterProgram(neighbourAddress, 8631));
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
    const std::size_t asked = namesAsked().size();
    // The same name in a request without numbers, and with those of another machine.
    for (const char* line : {"", "address=10.77.0.9\n"}) {
        const ServerDataRequests::Request request = requests.Compose("other.test", line, "", {});
        BidiDataFile file(paths, failure);
        EXPECT_EQ(fetchServerData(printer, request.title, request.text, requests.randomStringForBIDIFile(),
                                  paths, file),
                  ServerDataOutcome::connectionError)
            << line;
    }
    std::vector<std::string> names = namesAsked();
    EXPECT_EQ(std::ranges::count(names, "other.test"), 0);
    EXPECT_GT(std::ranges::count(names, "press.test"), 0);
    EXPECT_GT(names.size(), asked) << "the second request's numbers are held against the device's";

    // A host that the name server is silent about, for minutes: the command ends before the pane gives up.
    const PMPrinter silent = AddQueue("Silent", "ipp://silent.test/ipp/print");
    EXPECT_EQ(Ask(silent, "10.77.0.2"), ServerDataOutcome::connectionError);
    EXPECT_EQ(Ask(silent, ""), ServerDataOutcome::connectionError);
    names = namesAsked();
    EXPECT_GT(std::ranges::count(names, "silent.test"), 0);
}

} // namespace

} // namespace torka::tests
