// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/BidiFilePaths.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/commands/TicketCommands.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

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
    EXPECT_THAT(request->lines, ElementsAre(Pair("locale", "ja")));
    EXPECT_TRUE(parseUpdateRequest("a::DELIMIT::::DELIMIT::"));
    for (const std::string& refused :
         {std::string(), std::string("a::DELIMIT::b"), std::string("../a::DELIMIT::b::DELIMIT::"),
          std::string("::DELIMIT::b::DELIMIT::"), std::string(65, 'a') + "::DELIMIT::b::DELIMIT::",
          "a::DELIMIT::" + std::string(256, 'b') + "::DELIMIT::",
          "a::DELIMIT::b::DELIMIT::" + std::string(65536, 'c')}) {
        EXPECT_FALSE(parseUpdateRequest(refused)) << refused.substr(0, 80);
    }
}

// Only a ticket's two commands have a job option, its name.
TEST(Commands, AreSent) {
    const auto printer = std::make_shared<MemoryPrinter>();
    const std::string name = "Torka.temp5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";
    const std::string path = "/Library/Caches/ZAN/" + name;
    const std::string list = "<plist>\\u6f22</plist>";
    ASSERT_EQ(sendTicketAhead(printer, cfString(path), CFDataCreate(list.data(), list.size())), noErr);
    deleteFileCommandToCFF(printer, "Office.bididata\nOffice.open");
    EXPECT_TRUE(
        sendUpdateCommandToCFFWithCommand(printer, "ID", "host", "locale=en\n", "records=TrayInfo\n"));
    const std::vector<std::tuple<std::string, std::string, std::string>> expected{
        {"Command_PSTempFileName", path, name},
        {"Command_WritePSTemp", "<plist>\xE6\xBC\xA2</plist>", name},
        {"Command_DeleteUpdateFiles", "Office.bididata\nOffice.open", ""},
        {"Command_UpdateCommands", "ID::DELIMIT::host::DELIMIT::locale=en\nrecords=TrayInfo\n", ""}};
    ASSERT_EQ(printer->sent.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const MemoryPrinter::SentCommand& sent = printer->sent[i];
        std::string option;
        if (sent.options) {
            ASSERT_EQ(sent.options->Pairs().size(), 1U);
            const auto& [key, value] = sent.options->Pairs().front();
            EXPECT_EQ(utf8Text(key), ticketNameOption);
            option = utf8Text(cfCast<CFString>(value));
        }
        EXPECT_EQ(std::tuple(utf8Text(sent.title), utf8Text(sent.command), option), expected[i]);
    }
    printer->sendResult = kPMGeneralError;
    EXPECT_FALSE(sendUpdateCommandToCFFWithCommand(printer, "ID", "host", "", ""));
    EXPECT_FALSE(sendUpdateCommandToCFFWithCommand(nullptr, "ID", "host", "", ""));
}

TEST(Commands, ARequestHasANameOfItsOwn) {
    tests::ScopedMemorySystem system;
    ServerDataRequests requests;
    int resets = 0;
    const auto reset = [&resets] { ++resets; };
    const auto first = requests.Compose("host", "locale=en\n", "keys=*QVA\n", reset);
    EXPECT_EQ(requests.randomStringForBIDIFile(), "00000000-0000-4000-8000-000000000001");
    EXPECT_EQ(first.title, "Command_AllBidi00000000-0000-4000-8000-000000000002");
    EXPECT_EQ(first.text,
              "00000000-0000-4000-8000-000000000001::DELIMIT::host::DELIMIT::locale=en\nkeys=*QVA\n");
    system->minorVersion = 6;
    EXPECT_TRUE(requests.Compose("host", "", "", reset).title.starts_with("Command_GetServerData0"));
    EXPECT_EQ(resets, 0);
    static_cast<void>(requests.Compose("host2", "", "", reset));
    EXPECT_EQ(resets, 1);
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
