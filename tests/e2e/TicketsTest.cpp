// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/TicketCommands.h"
#include "connection/ZANCorvianPrinterPList.h"
#include "output/BundleIdentifier.h"
#include "tests/e2e/ServerData.h"

#include <csignal>
#include <cups/cups.h>
#include <future>
#include <gmock/gmock.h>
#include <map>
#include <set>

// Each job prints with its own settings or not at all: many people at the same time, borrowed tickets, busy
// queues, killed filters.

namespace torka::tests {

namespace {

const std::string notePrefix = "%%ZANCustom1: ";

class Tickets : public ServerData {
protected:
    void TearDown() override {
        cupsSetUser("root");
        std::filesystem::remove(*sandbox / "printed/release");
        ServerData::TearDown();
    }

    static std::string NewPath() {
        return "/Library/Caches/ZAN/Torka.temp" + platform::system().CreateUuidString();
    }
    // Sends a ticket with one note for a job. Returns the ticket's path.
    static std::string SendTicket(const std::string& queue, const std::string& note,
                                  const std::string& path = NewPath()) {
        const std::string list =
            runPython("import plistlib, sys\n"
                      "sys.stdout.buffer.write(plistlib.dumps([30, sys.argv[1].encode()]))",
                      {notePrefix + note});
        EXPECT_EQ(sendTicketAhead(std::make_shared<CupsPrinter>(queue), cfString(path),
                                  CFDataCreate(list.data(), list.size())),
                  noErr);
        return path;
    }
    static int Submit(const std::string& queue, const std::string& path, JobOptions options = {}) {
        options.emplace_back(ticketPathSetting, path);
        return *submitFile(queue, samplePath("plain.ps"), "proof", options);
    }
    // The notes in the job that reached the device.
    std::set<std::string> Notes(int job) const {
        const std::vector<std::string> lines = PrintedLines(job, notePrefix);
        return {lines.begin(), lines.end()};
    }

    // Follows a job to its end and expects this note in it alone.
    void ExpectPrinted(int job, const std::string& note) const {
        EXPECT_EQ(WaitForEnd(job).state, 9) << jobStatus(job).message;
        EXPECT_EQ(Notes(job), std::set<std::string>{note});
    }

