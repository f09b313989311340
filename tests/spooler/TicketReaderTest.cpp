// SPDX-License-Identifier: Apache-2.0
#include "spooler/TicketReader.h"

#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace torka::tests {

namespace {

Result<Ticket> readText(std::string_view text) {
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
    const Result<Ticket> ticket = readTicketFile(folder.Write("ticket", file));
    ASSERT_TRUE(ticket) << ticket.Why().Line();
    std::string everyByte;
    for (int i = 0; i < 256 * 300; ++i) {
        everyByte += static_cast<char>(i % 256);
    }
    std::vector<std::pair<int, std::string>> entries;
    for (const TicketEntry& entry : ticket->entries) {
        entries.emplace_back(entry.site, entry.bytes);
    }
    EXPECT_THAT(entries,
                testing::ElementsAre(std::pair(-9, "*QVDuplex"), std::pair(504, "%%l\n"),
                                     std::pair(81, everyByte), std::pair(30, ""), std::pair(900, "päth")));
    ASSERT_EQ(ticket->warnings.size(), 2U);
    EXPECT_EQ(ticket->warnings[1].entry, 3U);
    EXPECT_EQ(ticket->warnings[1].text, "the site -2147483648 is not known; its 0 bytes are passed over");
}

TEST(TicketReader, WhatIsWrongIsToldWithTheEntry) {
    const std::string good = "<integer>81</integer><data>eA==</data>";
    const std::tuple<std::string, const char*, const char*> rows[] = {
        {"", "", "not an XML property list"},
        {"%!PS-Adobe-3.0", "", "not an XML property list"},
        {list(good).substr(0, 90), "", "not an XML property list"},
        {"<plist><dict/></plist>", "", "is a dictionary, a ticket is an array"},
        {list(good + "<string>81</string><data/>"), "entry 1", "the site is a string, not an integer"},
        {list("<real>81</real><data/>"), "entry 0", "a real number"},
        {list("<integer>2147483648</integer><data/>"), "entry 0", "2147483648 does not fit"},
        {list(good + good + "<integer>-9</integer><string>x</string>"), "entry 2", "a string, not data"},
        {list("<integer>81</integer><array/>"), "entry 0", "an array, not data"},
        {list(good + "<integer>71</integer>"), "entry 1", "behind the site 71"},
        {list("<data>eA==</data><integer>81</integer>"), "entry 0", "the site is data"},
    };
    for (const auto& [file, place, text] : rows) {
        const Result<Ticket> ticket = readText(file);
        ASSERT_FALSE(ticket) << file;
        EXPECT_EQ(ticket.Why().place, place) << file;
        EXPECT_THAT(ticket.Why().text, testing::HasSubstr(text));
    }
    EXPECT_TRUE(readText(list(""))->entries.empty());
}

TEST(TicketReader, WhatIsTooLargeOrNoFileIsRefusedUnread) {
    const TemporaryFolder folder;
    const std::string large = folder.Write("large", list("<integer>81</integer><data>eA==</data>"));
    std::filesystem::resize_file(large, maximumTicketBytes + 1);
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::pair<std::string, const char*> rows[] = {
        {large, "larger than 64 MiB, no ticket is"},
        {folder.Path(), "not a regular file"},
        {pipe, "not a regular file"},
        {folder / "missing", "cannot be opened: No such file or directory"}};
    for (const auto& [path, text] : rows) {
        EXPECT_EQ(readTicketFile(path).Why(), (Fault{text, path}));
    }
    const std::string broken = folder.Write("broken", list("<integer>81</integer>"));
    EXPECT_THAT(readTicketFile(broken).Why().Line(),
                testing::StartsWith(broken + ": entry 0: the list ends"));
}

} // namespace torka::tests
