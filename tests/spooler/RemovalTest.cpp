// SPDX-License-Identifier: Apache-2.0
#include "tests/spooler/SpliceCheck.h"

namespace torka::tests {

namespace {

const Ticket suppressing = makeTicket({{-9, "*QVDuplex"}, {-9, "*Tray"}});

} // namespace

TEST(Removal, FeatureCodeOfSuppressedKeywords) {
    // marked: the text between "<" and ">" is removed; lines end with "/"
    const std::pair<const char*, std::uint64_t> rows[] = {
        // In the setup, without a wrapper and in each spelling of the wrapper.
        {"%!PS/%%BeginSetup/<%%BeginFeature: *QVDuplex True/x/%%EndFeature/>y/%%EndSetup/", 1},
        {"%!PS/%%BeginSetup/<[{/%%BeginFeature: *QVDuplex True/x/%%EndFeature/} stopped "
         "cleartomark/>%%EndSetup/",
         1},
        {"%!PS/%%BeginSetup/< mark {/%%BeginFeature:*Tray\tB/x/%%EndFeature/}stopped  cleartomark />", 1},
        {"%!PS/%%BeginSetup/<[ {/%%BeginFeature *Tray/x/%%EndFeature/} stopped cleartomark>", 1},
        // A wrapper without an end, or with other text on its opening line, stays.
        {"%!PS/%%BeginSetup/[{/<%%BeginFeature: *Tray B/x/%%EndFeature/>}stopped{}if/", 1},
        {"%!PS/%%BeginSetup/q [{/<%%BeginFeature: *Tray B/x/%%EndFeature/>} stopped cleartomark/", 1},
        {"%!PS/%%BeginSetup/[{//<%%BeginFeature: *Tray B/x/%%EndFeature/>} stopped cleartomark/", 1},
        // Custom values of the keyword are removed; other keywords stay, including longer and shorter ones.
        {"%!PS/%%BeginSetup/<%%BeginFeature: *CustomTray True/x/%%EndFeature/>", 1},
        {"%!PS/%%BeginSetup/%%BeginFeature: *PageSize A4/x/%%EndFeature/%%BeginFeature: *Trays "
         "B/%%EndFeature/"
         "%%BeginFeature: *Tra B/%%EndFeature/%%BeginFeature: Tray "
         "B/%%EndFeature/%%BeginFeature:/%%EndFeature/",
         0},
        // In the prolog, behind the prolog, in the setup and in page setups; also requests for a feature.
        {"%!PS/%%BeginProlog/<[{/%%BeginFeature: *Tray B/%%EndFeature/} stopped cleartomark/>%%EndProlog/"
         "<%%IncludeFeature: *Tray B/>%%BeginSetup/<%%IncludeFeature: *QVDuplex/>%%IncludeFeature: "
         "*X/%%EndSetup/"
         "%%Page: 1 1/%%BeginPageSetup/<[{/%%BeginFeature: *Tray B/%%EndFeature/} stopped cleartomark/>"
         "%%EndPageSetup/y/%%Page: 2 2/%%BeginPageSetup/<%%IncludeFeature: *Tray C/>%%EndPageSetup/",
         5},
        // Not in page bodies, trailers, embedded documents, resources and data.
        {"%!PS/%%Page: 1 1/%%BeginFeature: *Tray B/%%EndFeature/%%BeginPageSetup/%%BeginDocument: e/"
         "%%BeginFeature: *Tray B/%%EndFeature/%%EndDocument/%%BeginResource: r/%%IncludeFeature: *Tray/"
         "%%EndResource/%%BeginData: 2 ASCII Lines/%%IncludeFeature: *Tray/%%IncludeFeature: *Tray/%%EndData/"
         "<%%IncludeFeature: *Tray/>%%EndPageSetup/%%IncludeFeature: *Tray/%%Trailer/%%IncludeFeature: "
         "*Tray/",
         1},
        // A request inside a block is removed with the block.
        {"%!PS/%%BeginSetup/<%%BeginFeature: *Tray B/%%IncludeFeature: *X/x/%%EndFeature/>", 1},
        // A block without an end stays whole and does not hide later blocks.
        {"%!PS/%%BeginSetup/[{/%%BeginFeature: *Tray B/x/%%EndSetup/%%Page: 1 1/%%BeginPageSetup/"
         "<%%IncludeFeature: *Tray/>",
         1},
        {"%!PS/%%BeginSetup/%%BeginFeature: *Tray A/x/<[{/%%BeginFeature: *Tray B/y/%%EndFeature/"
         "} stopped cleartomark/>%%EndSetup/",
         1},
        {"%!PS/%%BeginSetup/%%BeginFeature: *Tray A/x", 0},
    };
    for (const std::string lineEnd : {"\n", "\r", "\r\n"}) {
        for (const auto& [marked, blocks] : rows) {
            SCOPED_TRACE(marked);
            std::string document;
            std::string expected;
            bool isKept = true;
            for (const char* c = marked; *c != '\0'; ++c) {
                if (*c == '<' || *c == '>') {
                    isKept = *c == '>';
                    continue;
                }
                const std::string text = *c == '/' ? lineEnd : std::string(1, *c);
                document += text;
                expected += isKept ? text : "";
            }
            const Spliced result = splice(document, suppressing);
            EXPECT_EQ(result.text, expected);
            EXPECT_EQ(result.report.removed.at("*Tray") + result.report.removed.at("*QVDuplex"), blocks);
            EXPECT_EQ(result.report.bytesRemoved, document.size() - expected.size());
        }
    }
}

TEST(Removal, ABlockBeyondTheLimitIsLeftAndSaid) {
    const std::string filler(Splicer::featureLimit, 'x');
    const std::string document = "%!PS\n%%BeginSetup\n[{\n%%BeginFeature: *Tray B\n" + filler +
                                 "\n%%IncludeFeature: *Tray\n%%EndFeature\n} stopped cleartomark\n";
    const Spliced result = splice(document, suppressing, {997, 4096});
    std::string expected = document;
    expected.erase(expected.find("%%Include"), 24);
    EXPECT_TRUE(result.text == expected);
    ASSERT_FALSE(result.report.warnings.empty());
    EXPECT_NE(result.report.warnings[0].find("*Tray is left"), std::string::npos);
}

} // namespace torka::tests
