// SPDX-License-Identifier: Apache-2.0
#include "connection/ZANCorvianPrinterPList.h"
#include "tests/e2e/ServerData.h"

#include <cstring>
#include <future>
#include <gmock/gmock.h>
#include <map>

// Asks a queue's filter for server data and reads the answer, as the pane does.

namespace torka::tests {

namespace {

using ::testing::HasSubstr;

TEST_F(ServerData, ComesBackThroughTheDataFileAndTheDescription) {
    const PMPrinter printer = AddQueue("Served");
    std::string trays = "Tray 1 Größe 用紙 🖨\n";
    for (int i = 0; i < 3000; ++i) {
        trays += std::to_string(i * i) + " A4, plain\n";
    }
    Give("10.0.0.5", "data", "QVTrayInfo", trays);
    Give("10.0.0.5", "data", "QVTonerInfo", "Cyan 40 %");
    Give("10.0.0.5", "ppd", "QVServerInfo", trays);
    ASSERT_EQ(Ask(printer, "10.0.0.5", "trays=1\n"), ServerDataOutcome::read);
    EXPECT_EQ(Record("QVTrayInfo"), trays);
    EXPECT_EQ(destinationPPD(), ppdPath);
    EXPECT_EQ(utf8FromWide(CPPDMsgHdlr(destinationPPD(), "ServerInfo").GetStringData()), trays);
    EXPECT_EQ(CPPDMsgHdlr(destinationPPD(), "InvalidPrinterAddress").GetCStringData(), "no");

    // A controller that is absent, and one that is back.
    EXPECT_EQ(Ask(printer, "10.0.0.6"), ServerDataOutcome::connectionError);
    EXPECT_EQ(CPPDMsgHdlr(ppdPath, "InvalidPrinterAddress").GetCStringData(), "yes");
    EXPECT_EQ(Ask(printer, "10.0.0.5"), ServerDataOutcome::read);
    EXPECT_EQ(CPPDMsgHdlr(ppdPath, "InvalidPrinterAddress").GetCStringData(), "no");
    // Unchanged records do not rewrite the description.
    const auto written = std::filesystem::last_write_time(ppdPath);
    EXPECT_EQ(sendCommandAndWait(printer, requests.Compose("10.0.0.5", "", "", {}).text,
                                 commandTitle(SpoolerCommand::allBidi)),
              CommandOutcome::completed);
    EXPECT_EQ(std::filesystem::last_write_time(ppdPath), written);
}

TEST_F(ServerData, AnAddressListIsKeptByItsQueue) {
    AddQueue("Listed");
    EXPECT_EQ(Done({"address", "list", "-d", "Listed"}), "");
    Done({"address", "set", "-d", "Listed", "Listed", "b.example", "--two-way"});
    ExpectTool({"address", "set", "-d", "Listed", "Other", "10.0.0.2"}, 2, "has no queue Other (--force");
    Done({"address", "set", "-d", "Listed", "Other", "10.0.0.2", "--force"});
    EXPECT_EQ(Done({"address", "list", "--ppd", ppdPath}), "Listed: b.example, two-way\nOther: 10.0.0.2\n");
    // Opens and saves the list as the pane does.
    ZANCorvianPrinterPList list(QueueAccess{std::make_shared<CupsSession>("Listed"), {}});
    EXPECT_EQ(utf8Text(list.Find(cfString("listed"))), "b.example");
    std::vector<DataRow> rows(1);
    std::strcpy(rows[0].data(), "*QVDuplex");
    list.AddDataBlob(cfString("Listed"), 1, 0, rows);
    EXPECT_TRUE(list.Save());
    EXPECT_EQ(Done({"address", "list", "-d", "Listed"}),
              "Listed: b.example, two-way\n  block 0:\n    *QVDuplex\nOther: 10.0.0.2\n");
    ExpectTool({"address", "remove", "-d", "Listed", "nobody"}, 1, "nobody");
    Done({"address", "remove", "-d", "Listed", "LISTED"});
    EXPECT_EQ(Done({"address", "list", "-d", "Listed"}), "Other: 10.0.0.2\n");

    ASSERT_EQ(runCommand({"cupsdisable", "Listed"}).status, 0);
    ExpectTool({"address", "set", "-d", "Listed", "Listed", "10.0.0.3"}, 2, "it is stopped");
    ExpectTool({"address", "list", "-d", "NoSuchQueue"}, 2, "NoSuchQueue");
}

TEST_F(ServerData, AnAddressListTellsOfAChangeInBetween) {
    // Both send their lists behind a job that waits. The later list lacks the change of the earlier one,
    // which the earlier one sees unless the second list takes longer than its look: hence the rounds.
    AddQueue("Busy", "torkasink:/wait");
    const TemporaryFolder folder;
    std::string document = "%!PS-Adobe-3.0\n%%EndComments\n";
    for (int i = 0; i < 9000; ++i) {
        document += "% a line of filling\n";
    }
    const std::string file = folder.Write("long.ps", document + "showpage\n%%EOF\n");
    bool isTold = false;
    for (int round = 0; round < 5 && !isTold; ++round) {
        ASSERT_FALSE(HasFailure());
        const CommandResult lp = runCommand({"lp", "-d", "Busy", file});
        WaitForPart(std::stoi(lp.output.substr(lp.output.find("Busy-") + 5)));
        const auto set = [round](const char* name) {
            return runTool(
                {"address", "set", "-d", "Busy", name, "10.0.1." + std::to_string(round), "--force"});
        };
        const auto jobs = [] { return runCommand({"lpstat", "-o", "Busy"}).output; };
        const auto sent = [&](int count) {
            EXPECT_TRUE(WaitUntil([&] { return std::ranges::count(jobs(), '\n') == count; })) << jobs();
        };
        auto earlier = std::async(std::launch::async, set, "Earlier");
        sent(2);
        auto later = std::async(std::launch::async, set, "Later");
        sent(3);
        Release();
        const CommandResult told = earlier.get();
        isTold = told.status == 2;
        EXPECT_THAT(told.errors, HasSubstr(isTold ? "another change of the list came in between" : ""));
        EXPECT_EQ(later.get().status, 0);
        std::filesystem::remove(*sandbox / "printed/release");
    }
    EXPECT_TRUE(isTold);
}

TEST_F(ServerData, EverybodyWhoAsksAtOnceGetsAnAnswerOfTheirOwn) {
    AddQueue("Asked");
    std::map<std::string, std::future<std::string>> asked;
    for (const std::string number : {"0", "1", "2", "3", "4", "5", "6", "7"}) {
        Give("10.0.1." + number, "data", "ServerInfo", "Press " + number + ":ServerName\n");
        asked[number] = std::async(std::launch::async, [number] {
            return Done({"serverdata", "-d", "Asked", "--address", "10.0.1." + number});
        });
    }
    for (auto& [number, shown] : asked) {
        EXPECT_THAT(shown.get(), HasSubstr("Press " + number));
    }
    EXPECT_FALSE(std::filesystem::exists(twoWayPlace("Asked", lockFileSuffix)));
}

TEST_F(ServerData, AServerThatKeepsNoHistoryAnswersAsWell) {
    AddQueue("Forgetful");
    Give("10.0.1.20", "data", "ServerInfo", "Press 20:ServerName\n");
    const std::filesystem::path configuration = *sandbox / "etc/cupsd.conf";
    const std::string before = readFile(configuration);
    std::ofstream(configuration, std::ios::binary)
        << replaced(before, "PreserveJobHistory Yes", "PreserveJobHistory No");
    sandbox->Restart();
    EXPECT_THAT(Done({"serverdata", "-d", "Forgetful", "--address", "10.0.1.20"}), HasSubstr("Press 20"));
    ExpectTool({"serverdata", "-d", "Forgetful", "--address", "10.0.1.21"}, 2, "could not reach");
    // Whoever follows a job by its number meets a server that knows it no more.
    ExpectTool({"command", "send", "Forgetful", "Command_AllBidi", "no request"}, 1, "cannot be understood");
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"command", "send", "Forgetful", "Command_LocaleCode", "de"},
             {"print", "-d", "Forgetful", samplePath("plain.ps"), "PageSize=A3"}}) {
        // A poll may meet the moment between the job's end and its removal.
        const CommandResult ended = ExpectTool(arguments, 0, "");
        EXPECT_THAT(ended.errors, testing::AnyOf("", HasSubstr("cannot tell how")));
    }
    std::ofstream(configuration, std::ios::binary) << before;
    sandbox->Restart();
}

} // namespace

} // namespace torka::tests
