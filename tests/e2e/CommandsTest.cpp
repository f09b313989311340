// SPDX-License-Identifier: Apache-2.0
#include "connection/ZANCorvianPrinterPList.h"
#include "tests/e2e/ServerData.h"

#include <cstring>
#include <future>

// Asks a queue's filter for server data and reads the answer, as the pane does.

namespace torka::tests {

namespace {

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

CommandResult ask(const std::string& queue, const std::string& address) {
    return runTool({"serverdata", "-d", queue, "--address", address});
}

TEST_F(ServerData, EverybodyWhoAsksAtOnceGetsAnAnswerOfTheirOwn) {
    AddQueue("Asked");
    constexpr int people = 8;
    for (int i = 0; i < people; ++i) {
        const std::string number = std::to_string(i);
        Give("10.0.1." + number, "data", "ServerInfo", "Press " + number + ":ServerName\n");
    }
    std::vector<std::future<CommandResult>> asked;
    for (int i = 0; i < people; ++i) {
        asked.push_back(
            std::async(std::launch::async, [i] { return ask("Asked", "10.0.1." + std::to_string(i)); }));
    }
    for (int i = 0; i < people; ++i) {
        const CommandResult result = asked[static_cast<std::size_t>(i)].get();
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_NE(result.output.find("Press " + std::to_string(i)), std::string::npos) << result.output;
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
    const CommandResult answered = ask("Forgetful", "10.0.1.20");
    const CommandResult refused = ask("Forgetful", "10.0.1.21");
    // Whoever follows a job by its number meets a server that knows it no more.
    const CommandResult sent = runTool({"command", "send", "Forgetful", "Command_LocaleCode", "de"});
    const CommandResult stopped = runTool({"command", "send", "Forgetful", "Command_AllBidi", "no request"});
    const CommandResult printed =
        runTool({"print", "-d", "Forgetful", samplePath("plain.ps"), "PageSize=A3"});
    std::ofstream(configuration, std::ios::binary) << before;
    sandbox->Restart();
    EXPECT_EQ(answered.status, 0) << answered.errors;
    EXPECT_NE(answered.output.find("Press 20"), std::string::npos) << answered.output;
    EXPECT_EQ(refused.status, 2) << refused.output;
    EXPECT_NE(refused.errors.find("could not reach"), std::string::npos) << refused.errors;
    for (const CommandResult& ended : {sent, printed}) {
        EXPECT_EQ(ended.status, 0) << ended.errors;
        // A poll may meet the moment between the job's end and its removal.
        EXPECT_TRUE(ended.errors.empty() || ended.errors.find("cannot tell how") != std::string::npos)
            << ended.errors;
    }
    EXPECT_EQ(stopped.status, 1);
    EXPECT_NE(stopped.errors.find("cannot be understood"), std::string::npos) << stopped.errors;
}

} // namespace

} // namespace torka::tests