    // Keeps a queue of the device torkasink:/wait busy until Release.
    void Occupy(const std::string& queue) const {
        const TemporaryFolder folder;
        const std::string file =
            folder.Write("long.ps", "%!PS\n" + std::string(200'000, '%') + "\nshowpage\n");
        WaitForPart(*submitFile(queue, file, "long", {}));
    }
};

using NoteSet = std::set<std::string>;
using ::testing::HasSubstr;

TEST_F(Tickets, ABorrowedTicketStopsTheBorrowersJobAndNotItsOwn) {
    AddQueue("Lending");
    AddQueue("LendingToo");
    cupsSetUser("victim");
    const std::string path = SendTicket("Lending", "mine");
    const int own = Submit("Lending", path);
    ExpectPrinted(own, "mine");
    // Somebody who has read the job's attributes claims to be the victim, and sends a job UUID.
    for (const char* queue : {"Lending", "LendingToo"}) {
        const int borrowed =
            Submit(queue, path, {{"job-uuid", "urn:uuid:6f1d2f0e-0000-4000-8000-000000000000"}});
        const JobStatus status = WaitForEnd(borrowed);
        EXPECT_EQ(status.state, 6);
        EXPECT_THAT(status.message, HasSubstr("its print settings belong to another job"));
        EXPECT_EQ(sandbox->Printed(borrowed), "");
    }
    // The victim's job can be printed again.
    std::filesystem::remove(*sandbox / ("printed/" + std::to_string(own) + ".ps"));
    ASSERT_EQ(runCommand({"lp", "-i", std::to_string(own), "-H", "restart"}).status, 0);
    EXPECT_TRUE(WaitUntil([&] { return Notes(own) == NoteSet{"mine"}; }));
}

TEST_F(Tickets, AJobOfTheSameSenderWithAnothersTicketPrintsWithItsOptions) {
    AddQueue("Again");
    cupsSetUser("anna");
    const std::string path = SendTicket("Again", "first");
    ASSERT_EQ(WaitForEnd(Submit("Again", path)).state, 9);
    const int second =
        Submit("Again", path,
               {{"QVStaple", "Top"}, {"Notes1", "second"}, {"QVDSPassword", "4711"}, {"Resume", "74915362"}});
    const JobStatus status = WaitForEnd(second);
    EXPECT_EQ(status.state, 9);
    EXPECT_THAT(status.message, HasSubstr("its print settings belong to another job"));
    EXPECT_EQ(Notes(second), NoteSet{"second"});
    const std::string printed = sandbox->Printed(second);
    EXPECT_THAT(printed, HasSubstr("%%BeginFeature: *QVStaple Top"));
    for (const char* absent : {"4711", "74915362", "QVDSPassword", "*QVUserAuthName lp"}) {
        EXPECT_THAT(printed, testing::Not(HasSubstr(absent)));
    }
    cupsSetUser("bob"); // and somebody else's job stops
    EXPECT_EQ(WaitForEnd(Submit("Again", path, {{"QVStaple", "Top"}})).state, 6);
}

TEST_F(Tickets, SettingsArriveBeforeTheirJobWhateverItsPriorityAndWhereverItGoes) {
    AddQueue("Busy", "torkasink:/wait");
    AddQueue("Spare");
    Occupy("Busy");
    const std::string urgentTicket = SendTicket("Busy", "urgent");
    const int urgent = Submit("Busy", urgentTicket, {{"job-priority", "90"}});
    const std::string movedTicket = SendTicket("Busy", "moved");
    const int moved = Submit("Busy", movedTicket, {{"job-hold-until", "indefinite"}});
    EXPECT_EQ(jobStatus(urgent).state, 3);
    Release();
    ExpectPrinted(urgent, "urgent");
    EXPECT_EQ(jobStatus(moved).state, 4);
    ASSERT_EQ(runCommand({"lpmove", std::to_string(moved), "Spare"}).status, 0);
    ASSERT_EQ(runCommand({"lp", "-i", std::to_string(moved), "-H", "resume"}).status, 0);
    ExpectPrinted(moved, "moved");
    // A queue that holds its jobs holds the job but not its settings.
    ASSERT_EQ(runCommand({"lpadmin", "-p", "Spare", "-o", "job-hold-until-default=indefinite"}).status, 0);
    const int held = Submit("Spare", SendTicket("Spare", "held"));
    ASSERT_EQ(runCommand({"lp", "-i", std::to_string(held), "-H", "resume"}).status, 0);
    ExpectPrinted(held, "held");
}

TEST_F(Tickets, AClassOfPrintersPrintsWithTheSettingsAndKeepsRecordsAtItsFirstPrinter) {
    CupsPrinter group("Team");
    EXPECT_FALSE(group.DescribedMember()) << "the server does not know the class yet";
    for (const char* member : {"Member1", "Member2"}) {
        AddQueue(member);
        ASSERT_EQ(runCommand({"lpadmin", "-p", member, "-c", "Team"}).status, 0);
    }
    ASSERT_EQ(runCommand({"cupsenable", "Team"}).status, 0);
    ASSERT_EQ(runCommand({"cupsaccept", "Team"}).status, 0);
    // One member begins with the job before the other one has taken its settings.
    const std::string path = NewPath();
    const int early = Submit("Team", path);
    ASSERT_TRUE(WaitUntil([early] { return jobStatus(early).state == 5; }));
    SendTicket("Team", "early", path);
    ExpectPrinted(early, "early");

    const auto description = [this](int member) {
        return readFile(*sandbox / ("etc/ppd/Member" + std::to_string(member) + ".ppd"));
    };
    const std::string second = description(2);
    for (const char* address : {"10.0.0.8", "10.0.0.9"}) {
        Done({"address", "set", "-d", "Team", "Team", address});
    }
    Done({"command", "send", "Team", "Command_PRINTERLOCALPRESETS", "Glossy"});
    EXPECT_THAT(description(1), AllOf(HasSubstr("QVDriverPreference0000"), HasSubstr("QVlocalPreset0000")));
    EXPECT_EQ(description(2), second);
    // An option finds the watermark of the class at every member.
    ZANCorvianPrinterPList list(
        std::make_unique<QueuePropertyListStore>(QueueAccess{std::make_shared<CupsSession>("Team"), {}}));
    std::vector<DataRow> rows(1);
    std::string("0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,TEAM").copy(rows[0].data(), 200);
    list.AddDataBlob(cfString("Team"), 1, 1, rows);
    ASSERT_TRUE(list.Save());
    for (const auto& [busy, free] : {std::pair{"Member1", "Member2"}, {"Member2", "Member1"}}) {
        ASSERT_EQ(runCommand({"cupsdisable", busy}).status, 0);
        const int job = *submitFile("Team", samplePath("plain.ps"), "", {{"torka-watermark", "TEAM"}});
        EXPECT_EQ(WaitForEnd(job).message, "") << free;
        EXPECT_THAT(sandbox->Printed(job), HasSubstr("<5445414D>")) << free;
        ASSERT_EQ(runCommand({"cupsenable", busy}).status, 0);
    }
    ASSERT_TRUE(group.DescribedMember());
    ASSERT_EQ(group.SendCommand(cfString("x"), cfString(commandTitle(SpoolerCommand::popupJnData)), nullptr),
              noErr);
    EXPECT_THAT(WaitForEnd(group.CommandJob()).message, HasSubstr("it came to the class Team"));

    const std::string older = (*sandbox / "older.ppd").string();
    std::ofstream(older) << replaced(second, "*FileVersion: \"2.1\"", "*FileVersion: \"2.0\"");
    const struct {
        std::vector<std::string> command;
        const char* told; // by the check that follows
    } steps[] = {
        {{"lpadmin", "-p", "Member2", "-o", "PageSize=A3"},
         "members: good: the class has printers of one kind: Member1, Member2"},
        {{"lpadmin", "-p", "Member2", "-P", older},
         "members: fault: Member2 has another description (header"},
        {{"cupsreject", "Member2"},
         "members: fault: Member2 gets no job of the class: the queue rejects jobs"},
        {{"cupsdisable", "Member1"}, "state: fault: no printer of the class prints jobs"},
        {{"lpadmin", "-p", "Member1", "-r", "Team"},
         "members: fault: Member1 keeps an entry of the class in its address list"},
        {{"lpadmin", "-p", "Member2", "-m", "raw"},
         "the queue has no description\n    mend: torka queue add Member2 torkasink:/ FILE.ppd"},
    };
    for (const auto& [command, told] : steps) {
        if (command.back() == "Team") {
            ExpectTool({"address", "set", "-d", "Team", "Team", "10.0.0.7"}, 2,
                       "Member1: the queue takes no");
        }
        ASSERT_EQ(runCommand(command).status, 0) << told;
        EXPECT_THAT(runTool({"queue", "check", "Team"}).output, HasSubstr(told));
    }
}

TEST_F(Tickets, TheCheckOfAQueueSeesWhatItsServerShows) {
    AddQueue("Checked");
    const auto states = [] {
        std::map<std::string, std::string> found;
        const nlohmann::json shown = runToolForJson({"queue", "check", "Checked"}, 1);
        for (const auto& row : shown["findings"]) {
            if (row["what"] == "subscriptions" || std::string(row["what"]).ends_with("-names")) {
                found[row["what"]] = row["state"];
            }
        }
        return found;
    };
    using States = std::map<std::string, std::string>;
    EXPECT_EQ(states(),
              (States{{"sender-names", "open"}, {"ticket-names", "unknown"}, {"subscriptions", "unknown"}}));
    ASSERT_EQ(WaitForEnd(Submit("Checked", SendTicket("Checked", "seen"))).state, 9);
    EXPECT_EQ(states()["ticket-names"], "open");
    // Private values: first visible to everybody who gives the owner's name, then only to the owner.
    const std::filesystem::path file = *sandbox / "etc/cupsd.conf";
    const std::string before = readFile(file);
    const auto configure = [&](const std::string& text, const std::string& expected) {
        std::ofstream(file) << text;
        ASSERT_EQ(kill(std::stoi(readFile(*sandbox / "cupsd.pid")), SIGHUP), 0);
        EXPECT_TRUE(WaitUntil([&expected] {
            const std::string output = runTool({"queue", "check", "Checked"}).output;
            return output.find(expected) != std::string::npos;
        })) << expected;
    };
    const std::string hidden = replaced(replaced(before, "JobPrivateAccess all", "JobPrivateAccess @OWNER"),
                                        "JobPrivateValues none", "JobPrivateValues all");
    configure(hidden, "ticket-names: open: whoever gives the owner's name");
    const std::string limit = "<Limit Validate-Job Get-Jobs>\nAuthType Basic\nRequire valid-user\n</Limit>\n";
    configure(replaced(hidden, "<Limit All>", limit + "<Limit All>"), "sender-names: closed");
    EXPECT_EQ(states()["ticket-names"], "closed");
    const std::filesystem::path keys = *sandbox / "root/var/lib/torka/ZAN";
    EXPECT_EQ(runTool({"queue", "check", "Checked"}).status, 1) << "no keys";
    std::filesystem::create_directories(keys);
    std::filesystem::copy_file(samplePath("FieldKeys.plist"), keys / "FieldKeys.plist");
    std::filesystem::permissions(keys / "FieldKeys.plist", std::filesystem::perms(0600));
    EXPECT_EQ(runTool({"queue", "check", "Checked"}).status, 0);
    std::filesystem::remove_all(keys.parent_path());
    configure(before, "sender-names: open");
    EXPECT_EQ(runTool({"queue", "check", "No such"}).status, 2);
}

TEST_F(Tickets, OfManyJobsAtOnceNoneCarriesAnothersSettings) {
    constexpr int senders = 20; // half a second of the processor each
    const std::vector<std::string> queues{"Many1", "Many2", "Many3"};
    for (const std::string& queue : queues) {
        AddQueue(queue);
    }
    std::vector<std::future<CommandResult>> sent;
    const auto note = [](int number) { return "job " + std::to_string(number); };
    for (int i = 0; i < senders; ++i) {
        sent.push_back(std::async(std::launch::async, [&queues, note = note(i), i] {
            // Whoever waits asks the server all the time, and slows it.
            return runCommand({"env", "CUPS_USER=person" + std::to_string(i % 4),
                               TORKA_BINARY_DIR "/bin/torka", "print", "--no-wait", "-d",
                               queues[static_cast<std::size_t>(i) % queues.size()], samplePath("plain.ps"),
                               "Notes1=" + note});
        }));
    }
    for (int i = 0; i < senders; ++i) {
        const CommandResult result = sent[static_cast<std::size_t>(i)].get();
        ASSERT_EQ(result.status, 0) << result.errors;
        const int job = jobNumber(result.output);
        for (int waits = 1; waits < 5 && !WaitForEnd(job).IsOver(); ++waits) { // behind many others
        }
        ExpectPrinted(job, note(i));
    }
}

} // namespace

} // namespace torka::tests
