// SPDX-License-Identifier: Apache-2.0
#include "tests/spooler/SpliceCheck.h"
#include "tests/support/TestSupport.h"

#include <map>

// Tests the places of entries in each kind of document. In the tables, "#" stands for the header entries in
// their order, "$" for those of the setup, and "^" for the closing entry. Lines end with "/".

namespace torka::tests {

namespace {

const Ticket fullTicket = makeTicket({{-9, "*QVDuplex"},
                                      {81, "s1"},
                                      {30, "%%n1"},
                                      {70, "size\n"},
                                      {900, "Library/Caches/ZAN/box"},
                                      {501, "%%d\n"},
                                      {81, "%%EndSetup\n"}, // counts as data
                                      {504, "%%l1\n"},
                                      {71, "c"},
                                      {504, "%%l2\n"}});

std::string expand(std::string_view pattern, const std::string& lineEnd) {
    const std::map<char, std::string> parts = {{'/', lineEnd},
                                               {'#', "%%l1\n%%l2\n%%d\n%%n1" + lineEnd},
                                               {'$', "size\ns1" + lineEnd + "%%EndSetup\n"},
                                               {'^', "c" + lineEnd}};
    std::string text;
    for (const char c : pattern) {
        const auto part = parts.find(c);
        text += part == parts.end() ? std::string(1, c) : part->second;
    }
    return text;
}

} // namespace

TEST(InjectionSites, AreThoseOfTheDocument) {
    const std::map<SitePlace, std::string> places = {{SitePlace::removal, "nowhere: removal"},
                                                     {SitePlace::headerComments, "header comments"},
                                                     {SitePlace::setup, "document setup"},
                                                     {SitePlace::setupEnd, "end of the document setup"},
                                                     {SitePlace::report, "nowhere: reported"}};
    const std::string page = readFile(TORKA_SOURCE_DIR "/docs/ticket.md");
    std::size_t row = page.find("| Site | Name | Place |");
    ASSERT_NE(row, std::string::npos);
    row = page.find("|---|\n", row) + 6;
    for (const InjectionSite& site : injectionSites) {
        const std::string expected = "| " + std::to_string(site.number) + " | " + std::string(site.name) +
                                     " | " + places.at(site.place) + " | ";
        EXPECT_EQ(page.substr(row, expected.size()), expected);
        row = page.find('\n', row) + 1;
    }
    EXPECT_EQ(page[row], '\n') << "no row more";
}

TEST(Placing, EachKindOfDocument) {
    using enum SplicePlace;
    const std::tuple<const char*, const char*, SplicePlace> rows[] = {
        // With a setup section, entries stand at its beginning and its end.
        {"%!PS-Adobe-3.0/%%Pages: 1/%%EndComments/%%BeginSetup/x/%%EndSetup/%%Page: 1 1/y/%%EOF/",
         "%!PS-Adobe-3.0/%%Pages: 1/#%%EndComments/%%BeginSetup/$x/^%%EndSetup/%%Page: 1 1/y/%%EOF/",
         documentSetup},
        // Sections without an end.
        {"%!PS/%%BeginSetup/x/%%Page: 1 1/y/", "%!PS/#%%BeginSetup/$x/^%%Page: 1 1/y/", documentSetup},
        {"%!PS/%%BeginSetup/x/%%Trailer/y/", "%!PS/#%%BeginSetup/$x/^%%Trailer/y/", documentSetup},
        {"%!PS/%%BeginSetup", "%!PS/#%%BeginSetup/$^", documentSetup},
        // Without a setup section, one is made behind the prolog or before the first page.
        {"%!PS/%%EndComments/%%BeginProlog/p/%%EndProlog/%%Page: 1 1/y/",
         "%!PS/#%%EndComments/%%BeginProlog/p/%%EndProlog/%%BeginSetup/$^%%EndSetup/%%Page: 1 1/y/",
         createdSetup},
        {"%!PS/%%EndComments/p/%%EndProlog/code/showpage/",
         "%!PS/#%%EndComments/p/%%EndProlog/%%BeginSetup/$^%%EndSetup/code/showpage/", createdSetup},
        {"%!PS/%%Title: (atend)/p/%%Page: 1 1/y/%%Page: 2 2/z/%%Trailer/%%Title: t/%%EOF/",
         "%!PS/%%Title: (atend)/#p/%%BeginSetup/$^%%EndSetup/%%Page: 1 1/y/%%Page: 2 2/z/%%Trailer/%%Title: "
         "t/%%EOF/",
         createdSetup},
        {"%!PS/%%EndComments/%%BeginProlog/p/%%Page: 1 1/y/",
         "%!PS/#%%EndComments/%%BeginProlog/p/%%BeginSetup/$^%%EndSetup/%%Page: 1 1/y/", createdSetup},
        // Without any structure, entries stand behind the header, which then needs an end.
        {"%!/100 100 moveto/showpage/", "%!/#%%EndComments/$^100 100 moveto/showpage/", afterHeader},
        {"%!PS-Adobe-3.0 EPSF-3.0/%%EndComments/code/%%EOF/",
         "%!PS-Adobe-3.0 EPSF-3.0/#%%EndComments/$^code/%%EOF/", afterHeader},
        {"%!", "%!/#%%EndComments/$^", afterHeader},
        {"%!PS/%%Title: no end", "%!PS/%%Title: no end/#%%EndComments/$^", afterHeader},
        // A blank behind "%", an empty line, code, or a section ends the header comments. "%x" and "%%+" do
        // not.
        {"%!PS/%x/%%T: a/%%+ b/% c/%%T: d/", "%!PS/%x/%%T: a/%%+ b/#%%EndComments/$^% c/%%T: d/",
         afterHeader},
        {"%!PS//%%T: d/", "%!PS/#%%EndComments/$^/%%T: d/", afterHeader},
        {"%!PS/%%Page: 1 1/y/", "%!PS/#%%BeginSetup/$^%%EndSetup/%%Page: 1 1/y/", createdSetup},
        // Entries stand behind the resources of an undeclared prolog, unless code precedes the resources.
        {"%!PS/%%BeginProcSet: p/d/%%EndProcSet/code/", "%!PS/#%%BeginProcSet: p/d/%%EndProcSet/$^code/",
         afterHeader},
        {"%!PS/%%EndComments/%%BeginProlog/%%BeginFont: f/d/%%EndFont/show/", // the prolog is declared
         "%!PS/#%%EndComments/$^%%BeginProlog/%%BeginFont: f/d/%%EndFont/show/", afterHeader},
        {"%!PS/draw/%%BeginFont: f/d/%%EndFont/show/",
         "%!PS/#%%EndComments/$^draw/%%BeginFont: f/d/%%EndFont/show/", afterHeader},
        // Job-language lines before "%!" stay unchanged.
        {"\x1b%-12345X@PJL JOB/@PJL SET X=%!/%%BeginSetup/@PJL ENTER LANGUAGE=POST$^RIPT/%!PS/%%EndComments/"
         "%%BeginSetup/%%EndSetup/\x1b%-12345X",
         "\x1b%-12345X@PJL JOB/@PJL SET X=%!/%%BeginSetup/@PJL ENTER LANGUAGE=POST$^RIPT/%!PS/#%%EndComments/"
         "%%BeginSetup/$^%%EndSetup/\x1b%-12345X",
         documentSetup},
        {"\x04\x1b%-12345X%!PS/%%EndProlog/%%Page: 1 1/",
         "\x04\x1b%-12345X%!PS/#%%EndProlog/%%BeginSetup/$^%%EndSetup/%%Page: 1 1/", createdSetup},
        // Comments in embedded documents, resources and data do not belong to the document.
        {"%!PS/%%EndComments/%%BeginResource: file a/%%EndProlog/%%BeginDocument: b/%%BeginSetup/%%Page: 1 1/"
         "%%BeginDocument: c/%%EndDocument/%%EndSetup/%%EndDocument/%%EOF/%%EndResource/%%BeginData: 3 Hex "
         "Lines/"
         "%%Page: 1 1/%%BeginSetup/0/%%EndData/%%BeginBinary: "
         "13/%%BeginSetup/%%EndBinary/%%BeginSetup/%%EndSetup/",
         "%!PS/#%%EndComments/%%BeginResource: file a/%%EndProlog/%%BeginDocument: b/%%BeginSetup/%%Page: 1 "
         "1/"
         "%%BeginDocument: c/%%EndDocument/%%EndSetup/%%EndDocument/%%EOF/%%EndResource/%%BeginData: 3 Hex "
         "Lines/"
         "%%Page: 1 1/%%BeginSetup/0/%%EndData/%%BeginBinary: "
         "13/%%BeginSetup/%%EndBinary/%%BeginSetup/$^%%EndSetup/",
         documentSetup},
        {"%!PS/%%BeginData: ?/%%BeginSetup/%%EndData/%%BeginSetup/%%EndSetup/",
         "%!PS/#%%BeginData: ?/%%BeginSetup/%%EndData/%%BeginSetup/$^%%EndSetup/", documentSetup},
        // A resource without an end does not hide the setup.
        {"%!PS/%%EndComments/%%BeginResource: file a/x/%%BeginSetup/%%EndSetup/",
         "%!PS/#%%EndComments/%%BeginResource: file a/x/%%BeginSetup/$^%%EndSetup/", documentSetup},
    };
    for (const std::string lineEnd : {"\n", "\r", "\r\n"}) {
        for (const auto& [lines, expected, setup] : rows) {
            const std::string_view document = lines;
            const bool isCounted =
                document.find("BeginBinary: 13") != std::string_view::npos; // requires one-byte line ends
            if ((isCounted && lineEnd == "\r\n") || (document == "%!" && lineEnd != "\n")) {
                continue;
            }
            SCOPED_TRACE(lines);
            const Spliced result = splice(expand(lines, lineEnd), fullTicket);
            EXPECT_EQ(result.status, SpliceStatus::ok);
            EXPECT_EQ(result.text, expand(expected, lineEnd));
            EXPECT_EQ(result.report.placed.at(81).place, setup);
            EXPECT_EQ(result.report.placed.at(81).entries, 2U);
            EXPECT_EQ(result.report.mailboxPaths, std::vector<std::string>{"Library/Caches/ZAN/box"});
        }
    }
}

TEST(Placing, TheDocumentedExampleIsTrue) {
    const std::string page = readFile(TORKA_SOURCE_DIR "/docs/ticket.md");
    std::size_t at = 0;
    const auto nextBlock = [&] {
        const std::size_t begin = page.find('\n', page.find("```", at)) + 1;
        const std::size_t end = page.find("```", begin);
        at = end + 3;
        return page.substr(begin, end - begin);
    };
    const std::string script = nextBlock();
    const std::string document = nextBlock();
    const std::string ticketFile = runPython(script);
    Result<Ticket> read =
        readTicket({reinterpret_cast<const std::uint8_t*>(ticketFile.data()), ticketFile.size()});
    ASSERT_TRUE(read) << read.Why().Line();
    read->unguarded.emplace();
    EXPECT_EQ(splice(document, *read).text, nextBlock());
}

TEST(Placing, EntriesNeverLeaveTheHeaderOrBecomeCode) {
    const Ticket ticket = makeTicket({{30, "%%ZANCustom1: two\r\nli\fnes quit\r% three\n"},
                                      {30, "name"},
                                      {30, ""},
                                      {504, "%%EndComments\n%!PS\n"}});
    const Spliced result = splice("%!PS\n%%EndComments\n", ticket);
    EXPECT_EQ(result.text,
              "%!PS\n%%+ %%EndComments\n%%+ %!PS\n%%ZANCustom1: two\r\n%%+ li nes quit\r%%+ % three\n"
              "%%+ name\n%%EndComments\n");
    EXPECT_EQ(result.report.warnings.size(), 3U);
    EXPECT_EQ(result.report.placed.at(30).entries, 3U);
}

// The setup follows the counted bytes at once, so that a count that is one off hides it.
TEST(Placing, ByteCountsFollowTheLineEndsOfTheDocument) {
    for (const std::string end : {"\r", "\n", "\r\n"}) {
        // When lines end with a carriage return, a line feed is data.
        const std::string data =
            (end == "\r" ? "\n%%BeginSetup" : "%%BeginSetup") + end + "%%EndSetup" + end + "x";
        const std::string head = "%!PS" + end + "%%EndComments" + end +
                                 "%%BeginData: " + std::to_string(data.size()) + " Binary Bytes" + end + data;
        const std::string tail = "%%EndSetup" + end;
        EXPECT_EQ(splice(head + "%%BeginSetup" + end + tail, makeTicket({{81, "s"}})).text,
                  head + "%%BeginSetup" + end + "s" + end + tail);
    }
}

TEST(Placing, LargeAndHostileDocuments) {
    const std::string filler(3 * Splicer::holdLimit, 'x');
    const Ticket ticket = makeTicket({{-9, "*F"}, {81, "s\n"}, {501, "%%d\n"}});
    // before: the part before the setup
    const std::tuple<std::string, std::string, const char*> rows[] = {
        // A document without structure within the buffer's limit counts as unstructured.
        {"%!PS\n%%d\n%%EndComments\n", filler + "\n%%Page: 1 1\n", "s\n"},
        {"%!PS\n%%d\n%%EndComments\n%%EndProlog\n", filler + "\n%%BeginSetup\n%%EndSetup\n",
         "%%BeginSetup\ns\n%%EndSetup\n"},
        // A declared prolog and a resource may have any length.
        {"%!PS\n%%d\n%%EndComments\n%%BeginProlog\n" + filler + "\n%%EndProlog\n%%BeginSetup\n",
         "%%EndSetup\n", "s\n"},
        {"%!PS\n%%d\n%%BeginFont: f\n" + filler + "\n%%EndFont\n%%EndProlog\n%%BeginSetup\n", "%%EndSetup\n",
         "s\n"},
        // A first line and a comment of extreme length; the longest comment that is read.
        {"%!PS" + filler + "\n%%d\n%%EndComments\n%%BeginSetup\n", "%%EndSetup\n", "s\n"},
        {"%!PS\n%%T: " + filler + "\n%%d\n%%EndComments\n%%EndProlog " +
             filler.substr(0, 2 * Splicer::lineLimit) + "\n%%EndProlog" +
             std::string(Splicer::lineLimit - 11, ' ') + "\n",
         "%%Page: 1 1\n", "%%BeginSetup\ns\n%%EndSetup\n"},
    };
    for (const auto& [before, after, setup] : rows) {
        SCOPED_TRACE(before.substr(0, 60));
        std::string document = before + after;
        document.erase(document.find("%%d\n"), 4);
        const Spliced result = splice(document, ticket, {997, 4096, 100'003});
        EXPECT_TRUE(result.text == before + setup + after);
    }
    // A count beyond the document, and a document with sections that are never closed.
    EXPECT_EQ(splice("%!PS\n%%BeginData: 99999999999999999999999\nx", ticket).text,
              "%!PS\n%%d\n%%EndComments\ns\n%%BeginData: 99999999999999999999999\nx");
    const std::string hidden = "%!PS\n%%EndComments\n%%BeginProlog\n%%BeginDocument: x\n";
    const Spliced left = splice(hidden + filler, ticket, {4096});
    EXPECT_EQ(left.status, SpliceStatus::entriesLeft);
    ASSERT_EQ(left.report.unplaced.size(), 1U);
    EXPECT_EQ(left.report.unplaced[0].entry, 1U);
    EXPECT_EQ(left.text.size(), hidden.size() + filler.size() + 4);
}

TEST(Placing, WhatIsNotPostScriptIsRefused) {
    for (const std::string document : {"", "%PDF-1.7\n%!PS\n", "\xC5\xD0\xD3\xC6 %!PS\n",
                                       "plain text\n%!PS\n", "@PJL ENTER\nx\n", "\n\n\n"}) {
        EXPECT_EQ(splice(document, makeTicket({{81, "s"}})).status, SpliceStatus::notPostScript) << document;
        EXPECT_EQ(splice(document, Ticket()).text, document) << "nothing to place, nothing to refuse";
    }
    const std::string endless = "@PJL\n" + std::string(2 * Splicer::prefixLimit, 'x');
    EXPECT_EQ(splice(endless + "\n%!PS\n", makeTicket({{81, "s"}}), {4096}).status,
              SpliceStatus::notPostScript);
    const Spliced odd = splice("%!PS\n", makeTicket({{12, "x"}, {-9, "not a keyword"}}));
    EXPECT_EQ(odd.text, "%!PS\n");
    EXPECT_EQ(odd.report.unplaced.size(), 2U);
}

} // namespace torka::tests
