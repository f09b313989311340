// SPDX-License-Identifier: Apache-2.0
#include "spooler/SpliceFile.h"
#include "tests/spooler/SpliceCheck.h"

#include "tests/support/SmallPPD.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

#include <filesystem>

// Checks spliced documents with other programs: Ghostscript runs and draws them, and the print system's own
// filter for structured documents parses them.

namespace torka::tests {

namespace {

struct Printout {
    std::string output;
    std::string pages; // as pixels, one behind the other
};

Printout runGhostscript(const std::string& document) {
    const TemporaryFolder folder;
    const CommandResult result =
        runCommand({"gs", "-q", "-dBATCH", "-dNOPAUSE", "-dSAFER", "-sDEVICE=pgmraw", "-r18",
                    "-sOutputFile=-", "-sstdout=%stderr", folder.Write("in.ps", document)});
    EXPECT_EQ(result.status, 0) << result.errors;
    return {result.errors, result.output};
}

std::string feature(const std::string& keyword, const std::string& said) {
    return "%%BeginFeature: " + keyword + " x\n(" + said + ") =\n%%EndFeature\n";
}

const Ticket tellingTicket = makeTicket({{-9, "*Sys"},
                                         {504, "%%Orientation: Portrait\n"},
                                         {501, "%%ZANDriver\n"},
                                         {30, "%%ZANCustom1: a note (with parentheses\\\n"},
                                         {81, feature("*QVDuplex", "duplex")},
                                         {70, feature("*PageSize", "size")},
                                         {81, "(tray) ="},
                                         {71, "%%EndTorkaPreparse1: True\n(complete) =\n"}});
// The output of the setup's entries, with the output of the document's own setup between them.
std::string told(const std::string& own = "") { return "size\nduplex\ntray\n" + own + "complete\n"; }

std::string wrapped(const std::string& text) { return "[{\n" + text + "} stopped cleartomark\n"; }

// A page with a box at its number's place.
std::string page(int number) {
    return "%%Page: " + std::to_string(number) + " " + std::to_string(number) + "\n%%BeginPageSetup\n" +
           wrapped(feature("*Sys", "page system")) + "%%EndPageSetup\n" + std::to_string(number * 90) +
           " 100 box showpage\n";
}

const std::string prolog = "%%BeginProlog\n" + feature("*Sys", "prolog system") +
                           "/box { moveto 60 0 rlineto 0 60 rlineto -60 0 rlineto fill } def\n%%EndProlog\n";

} // namespace

TEST(Printing, GhostscriptDrawsTheSamePagesAndHearsTheSettings) {
    const std::string samples = TORKA_SOURCE_DIR "/samples/";
    std::string image = "/s 8 string def 8 32 8 [8 0 0 32 0 0] { currentfile s readstring pop } image\n";
    for (std::size_t i = 0; i < 8 * 32; ++i) {
        image += "%%Page: 9 9\n%%BeginSetup\n\r\x04"[i % 27];
    }
    image = "%%BeginData: " + std::to_string(image.size()) + " Binary Bytes\n" + image + "\n%%EndData\n";
    // An embedded document with a setup of its own.
    const std::string embedded =
        "save /showpage {} def\n%%BeginDocument: inner.eps\n%!PS-Adobe-3.0 EPSF-3.0\n"
        "%%BoundingBox: 0 0 99 99\n%%EndComments\n%%BeginSetup\n" +
        feature("*Sys", "inner system") + "%%EndSetup\n%%Page: 1 1\n9 9 box\nshowpage\n" +
        "%%EOF\n%%EndDocument\nrestore\n";
    const std::string start = "%!PS-Adobe-3.0\n%%Pages: (atend)\n%%EndComments\n";
    const std::string end = "%%Trailer\n%%Pages: 2\n%%EOF\n";
    const std::string setup =
        "%%BeginSetup\n" + wrapped(feature("*Sys", "system")) + feature("*Own", "own") + "%%EndSetup\n";
    std::string macDocument = start + prolog + setup + page(1) + page(2) + end;
    std::ranges::replace(macDocument, '\n', '\r');
    const std::string systemTalk = "page system\n";
    const std::tuple<const char*, std::string, std::string, std::string> rows[] = {
        {"structured", start + prolog + setup + page(1) + page(2) + end,
         "prolog system\nsystem\nown\n" + systemTalk + systemTalk, told("own\n")},
        {"carriage returns", macDocument, "prolog system\nsystem\nown\n" + systemTalk + systemTalk,
         told("own\n")},
        {"no setup", start + prolog + page(1) + page(2) + end, "prolog system\n" + systemTalk + systemTalk,
         told()},
        {"embedded document", start + prolog + setup + embedded + page(1) + end,
         "prolog system\nsystem\nown\ninner system\n" + systemTalk, told("own\n") + "inner system\n"},
        {"binary image",
         start + prolog + page(1) + "gsave 60 60 scale\n" + image + "grestore showpage\n" + end,
         "prolog system\n" + systemTalk, told()},
        {"no structure", "%!\n/n 3 def 1 1 n { 90 mul 90 moveto 50 0 rlineto stroke showpage } for\n", "",
         told()},
        {"brochure", readFile(samples + "brochure.ps"), "", told()},
        {"plain", readFile(samples + "plain.ps"), "", told()},
    };
    for (const auto& [name, document, toldBefore, toldAfter] : rows) {
        SCOPED_TRACE(name);
        const Spliced result = splice(document, tellingTicket);
        ASSERT_EQ(result.status, SpliceStatus::ok);
        const Printout before = runGhostscript(document);
        const Printout after = runGhostscript(result.text);
        EXPECT_FALSE(before.pages.empty());
        EXPECT_TRUE(before.pages == after.pages);
        EXPECT_EQ(before.output, toldBefore);
        EXPECT_EQ(after.output, toldAfter);
    }
}

TEST(Printing, TheSystemsOwnFilterWritesWhatIsRemovedAndReadsWhatIsSpliced) {
    const std::string pstops = "/usr/lib/cups/filter/pstops";
    if (!std::filesystem::exists(pstops)) {
        GTEST_SKIP() << "no " << pstops;
    }
    const TemporaryFolder folder;
    const auto option = [](const std::string& keyword, const std::string& section) {
        return "*OpenUI *" + keyword + ": PickOne\n*OrderDependency: 20 " + section + " *" + keyword +
               "\n*Default" + keyword + ": A\n*" + keyword + " A: \"(system " + keyword + " A) =\"\n*" +
               keyword + " B: \"(system " + keyword + " B) =\"\n*CloseUI: *" + keyword + "\n";
    };
    const std::string description =
        folder.Write("test.ppd", smallPPD + onlySheet("612 792", "Letter") + option("QVFirst", "Prolog") +
                                     option("QVSecond", "DocumentSetup") + option("QVThird", "PageSetup") +
                                     option("QVKept", "DocumentSetup") +
                                     "*CustomQVSecond True: \"pop (system custom) =\"\n" +
                                     "*ParamCustomQVSecond Val: 1 int 0 9\n");
    const std::string plain =
        "%!PS-Adobe-3.0\n%%Pages: 3\n%%EndComments\n%%Page: 1 1\n1 1 moveto showpage\n"
        "%%Page: 2 2\n2 2 moveto 90 90 lineto stroke showpage\n%%Page: 3 3\nshowpage\n%%EOF\n";
    const auto filter = [&](const std::string& document, const std::string& options) {
        const CommandResult result = runCommand({"env", "PPD=" + description, pstops, "1", "user", "title",
                                                 "1", options, folder.Write("in.ps", document)});
        EXPECT_EQ(result.status, 0) << result.errors;
        return result.output;
    };
    const std::string system = filter(plain, "QVFirst=B QVSecond=Custom.4 QVThird=B QVKept=B");
    Ticket ticket = tellingTicket;
    for (const char* keyword : {"*QVFirst", "*QVSecond", "*QVThird"}) {
        ticket.entries.push_back({-9, keyword});
    }
    const Spliced result = splice(system, ticket);
    EXPECT_EQ(runGhostscript(system).output, "system QVFirst B\nsystem QVKept B\nsystem custom\nsystem "
                                             "QVThird B\nsystem QVThird B\nsystem QVThird B\n");
    EXPECT_EQ(runGhostscript(result.text).output, told("system QVKept B\n"));
    EXPECT_EQ(result.report.removed.at("*QVThird"), 3U);

    // The result is still a structured document: the filter selects one page of three, and the header's
    // comments and the setup keep their places.
    const std::string second = filter(result.text, "page-ranges=2 QVKept=A");
    EXPECT_TRUE(runGhostscript(second).pages == runGhostscript(filter(plain, "page-ranges=2")).pages);
    const std::string header = second.substr(0, second.find("%%EndComments"));
    EXPECT_THAT(header, testing::HasSubstr("%%ZANDriver\n"));
    EXPECT_THAT(header, testing::HasSubstr("%%ZANCustom1: a note (with parentheses\\\n"));
    const std::size_t setup = second.find("%%BeginSetup");
    EXPECT_LT(setup, second.find("(duplex) ="));
    EXPECT_LT(second.find("(complete) ="), second.find("%%EndSetup"));
    EXPECT_LT(second.find("%%EndSetup"), second.find("%%Page:"));
}

// A setting that the device refuses costs that setting. A job without its protected notes does not print.
TEST(Printing, ARefusedSettingCostsThatSettingAlone) {
    const std::string start =
        "%!PS-Adobe-3.0\n%%EndComments\n%%BeginProlog\n/box { pop pop } def\n%%EndProlog\n";
    const std::string document =
        start + "%%BeginSetup\n(setup) =\n%%EndSetup\n" + page(1) + page(2) + page(3);
    const auto block = [](const char* keyword, const char* code) {
        return std::string("%%BeginFeature: ") + keyword + " x\n" + code + "\n%%EndFeature\n";
    };
    const std::string refused = "<</Policies <</NoSuchKey 0>> /NoSuchKey 1>> setpagedevice (after) =";
    const KeywordSet notes =
        unguardedNotes("*%ZANJobNote *QVCode/Code (a:b): 20|Alpha|SecPrint\r\n"
                       "*%ZANJobNote *QVFree/Password: 20|Alpha\n"
                       "*%ZANJobNote *QVOwn: 20|AESEncrypt|\"x\"\r*%ZANJobNote *Resume/R: 8\n"
                       "*%ZANJobNote\n*%ZANJobNote *DeptPassword/P: 8");
    EXPECT_EQ(notes, (KeywordSet{"*QVCode", "*QVOwn", "*Resume", "*DeptPassword"}));
    // told: before the document's own setup
    const std::tuple<const char*, std::string, std::string, bool> rows[] = {
        {"refused", block("*QVTray", refused.c_str()), "", true},
        {"page size", block("*PageSize", refused.c_str()), "", true},
        {"accepted", block("*QVTray", "(before) = 7 8 (%}) pop % } {"), "before\n", true},
        {"its stack", block("*QVTray", "7 8 (a\\)}) = stop"), "a)}\n", true},
        {"without a line end", "%%BeginFeature: *QVTray x\nfail\n%%EndFeature", "", true},
        {"protected note", block("*QVOwn", refused.c_str()), "", false},
        {"secure-print note", block("*QVCode", refused.c_str()), "", false},
        {"no feature", "fail\n", "", false},
        // Code that means something else inside a procedure stays as it is.
        {"open brace", block("*QVTray", "{ (1) = "), "", false},
        {"braces that cancel out", block("*QVTray", "} {"), "", false},
        {"reads the document", block("*QVTray", "currentfile 4 string readstring abc\npop = fail"), "abc\n",
         false},
        {"immediate name", block("*QVTray", "/n 7 def //n = fail"), "7\n", false},
    };
    for (const auto& [name, bytes, told, prints] : rows) {
        SCOPED_TRACE(name);
        Ticket ticket = makeTicket({{bytes.find("*PageSize") != std::string::npos ? 70 : 81, bytes}});
        EXPECT_NE(splice(document, ticket).text.find(bytes), std::string::npos);
        ticket.unguarded = notes;
        const Spliced result = splice(document, ticket);
        EXPECT_NE(result.text.find(bytes), std::string::npos) << result.text;
        const TemporaryFolder folder;
        const CommandResult run = runCommand({"gs", "-q", "-dBATCH", "-dNOPAUSE", "-dSAFER", "-sDEVICE=bbox",
                                              folder.Write("in.ps", result.text)});
        const std::string pages = "setup\npage system\npage system\npage system\n";
        if (prints) {
            EXPECT_EQ(run.output, told + pages);
        } else {
            EXPECT_EQ(run.output.find("setup\n"), std::string::npos) << run.output;
        }
    }
}

TEST(SpliceFile, WritesAWholeFileOrNone) {
    const TemporaryFolder folder;
    const std::string input = folder.Write("in.ps", "%!PS\n%%EndComments\nshowpage\n");
    const std::string output = folder.Write("out.ps", "earlier");
    const auto files = [&] {
        return std::distance(std::filesystem::directory_iterator(folder.Path()),
                             std::filesystem::directory_iterator());
    };
    const Ticket ticket = makeTicket({{81, "s"}});

    EXPECT_EQ(spliceFile(folder.Write("bad.ps", "%PDF-1.7\n"), ticket, output).status,
              SpliceStatus::notPostScript);
    EXPECT_EQ(spliceFile(folder / "none.ps", ticket, output).errorText,
              folder.Path().string() + "/none.ps: cannot be opened: No such file or directory");
    EXPECT_EQ(spliceFile(folder.Path(), ticket, output).status, SpliceStatus::readFailed);
    std::uint64_t read = 0;
    const auto stop = [&read](std::uint64_t bytes) { return (read = bytes) == 0; };
    EXPECT_EQ(spliceFile(input, ticket, output, stop).status, SpliceStatus::stopped);
    EXPECT_EQ(read, std::filesystem::file_size(input));
    EXPECT_EQ(readFile(output), "earlier");
    EXPECT_EQ(spliceFile(input, ticket, folder / "none/out.ps").status, SpliceStatus::writeFailed);
    EXPECT_EQ(spliceFile(input, ticket, "/dev/full").errorText,
              "/dev/full: the document cannot be written: No space left on device");
    EXPECT_EQ(files(), 3);

    EXPECT_EQ(spliceFile(input, ticket, output).status, SpliceStatus::ok);
    EXPECT_EQ(readFile(output), "%!PS\n%%EndComments\ns\nshowpage\n");
    EXPECT_EQ(spliceFile(input, ticket, input).status, SpliceStatus::ok) << "in place";
    EXPECT_EQ(readFile(input), readFile(output));
    EXPECT_EQ(files(), 3);
}

} // namespace torka::tests
