// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/SpoolerCommands.h"
#include "output/BundleIdentifier.h"
#include "platform/cups/CupsPrinting.h"
#include "tests/e2e/Sandbox.h"

#include <cstdlib>
#include <cups/cups.h>
#include <fstream>
#include <gmock/gmock.h>
#include <numeric>
#include <signal.h>

// Prints jobs with settings from the command line to the device, through the server's own filters.

namespace torka::tests {

namespace {

using ::testing::HasSubstr;

constexpr const char* sampleUuid = "5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";

class Printing : public SandboxTest {
protected:
    // Sends a job that names a ticket, which need not exist.
    void ExpectRefused(const std::string& queue, const std::string& ticket, const std::string& reason) const {
        const int job = *submitFile(queue, samplePath("plain.ps"), "$(touch x); `id` %n%s \"'\\ proof",
                                    {{std::string(ticketPathSetting), ticket}});
        const JobStatus status = WaitForEnd(job);
        EXPECT_EQ(status.state, 6) << ticket;
        EXPECT_THAT(status.message, HasSubstr(reason));
        EXPECT_EQ(sandbox->Printed(job), "");
    }

    void SendCommand(const std::string& queue, SpoolerCommand command, const std::string& text) const {
        CupsPrinter printer(queue);
        ASSERT_EQ(printer.SendCommand(cfString(text), cfString(commandName(command)), nullptr), noErr);
        ASSERT_EQ(WaitForEnd(printer.CommandJob()).state, 9);
        EXPECT_EQ(sandbox->Printed(printer.CommandJob()), "") << "no banner pages";
    }

