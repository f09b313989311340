// SPDX-License-Identifier: Apache-2.0
#include "tests/e2e/Sandbox.h"

#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <thread>

// Jobs of programs that know nothing of the pane: their settings are among their options.

namespace torka::tests {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Options : public SandboxTest {
protected:
    static int Submit(const std::string& queue, const JobOptions& options,
                      const std::string& document = samplePath("plain.ps")) {
        return *submitFile(queue, document, "proof", options);
    }
    // The arguments of the device document's feature code, by keyword.
    std::multimap<std::string, std::string> Features(int job) const {
        std::multimap<std::string, std::string> features;
        for (const std::string& line : PrintedLines(job, "%%BeginFeature: ")) {
            const std::size_t blank = std::min(line.find(' '), line.size());
            features.emplace(line.substr(0, blank), line.substr(blank));
        }
        return features;
    }
};

TEST_F(Options, PrintLikeTheSameSettingsWithATicketAndEachOfThemOnce) {
    AddQueue("Options");
    const TemporaryFolder folder;
    const std::string pdf = folder / "brochure.pdf";
    runGhostscript("pdfwrite", {"-o", pdf, samplePath("brochure.ps")});
    for (const std::string& document : {samplePath("plain.ps"), samplePath("brochure.ps"), pdf}) {
        SCOPED_TRACE(document);
        const std::string watermark = "0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,PROOF";
        const int job = Submit("Options",
                               {{"QVStaple", "saddle"},
                                {"QVScale", "50"},
                                {"*QVNegative", "true"},
                                {"QVGamma", "1.8"},
                                {"QVMediaColor", "Blue"},
                                {"Notes1", "shelf 4, \"left\" (\\) 50%n"},
                                {"PageSize", "A3"},
                                {"number-up", "2"},
                                {"landscape", "true"},
                                {"torka-watermark", watermark},
                                {"job-hold-until", "indefinite"}},
                               document);
        const std::string tool =
            Done({"print", "-d", "Options", document, "QVStaple=Saddle", "QVScale=50", "QVNegative=True",
                  "QVGamma=1.8", "QVMediaColor=Blue", "Notes1=shelf 4, \"left\" (\\) 50%n", "PageSize=A3",
                  "-o", "number-up=2", "--orientation", "2", "--watermark", watermark});
        // The job is held while another prints.
        ASSERT_EQ(runCommand({"lp", "-i", std::to_string(job), "-H", "resume"}).status, 0);
        const JobStatus status = WaitForEnd(job);
        ASSERT_EQ(status.state, 9);
        EXPECT_EQ(status.message, "");
        auto byOptions = Features(job);
        auto byTicket = Features(jobNumber(tool));
        for (const auto& [keyword, value] : byOptions) {
            // The list is sent as it is and as a dynamic option.
            EXPECT_EQ(byOptions.count(keyword), keyword == "*QVCurveAdjust" ? 2U : 1U) << keyword;
        }
        EXPECT_EQ(byOptions.count("*Collate"), 1U) << "the print server's own";
        for (auto* features : {&byOptions, &byTicket}) {
            for (const char* own :
                 {"*PageSize", "*PageRegion", "*Collate", "*QVControlBar", "*QVPrintSize"}) {
                features->erase(own);
            }
            features->erase("*QVSourceAppType");
        }
        EXPECT_EQ(byOptions, byTicket);
        const std::string printed = sandbox->Printed(job);
        EXPECT_THAT(printed, HasSubstr("%%ZANCustom1: shelf 4, \"left\" (\\) 50%n"));
        EXPECT_THAT(printed, HasSubstr("%%MacCoreNUp: true"));
        EXPECT_THAT(printed, HasSubstr("Helvetica-Bold"));
        Drawn(job, "nullpage");
    }
}

TEST_F(Options, TheStateOfAJobTellsWhatItsOptionsCouldNotHave) {
    AddQueue("Remarked");
    const std::pair<std::string, std::string> saddle{"QVStaple", "Saddle"}, half{"QVFoldStyle", "Half"};
    // The server reads 2,047 bytes of a line, and what follows as the next message.
    const auto injected = [](const std::string& level) {
        const std::string before = level + ": Printed by its options: QVStaple does not offer ";
        return std::string(2047 - before.size(), 'A') + "PPD: QVInjected0000=x";
    };
    for (const auto& [options, state, message] :
         {std::tuple<JobOptions, int, std::string>{
              {saddle, half}, 9, "does not go together with *QVFoldStyle=Half"},
          {{saddle, half, {"torka-conflicts", "stop"}}, 6, "torka-conflicts=stop"},
          {{{"QVStaple", injected("DEBUG")}}, 9, "QVStaple does not offer AAA"},
          {{{"QVStaple", injected("WARNING")}}, 9, "QVStaple does not offer AAA"},
          {{{"Resume", "74915362"}}, 6, "Resume is protected"}}) {
        SCOPED_TRACE(message);
        const int job = Submit("Remarked", options);
        const JobStatus status = WaitForEnd(job);
        EXPECT_EQ(status.state, state);
        EXPECT_THAT(status.message, HasSubstr(message));
        EXPECT_EQ(sandbox->Printed(job).empty(), state == 6);
    }
    EXPECT_THAT(readFile(*sandbox / "etc/ppd/Remarked.ppd"), Not(HasSubstr("QVInjected")));
}

TEST_F(Options, ThatAPersonKeepsReachTheJobsOfEveryProgram) {
    AddQueue("Standing");
    const std::filesystem::path file = *sandbox / "etc/lpoptions"; // root's
    const std::string others =
        "Dest Gone QVStaple=Top\nDest Standing/big QVScale=200\nDefault Other sides=x\n";
    std::ofstream(file) << others << "Dest Standing copies=1 QVScale=70 page-left=\"1 2\"\n";
    const auto settings = [](const std::string& action, std::vector<std::string> texts = {}) {
        texts.insert(texts.begin(), {"settings", action, "-d", "Standing"});
        return runTool(texts);
    };
    const std::string note = "a \"b\" #c \\d {e '50%n";
    ASSERT_EQ(
        settings("set", {"QVStaple=Top", "QVScale=50", "*Notes1=" + note, "torka-conflicts=stop"}).status, 0);
    const CommandResult lp = runCommand({"lp", "-d", "Standing", samplePath("plain.ps")});
    ASSERT_EQ(lp.status, 0) << lp.errors;
    const int job = std::stoi(lp.output.substr(lp.output.find("Standing-") + 9));
    ASSERT_EQ(WaitForEnd(job).state, 9);
    const std::string printed = sandbox->Printed(job);
    EXPECT_THAT(printed, HasSubstr("%%ZANCustom1: " + note + "\n"));
    EXPECT_THAT(printed, HasSubstr("%%BeginFeature: *QVStaple Top\n"));
    EXPECT_THAT(printed, HasSubstr("%%BeginFeature: *QVScale 50\n"));

    const std::string kept = readFile(file);
    for (const auto& [setting, status, reason] :
         {std::tuple{"Resume=74915362", 1, "*Resume is a password or protected"},
          {"QVDSPassword=74915362", 1, "*QVDSPassword is a password or protected"},
          {"QVStaple=Nope", 2, "*QVStaple does not offer Nope (torka show lists its choices)"},
          {"QVNope=1", 2, "the description has no option *QVNope"},
          {"torka-conflicts=x", 2, "torka-conflicts takes print, resolve or stop"},
          {"QVGamma=1,8", 2, "*QVGamma takes a number, not 1,8"},
          {"torka-watermark=\xff", 2, "torka-watermark has a value that is no UTF-8"},
          {"Notes1=a\nb", 2, "control character"}}) {
        ExpectTool({"settings", "set", "-d", "Standing", "QVScale=60", setting}, status, reason);
    }
    EXPECT_EQ(readFile(file), kept);
    EXPECT_EQ(settings("show").output,
              "Notes1=" + note + "\nQVScale=50\nQVStaple=Top\ntorka-conflicts=stop\n");
    ExpectTool({"settings", "set", "-d", "Standing", "QVScale=5000"}, 1, "does not take 5000, but 400");
    EXPECT_THAT(settings("show").output, HasSubstr("QVScale=400\n")); // later jobs have nothing to tell
    EXPECT_THAT(settings("set", {"QVFoldStyle=Half", "QVStaple=Saddle", "QVScale=50"}).errors,
                HasSubstr("does not go together"));

    // Writers at the same time lose nothing of each other.
    std::vector<std::jthread> writers;
    const std::vector<std::string> texts{"QVGamma=1.8", "Notes2=x", "QVMirror=True", "QVNegative=True",
                                         "QVBleed=4.0"};
    for (const std::string& text : texts) {
        writers.emplace_back([&settings, &text] { EXPECT_EQ(settings("set", {text}).status, 0); });
    }
    writers.clear(); // waits for them
    for (const std::string& text : texts) {
        EXPECT_THAT(settings("show").output, HasSubstr(text));
    }
    EXPECT_EQ(settings("clear", {"QVGamma"}).status, 0);
    EXPECT_THAT(settings("show").output, testing::AllOf(Not(HasSubstr("QVGamma")), HasSubstr("QVScale=50")));
    EXPECT_EQ(settings("clear").status, 0);
    EXPECT_EQ(readFile(file), others + "Dest Standing copies=1 page-left=\"1 2\"\n");
    // Settings of a description that the queue had before.
    for (const bool isNamed : {true, false}) {
        std::ofstream(file) << others
                            << "Dest Standing copies=1 QVGone=1 ZANPrintTime=x Tray=y page-left=\"1 2\"\n";
        const CommandResult shown = settings("show");
        EXPECT_EQ(shown.status, 1);
        EXPECT_EQ(shown.output, "QVGone=1\nZANPrintTime=x\n");
        EXPECT_THAT(shown.errors, HasSubstr("QVGone is not in this description"));
        EXPECT_EQ(settings("clear", {"copies"}).status, 2);
        EXPECT_EQ(settings("clear", isNamed ? std::vector<std::string>{"*qvgone", "ZANPrintTime", "Tray"}
                                            : std::vector<std::string>())
                      .status,
                  0);
        EXPECT_EQ(readFile(file),
                  others + "Dest Standing copies=1 page-left=\"1 2\"" + (isNamed ? "\n" : " Tray=y\n"));
    }
    std::filesystem::remove(file);
    std::filesystem::create_directory(file); // no file that can be read
    for (const auto& [action, text] :
         {std::pair{"show", "--json"}, {"clear", "QVGone"}, {"set", "QVScale=50"}}) {
        ExpectTool({"settings", action, "-d", "Standing", text}, 2, "etc/lpoptions: Is a directory");
    }
    std::filesystem::remove(file);
    std::filesystem::remove(file);
}

} // namespace

} // namespace torka::tests
