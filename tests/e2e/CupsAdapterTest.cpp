// SPDX-License-Identifier: Apache-2.0
#include "tests/e2e/ServerData.h"

#include <algorithm>

// Compares the printing interfaces with the client programs of a real server.

namespace torka::tests {

namespace {

class CupsAdapter : public ServerData {
protected:
    // As the spooler lists it once it is over.
    static SpoolerJob JobWhenOver(const CupsPrinter& printer) {
        WaitForEnd(printer.CommandJob());
        std::vector<SpoolerJob> jobs;
        EXPECT_TRUE(CupsSpooler().GetJobs(jobs));
        const auto job = std::ranges::find(jobs, printer.CommandJob(), &SpoolerJob::id);
        return job == jobs.end() ? SpoolerJob() : *job;
    }
};

TEST_F(CupsAdapter, PrinterTellsWhatTheServerKnows) {
    const std::string uri = "torkasink:/some%20place";
    ASSERT_EQ(addQueue("Proofs", uri, samplePath("torka-production.ppd")), "");
    PMPrinter printer;
    ASSERT_EQ(PMSessionGetCurrentPrinter(std::make_shared<CupsSession>("Proofs"), printer), noErr);

    CFURLRef url;
    ASSERT_EQ(PMPrinterCopyDeviceURI(printer, url), noErr);
    EXPECT_EQ(utf8Text(CFURLGetString(url)), uri);
    EXPECT_NE(runCommand({"lpstat", "-v", "Proofs"}).output.find(uri), std::string::npos);
    CFStringRef text;
    ASSERT_EQ(PMPrinterCopyHostName(printer, text), noErr);
    EXPECT_EQ(utf8Text(text), "localhost");
    ASSERT_EQ(PMPrinterGetMakeAndModelName(printer, text), noErr);
    EXPECT_TRUE(utf8Text(text).starts_with("Torka")) << utf8Text(text);
    std::uint16_t state = 0;
    ASSERT_EQ(PMPrinterGetState(printer, state), noErr);
    EXPECT_EQ(state, kPMPrinterIdle);
    ASSERT_EQ(runCommand({"cupsdisable", "-r", "out of paper", "Proofs"}).status, 0);
    ASSERT_EQ(PMPrinterGetState(printer, state), noErr);
    EXPECT_EQ(state, kPMPrinterStopped);
    CFDictionaryRef facts;
    ASSERT_EQ(PMPrinterCopyState(printer, facts), noErr);
    EXPECT_EQ(utf8Text(cfCast<CFString>(CFDictionaryGetValue(facts, u"printer-state-message"))),
              "out of paper");
    std::vector<Paper> papers;
    ASSERT_EQ(PMPrinterGetPaperList(printer, papers), noErr);
    const auto a4 = std::ranges::find(papers, "A4", &Paper::ppdPaperName);
    ASSERT_NE(a4, papers.end());
    EXPECT_EQ(a4->width, 595.0);
    EXPECT_EQ(a4->height, 842.0);

    PMPrinter none;
    EXPECT_EQ(CupsSession("NoSuchQueue").CurrentPrinter(none), kPMGeneralError);
    EXPECT_FALSE(none);
    EXPECT_EQ(CupsPrinter("../etc").CopyDeviceURI(url), kPMGeneralError);
    EXPECT_EQ(CupsPrinter("NoSuchQueue").State(state), kPMGeneralError);
}

TEST_F(CupsAdapter, DescriptionIsTheServersFileOrACopyThatIsRemoved) {
    ASSERT_EQ(addQueue("Copied", "torkasink:/", samplePath("torka-production.ppd")), "");
    const std::string served = *sandbox / "etc/ppd/Copied.ppd";
    {
        CupsSpooler spooler;
        EXPECT_EQ(spooler.FetchPPD("Copied"), served);
        EXPECT_EQ(spooler.FetchPPD("NoSuchQueue"), "");
    }
    EXPECT_TRUE(std::filesystem::exists(served)) << "only the link to it goes";

    // A program without the server's root in its environment gets copies. libcups reads the environment once,
    // so that the test needs another process.
    const TemporaryFolder temporary;
    const CommandResult result =
        runCommand({"env", "-u", "CUPS_SERVERROOT", "TMPDIR=" + temporary.Path().string(),
                    TORKA_BINARY_DIR "/bin/test_e2e", "--gtest_also_run_disabled_tests",
                    "--gtest_filter=CopiedDescription.DISABLED_IsRemoved"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("PASSED  ] 1 test"), std::string::npos) << result.output;
    EXPECT_TRUE(std::filesystem::is_empty(temporary.Path())) << "nothing is left behind";
}

// The test above runs this one in its own environment.
TEST(CopiedDescription, DISABLED_IsRemoved) {
    const CupsPrinter printer("Copied");
    CFURLRef url;
    ASSERT_EQ(printer.CopyDescriptionURL(cfString("PMPPDDescriptionType"), url), noErr);
    const std::string first = CFURLCopyFileSystemPath(url);
    EXPECT_TRUE(first.starts_with(std::filesystem::temp_directory_path().string())) << first;
    EXPECT_TRUE(first.ends_with(".ppd")) << first;
    EXPECT_NE(readFile(first).find("*%QVVersion"), std::string::npos);
    ASSERT_EQ(printer.CopyDescriptionURL(cfString("PMPPDDescriptionType"), url), noErr);
    const std::string second = CFURLCopyFileSystemPath(url);
    EXPECT_EQ(first, second) << "whoever keeps the path reads the newest description";
    EXPECT_EQ(CupsSpooler().FetchPPD("Copied"), first);
    EXPECT_NE(readFile(first).find("*%QVVersion"), std::string::npos);
    std::vector<Paper> papers;
    EXPECT_EQ(printer.PaperList(papers), noErr);
    EXPECT_TRUE(std::filesystem::exists(second)) << "other questions leave it";
}

TEST_F(CupsAdapter, CommandJobCarriesTitleAndText) {
    // The test's own filter reports its arguments.
    const std::filesystem::path filter = *sandbox / "lib/filter/tell";
    const TemporaryFolder folder;
    std::filesystem::copy_file(
        folder.Write("tell", "#!/bin/sh\nprintf '%s|%s|%s|' \"$2\" \"$3\" \"$PRINTER\"\ncat \"$6\"\n"),
        filter);
    std::filesystem::permissions(filter, std::filesystem::perms(0755));
    std::string ppd = readFile(samplePath("torka-production.ppd"));
    ppd.insert(ppd.find("*FormatVersion"), "*cupsFilter: \"application/vnd.cups-command 0 tell\"\n");
    ASSERT_EQ(addQueue("Told", "torkasink:/", folder.Write("q.ppd", ppd)), "");

    CupsPrinter printer("Told");
    const std::string title = "Command_Größe 用紙 $(id) ; %s";
    const std::string text = "one\n%n two\\ ::DELIMIT:: \xEF\xBB\xBF three";
    ASSERT_EQ(printer.SendCommand(cfString(text), cfString(title), CFDictionaryCreate({})), noErr);
    const SpoolerJob job = JobWhenOver(printer);
    EXPECT_EQ(job.title, title);
    EXPECT_EQ(job.destination, "Told");
    EXPECT_EQ(job.state, jobStateCompleted);
    EXPECT_EQ(sandbox->Printed(job.id), "root|" + title + "|Told|" + text);

    EXPECT_EQ(CupsPrinter("NoSuchQueue").SendCommand(cfString("x"), cfString("x"), nullptr), kPMGeneralError);
    // The connection is fit for use after a refusal, and after a restart of the server.
    for (const char* again : {"again", " "}) {
        ASSERT_EQ(printer.SendCommand(cfString(again), cfString("Command_Again"), nullptr), noErr) << again;
        EXPECT_EQ(JobWhenOver(printer).state, jobStateCompleted);
        sandbox->Restart();
    }
}

} // namespace

} // namespace torka::tests