    // The pages of a printed document, drawn at 36 dpi.
    std::vector<std::string> Pages(int job) const {
        const std::string name = *sandbox / ("printed/" + std::to_string(job) + "-");
        Drawn(job, "pgmraw", name + "%d.pgm");
        std::vector<std::string> pages;
        for (int page = 1; std::filesystem::exists(name + std::to_string(page) + ".pgm"); ++page) {
            pages.push_back(readFile(name + std::to_string(page) + ".pgm"));
        }
        return pages;
    }
};

TEST_F(Printing, SettingsNotesAndWatermarkReachTheDeviceAndSecretsDoNot) {
    AddQueue("Proofs");
    const TemporaryFolder folder;
    const std::string pdf = folder / "brochure.pdf";
    runGhostscript("pdfwrite", {"-o", pdf, samplePath("brochure.ps")});
    // The server's filters receive the page size from every source of settings.
    const std::string settings =
        folder.Write("settings.plist", "<plist version=\"1.0\"><dict><key>*PageSize</key>"
                                       "<string>A3</string></dict></plist>");
    for (const std::string& document : {samplePath("brochure.ps"), pdf}) {
        const std::string bare = Done({"print", "-d", "Proofs", document, "--settings", settings});
        const std::string full =
            Done({"print", "-d", "Proofs", document, "PageSize=A3", "Notes1=paper from shelf 4",
                  "Resume=73915486", "QVUserPassword=vault-kelp-Zq7", "--keys", samplePath("FieldKeys.plist"),
                  "--watermark", "0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,PROOF ONLY"});
        const std::string printed = sandbox->Printed(jobNumber(full));
        EXPECT_NE(printed.find("%%ZANCustom1: paper from shelf 4"), std::string::npos);
        const std::size_t password = printed.find("%%PersPassword: ");
        ASSERT_NE(password, std::string::npos);
        EXPECT_NE(printed.find_first_of("0123456789ABCDEF", password + 16), std::string::npos);

        const std::vector<std::string> pages = Pages(jobNumber(full));
        const std::vector<std::string> others = Pages(jobNumber(bare));
        ASSERT_EQ(pages.size(), 3U);
        ASSERT_EQ(others.size(), 3U);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NE(pages[i].substr(0, 100).find("\n421 59"), std::string::npos) << document;
            ASSERT_EQ(pages[i].size(), others[i].size());
            const auto watermark = std::inner_product(pages[i].begin(), pages[i].end(), others[i].begin(), 0,
                                                      std::plus<>(), std::not_equal_to<>());
            EXPECT_GT(watermark, 500);
        }
    }
    // Searches the whole folder: job files, tickets, logs and the printed documents.
    for (const std::string secret :
         {"73915486", "vault-kelp-Zq7", "3733393135343836", "7661756C742D6B656C70"}) {
        const CommandResult found = runCommand({"grep", "-rliaF", secret, (*sandbox / "").string()});
        EXPECT_EQ(found.status, 1) << secret << " in " << found.output;
    }
    // Without keys, a protected field is left out and reported.
    const CommandResult left = ExpectTool(
        {"print", "-d", "Proofs", samplePath("plain.ps"), "Resume=73915486"}, 1, "*Resume is left out");
    EXPECT_EQ(sandbox->Printed(jobNumber(left.output)).find("PersPassword"), std::string::npos);
    const std::string screen =
        runCommand({"script", "-qec", TORKA_BINARY_DIR "/bin/torka print -d Proofs " + samplePath("plain.ps"),
                    "/dev/null"})
            .output;
    EXPECT_NE(screen.find(": completed"), std::string::npos) << "a terminal shows the state: " << screen;
    // The server's own filters lay out pages by the size, and a medium of the command line takes its place.
    for (const auto& [option, isNamed] : {std::pair("copies=1", true), {"media=Tray1", false}}) {
        const int job = jobNumber(Done({"print", "-d", "Proofs", samplePath("plain.ps"), "-o", option}));
        const std::string told =
            runCommand({"grep", "-aF",
                        "[Job " + std::to_string(job) + "] argv[5]=", (*sandbox / "log/error_log").string()})
                .output;
        EXPECT_EQ(told.find("PageSize=") != std::string::npos, isNamed) << option << told;
    }
}

TEST_F(Printing, ATicketThatIsNotGoodFailsTheJobWithItsReasonAndPrintsNothing) {
    AddQueue("Strict");
    const std::string folder = "/Library/Caches/ZAN/";
    const std::string path = folder + "Torka.temp" + sampleUuid;
    std::ofstream(*sandbox / "root/secret") << "secret";
    ExpectRefused("Strict", path, "are missing");
    for (const std::string& named : {std::string("/etc/passwd"), folder + "../../../secret", std::string(),
                                     std::string("x y=z 'q\" \\")}) {
        ExpectRefused("Strict", named, "no valid name");
    }

    SendCommand("Strict", SpoolerCommand::psTempFileName, path);
    SendCommand("Strict", SpoolerCommand::writePSTemp, "<plist><array><integer>1</integer></arr");
    ExpectRefused("Strict", path, "are broken");
    cupsSetUser("mallory");
    ExpectRefused("Strict", path, "belong to somebody else");
    cupsSetUser("root");

    // The queue still prints.
    EXPECT_NE(sandbox->Printed(jobNumber(Done({"print", "-d", "Strict", samplePath("plain.ps"), "PageSize=A5",
                                               "--title", "; rm -rf $HOME 用紙 %s%n"}))),
              "");
    AddQueue("Japanese", "torkasink:/", samplePath("torka-production-ja.ppd"));
    for (const bool isAllowed : {false, true}) {
        std::vector<std::string> command = {"print", "-d", "Japanese", samplePath("plain.ps"),
                                            "Notes2=5 \u20ac"};
        if (isAllowed) {
            command.emplace_back("--allow-left-out");
        }
        const CommandResult lossy = ExpectTool(command, 1, "*Notes2 is left out of the job");
        EXPECT_EQ(lossy.output.starts_with("Job "), isAllowed) << lossy.output;
    }
}

TEST_F(Printing, AFileDestinationGoesIntoItsMailboxAndNowhereElse) {
    AddQueue("Mailboxes");
    ASSERT_EQ(runCommand({"lpadmin", "-p", "Mailboxes", "-o", "job-sheets-default=standard,none"}).status, 0);
    const auto printInto = [](const std::string& mailbox, int status = 0, const std::string& told = {}) {
        return ExpectTool({"print", "-d", "Mailboxes", samplePath("brochure.ps"), "PageSize=A5",
                           "Notes1=to " + mailbox, "QVDestination=File", "QVMailboxName=" + mailbox},
                          status, told);
    };
    const std::filesystem::path folder = *sandbox / "root/var/cache/torka/ZAN";
    const CommandResult first = printInto("Team-7");
    EXPECT_EQ(sandbox->Printed(jobNumber(first.output)), "") << "nothing reaches the device";
    // The queue's banner page and the document, also when the job is printed again.
    const auto documents = [&folder] {
        const std::string text = readFile(folder / "Team-7");
        const std::size_t second = text.find("\n%!PS-Adobe-", 1);
        EXPECT_TRUE(text.starts_with("%!PS-Adobe-"));
        EXPECT_NE(text.find("(Tidewater Press)", second), std::string::npos);
        EXPECT_NE(text.find("%%EOF", second), std::string::npos);
        EXPECT_EQ(text.find("\n%!PS-Adobe-", second + 1), std::string::npos);
        EXPECT_NE(text.find("%%ZANCustom1: to Team-7"), std::string::npos);
    };
    documents();
    EXPECT_EQ(std::filesystem::status(folder / "Team-7").permissions(), std::filesystem::perms(0600));
    const std::string job = std::to_string(jobNumber(first.output));
    ASSERT_EQ(runCommand({"lp", "-i", job, "-H", "restart"}).status, 0);
    EXPECT_EQ(WaitForEnd(jobNumber(first.output)).state, 9);
    documents();
    // Its user may have it written again, nobody else.
    printInto("Team-7");
    documents();
    const std::string kept = readFile(folder / "Team-7");
    std::ofstream(folder / "Team-7.owner") << "mallory";
    printInto("Team-7", 1, "belongs to somebody else");
    EXPECT_TRUE(readFile(folder / "Team-7") == kept);
    // Names that belong to other files, and a ticket without a command that names a mailbox.
    const std::string notes = readFile(folder / "TorkaFilterNotes");
    printInto("TorkaFilterNotes", 1);
    EXPECT_TRUE(readFile(folder / "TorkaFilterNotes").starts_with(notes.substr(0, 20)));
    const std::string path = "/Library/Caches/ZAN/Torka.temp6D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";
    SendCommand("Mailboxes", SpoolerCommand::psTempFileName, path);
    SendCommand("Mailboxes", SpoolerCommand::writePSTemp,
                "<plist><array><integer>900</integer><data>TGlicmFyeS9DYWNoZXMvWkFOL1VubmFtZWQ=</data>"
                "</array></plist>");
    ExpectRefused("Mailboxes", path, "was not named ahead");
    EXPECT_FALSE(std::filesystem::exists(folder / "Unnamed"));
}

// The filter below `ancestor`, 0 for none.
int filterBelow(int ancestor) {
    return std::atoi(
        runCommand({"pgrep", "-P", std::to_string(ancestor), "-x", "torkafilter"}).output.c_str());
}

TEST_F(Printing, AFilterThatCrashesOrIsCancelledFailsItsJobAndNoOther) {
    AddQueue("Slow", "torkasink:/wait");
    const TemporaryFolder folder;
    std::string document = readFile(samplePath("brochure.ps"));
    const std::size_t trailer = document.find("%%Trailer");
    ASSERT_NE(trailer, std::string::npos);
    std::string filler;
    while (filler.size() < 4'000'000) {
        filler += "0 pop 0 pop 0 pop 0 pop 0 pop 0 pop 0 pop 0 pop 0 pop 0 pop 0 pop\n";
    }
    document.insert(trailer, filler);
    const std::string file = folder.Write("long.ps", document);
    // Killed by the kernel for want of memory; crashed; cancelled.
    for (const int number : {SIGKILL, SIGABRT, 0}) {
        const int job = jobNumber(Done({"print", "-d", "Slow", file, "PageSize=A4", "--no-wait"}));
        WaitForPart(job);
        const int worker = filterBelow(filterBelow(std::stoi(readFile(*sandbox / "cupsd.pid"))));
        ASSERT_NE(worker, 0);
        if (number != 0) {
            ASSERT_EQ(kill(worker, number), 0);
            Release();
        } else {
            cancelJob("Slow", job);
        }
        const JobStatus end = WaitForEnd(job);
        EXPECT_EQ(end.state, number != 0 ? 6 : 7);
        EXPECT_THAT(end.message, HasSubstr(number == 0 ? "" : "signal " + std::to_string(number)));
        EXPECT_TRUE(WaitUntil([worker] { return kill(worker, 0) != 0; }));
        std::filesystem::remove(*sandbox / "printed/release");
    }
    Release();
    EXPECT_GT(sandbox->Printed(jobNumber(Done({"print", "-d", "Slow", file, "PageSize=A4"}))).size(),
              4'000'000U);
    std::filesystem::remove(*sandbox / "printed/release");
}

} // namespace

} // namespace torka::tests
