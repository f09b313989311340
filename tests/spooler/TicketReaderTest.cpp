#include "spooler/TicketReader.h"

#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace torka::tests {

namespace {

TicketResult readText(std::string_view text) {
    return readTicket({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

std::string list(std::string_view elements) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><array>" +
           std::string(elements) + "</array></plist>";
}

} // namespace

TEST(TicketReader, ReadsWhatPlistlibWrites) {
    const std::string file =
        runPython("import plistlib, sys\n"
                  "entries = [-9, b'*QVDuplex', 504, b'%%l\\n', 2**31 - 1, b'odd', -2**31, b'',\n"
                  "           81, bytes(range(256)) * 300, 30, b'', 900, 'päth'.encode()]\n"
                  "sys.stdout.buffer.write(plistlib.dumps(entries))\n");
    const TemporaryFolder folder;
    const TicketResult result = readTicketFile(folder.Write("ticket", file));
    ASSERT_FALSE(result.error) << result.error.text;
    std::string everyByte;
    for (int i = 0; i < 256 * 300; ++i) {
        everyByte += static_cast<char>(i % 256);
    }
    std::vector<std::pair<int, std::string>> entries;
    for (const TicketEntry& entry : result.ticket.entries) {
        entries.emplace_back(entry.site, entry.bytes);
    }
    EXPECT_THAT(entries,
                testing::ElementsAre(std::pair(-9, "*QVDuplex"), std::pair(504, "%%l\n"),
                                     std::pair(81, everyByte), std::pair(30, ""), std::pair(900, "päth")));
    ASSERT_EQ(result.ticket.warnings.size(), 2U);
    EXPECT_EQ(result.ticket.warnings[1].entry, 3U);
    EXPECT_EQ(result.ticket.warnings[1].text,
              "the site -2147483648 is not known; its 0 bytes are passed over");
}

TEST(TicketReader, WhatIsWrongIsToldWithTheEntry) {
    using Code = TicketError::Code;
    struct Row {
        std::string file;
        Code code;
        std::optional<std::size_t> entry;
        const char* text;
    };
    const std::string good = "<integer>81</integer><data>eA==</data>";
    const Row rows[] = {
        {"", Code::notAPropertyList, {}, "XML"},
        {"%!PS-Adobe-3.0", Code::notAPropertyList, {}, "XML"},
        {list(good).substr(0, 90), Code::notAPropertyList, {}, "XML"},
        {"<plist><dict/></plist>", Code::notAnArray, {}, "a dictionary"},
        {list(good + "<string>81</string><data/>"), Code::badSite, 1, "entry 1: the site is a string"},
        {list("<real>81</real><data/>"), Code::badSite, 0, "a real number"},
        {list("<integer>2147483648</integer><data/>"), Code::badSite, 0, "2147483648 does not fit"},
        {list(good + good + "<integer>-9</integer><string>x</string>"), Code::badData, 2, "entry 2:"},
        {list("<integer>81</integer><array/>"), Code::badData, 0, "an array, not data"},
        {list(good + "<integer>71</integer>"), Code::missingData, 1, "behind the site 71"},
        {list("<data>eA==</data><integer>81</integer>"), Code::badSite, 0, "the site is data"},
    };
    for (const Row& row : rows) {
        const TicketResult result = readText(row.file);
        EXPECT_EQ(result.error.code, row.code) << row.file;
        EXPECT_EQ(result.error.entry, row.entry) << row.file;
        EXPECT_THAT(result.error.text, testing::HasSubstr(row.text));
        EXPECT_TRUE(result.ticket.entries.empty());
    }
    EXPECT_TRUE(readText(list("")).ticket.entries.empty());
    EXPECT_FALSE(readText(list("")).error);
}

TEST(TicketReader, WhatIsTooLargeOrNoFileIsRefusedUnread) {
    using Code = TicketError::Code;
    const TemporaryFolder folder;
    const std::string large = folder.Write("large", list("<integer>81</integer><data>eA==</data>"));
    std::filesystem::resize_file(large, maximumTicketBytes + 1);
    EXPECT_EQ(readTicketFile(large).error.code, Code::tooLarge);
    EXPECT_EQ(readTicketFile(folder.Path()).error.code, Code::notARegularFile);
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(readTicketFile(pipe).error.code, Code::notARegularFile);
    const TicketResult missing = readTicketFile(folder / "missing");
    EXPECT_EQ(missing.error.code, Code::cannotRead);
    EXPECT_THAT(missing.error.text,
                testing::EndsWith("missing: cannot be opened: No such file or directory"));
}

} // namespace torka::tests
