// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/BidiFilePaths.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/commands/TicketCommands.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

TEST(Commands, TitlesNameTheirCommands) {
    const tests::ScopedMemorySystem system;
    const std::string uuid = "00000000-0000-4000-8000-000000000001";
    EXPECT_EQ(commandTitle(SpoolerCommand::zanPrefs), "Command_ZANPrefs" + uuid);
    EXPECT_EQ(commandTitle(SpoolerCommand::localeCode), "Command_LocaleCode");
    for (int i = 0; i <= static_cast<int>(SpoolerCommand::allBidi); ++i) {
        const auto command = static_cast<SpoolerCommand>(i);
        EXPECT_EQ(commandFromTitle(commandTitle(command)), command);
        EXPECT_EQ(commandFromTitle(commandTitle(command) + " "), std::nullopt);
    }
    for (const std::string& title :
         {std::string(), std::string("Command_ZANPrefs"), "Command_ZANPrefs" + uuid + "0",
          std::string("Command_PopupJnData"), "Command_LocaleCode" + uuid}) {
        EXPECT_EQ(commandFromTitle(title), std::nullopt) << title;
    }
}

TEST(Commands, RequestsComeApartAsTheyWereJoined) {
    const std::vector<RequestLine> lines = {
        {"locale", "en"}, {"", "x"}, {"a=b", "x"}, {"bad", "x\ny"}, {"r", "a=b"}};
    EXPECT_EQ(requestText(lines), "locale=en\nr=a=b\n");
    const std::vector<std::string> keywords = {"*QVOutProfile", "", "a,b", "*QVSimulation"};
    EXPECT_EQ(dynamicPPDKeys(keywords), "keys=*QVOutProfile,*QVSimulation\n");
    EXPECT_EQ(dynamicPPDKeys({}), "");

    const std::string text =
        updateRequestText("ID-1", "10.0.0.7::DELIM::DELIMIT::IT::", "locale=en\nlocale=ja\nx\r\n");
    EXPECT_EQ(text, "ID-1::DELIMIT::10.0.0.7::DELIMIT::locale=en\nlocale=ja\nx\r\n");
    const std::optional<UpdateRequest> request = parseUpdateRequest(text);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->identifier, "ID-1");
    EXPECT_EQ(request->printerAddress, "10.0.0.7");
    EXPECT_THAT(request->lines, testing::ElementsAre(testing::Pair("locale", "ja")));
    EXPECT_TRUE(parseUpdateRequest("a::DELIMIT::::DELIMIT::"));
    for (const std::string& refused :
         {std::string(), std::string("a::DELIMIT::b"), std::string("../a::DELIMIT::b::DELIMIT::"),
          std::string("::DELIMIT::b::DELIMIT::"), std::string(65, 'a') + "::DELIMIT::b::DELIMIT::",
          "a::DELIMIT::" + std::string(256, 'b') + "::DELIMIT::",
          "a::DELIMIT::b::DELIMIT::" + std::string(65536, 'c')}) {
        EXPECT_FALSE(parseUpdateRequest(refused)) << refused.substr(0, 80);
    }
}

// A pane that reads an answer to other questions shows another device's trays, or another person's presets.
TEST(Commands, OneAnswerServesEqualRequestsOnly) {
    const auto request = [](const char* host, const std::string& lines) {
        return *parseUpdateRequest(updateRequestText("ID", host, lines));
    };
    const std::string lines = "address=10.0.0.7\nlocale=en\nkeys=*QVOutProfile\nrecords=TrayInfo\n";
    const UpdateRequest asked = request("press", lines);
    EXPECT_TRUE(asksTheSame(asked, request("press", "more=x\n" + lines)));
    EXPECT_FALSE(asksTheSame(asked, request("proofer", lines)));
    for (const char* other : {"address=10.0.0.8", "locale=ja", "keys=", "records=TonerInfo", "user=bob"}) {
        const UpdateRequest different = request("press", lines + other + "\n");
        EXPECT_FALSE(asksTheSame(asked, different) || asksTheSame(different, asked)) << other;
    }
}

// Only a ticket's two commands have a job option, its name.
TEST(Commands, AreSent) {
    const auto printer = std::make_shared<MemoryPrinter>();
    const std::string list = "<plist>\\u6f22</plist>";
    ASSERT_EQ(sendTicketAhead(printer, cfString("/Library/Caches/ZAN/Torka.temp1"),
                              CFDataCreate(list.data(), list.size())),
              noErr);
    deleteFileCommandToCFF(printer, "Office.bididata\nOffice.open");
    EXPECT_TRUE(
        sendUpdateCommandToCFFWithCommand(printer, "ID", "host", "locale=en\n", "records=TrayInfo\n"));
    std::string sent;
    for (const MemoryPrinter::SentCommand& each : printer->sent) {
        const CFTypeRef name =
            each.options ? CFDictionaryGetValue(each.options, cfString(ticketNameOption)) : nullptr;
        for (const CFStringRef& text : {each.title, each.command, cfCast<CFString>(name)}) {
            sent += utf8Text(text) + "|";
        }
    }
    EXPECT_EQ(sent, "Command_PSTempFileName|/Library/Caches/ZAN/Torka.temp1|Torka.temp1|"
                    "Command_WritePSTemp|<plist>\xE6\xBC\xA2</plist>|Torka.temp1|"
                    "Command_DeleteUpdateFiles|Office.bididata\nOffice.open||"
                    "Command_UpdateCommands|ID::DELIMIT::host::DELIMIT::locale=en\nrecords=TrayInfo\n||");
    printer->sendResult = kPMGeneralError;
    EXPECT_FALSE(sendUpdateCommandToCFFWithCommand(printer, "ID", "host", "", ""));
    EXPECT_FALSE(sendUpdateCommandToCFFWithCommand(nullptr, "ID", "host", "", ""));
}

TEST(FilePaths, BesideThePPDAndInOneFolder) {
    tests::ScopedMemorySystem system;
    system->root = "/root";
    BidiFilePaths paths;
    ASSERT_TRUE(fillBidiFilePaths("/etc/cups/ppd/Office.ppd", paths));
    EXPECT_EQ(paths.dataFile, "/etc/cups/ppd/Office.bididata");
    EXPECT_EQ(paths.lockFile, "/etc/cups/ppd/Office.open");
    EXPECT_EQ(paths.bonjourFile, "/etc/cups/ppd/Office.bonjour");
    EXPECT_EQ(twoWayPlace(paths.dataFile), "/root/var/cache/torka/queues/Office.bididata");
    EXPECT_EQ(twoWayPlace("Office", lockFileSuffix), "/root/var/cache/torka/queues/Office.open");
    ASSERT_TRUE(fillBidiFilePaths("/tmp/645a2e", paths, "Office"));
    EXPECT_EQ(paths.dataFile, "/tmp/Office.bididata");
    const std::string longest = "/tmp/" + std::string(511 - 5 - 9, 'q') + ".ppd";
    ASSERT_TRUE(fillBidiFilePaths(longest, paths));
    EXPECT_EQ(paths.dataFile.size(), 511U);
    EXPECT_FALSE(fillBidiFilePaths("/q" + longest, paths));
    for (const char* queue : {"..", "a/b", "../../etc/passwd"}) {
        EXPECT_FALSE(fillBidiFilePaths("/tmp/x", paths, queue)) << queue;
        EXPECT_EQ(twoWayPlace(queue, ""), "") << queue;
    }
    EXPECT_FALSE(fillBidiFilePaths("/tmp/.ppd", paths));
    EXPECT_EQ(paths.dataFile, "");
    EXPECT_EQ(connectionErrorFile("AB-12"), "/Library/Caches/ZAN/ConnectionErrorInfoFileAB-12.txt");
    EXPECT_EQ(connectionErrorFile("../x"), "");

    const tests::TemporaryFolder folder;
    std::filesystem::create_symlink("real/Office.ppd", folder / "link");
    EXPECT_EQ(resolvedPPDPath((folder / "link").string()), (folder / "real/Office.ppd").string());
    EXPECT_EQ(resolvedPPDPath(folder.Write("plain", "").string()), (folder / "plain").string());
}

} // namespace
} // namespace torka
