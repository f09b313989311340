// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/Commands.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "spooler/filter/QueueRecords.h"
#include "spooler/filter/ServerMessages.h"
#include "spooler/filter/TicketStore.h"
#include "spooler/filter/TwoWayFolder.h"
#include "tests/filter/FilterHarness.h"
#include "tests/support/SmallPPD.h"

#include <algorithm>
#include <chrono>
#include <cups/ppd.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>

// libcups marks its PPD functions as deprecated; the server's PPDs are read with them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

// Runs command jobs without a server, and checks the messages that carry records.

namespace torka::tests {

namespace {

using namespace filter;

constexpr const char* uuid = "5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";

FilterJob commandJob(const std::string& title) {
    FilterJob job;
    job.queue = "Proofs";
    job.user = "anna";
    job.title = title;
    return job;
}

int run(const std::string& title, const std::string& text) {
    FolderSource source(platform::system().Resolve(controllersFolder));
    return runCommand(commandJob(title), text, source);
}

std::optional<std::string> recordIn(const std::string& description, const std::string& name) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("q.ppd", description);
    const std::unique_ptr<ppd_file_t, void (*)(ppd_file_t*)> ppd(ppdOpenFile(path.c_str()), ppdClose);
    EXPECT_TRUE(ppd);
    std::size_t size = 0;
    const RecordBlock block = ppdxReadData(ppd.get(), name, &size);
    return block && size > 0 ? std::optional(std::string(block.get(), size)) : std::nullopt;
}

TEST(RecordMessages, HoweverManyArriveARecordIsWholeOrAbsent) {
    const std::string name = "QVRecordOfThirtySixCharacters0123456";
    ASSERT_EQ(name.size(), maximumRecordName);
    for (const std::size_t size : {1U, 100U, 158U, 3000U}) {
        const std::string before = noise(2000);
        const std::string after = noise(size + 1).substr(1);
        std::vector<std::string> messages;
        ASSERT_TRUE(recordMessages({{name, before}, {"QVOther", "other"}}, messages));
        std::string description = afterMessages(smallPPD + onlySheet("595 842"), messages);
        ASSERT_EQ(recordIn(description, name), before);
        ASSERT_EQ(recordIn(description, "QVOther"), "other");
        messages.clear();
        ASSERT_TRUE(recordMessages({{name, after}}, messages));
        for (std::size_t i = 0; i < messages.size(); ++i) {
            description = afterMessages(description, {messages[i]});
            const auto read = recordIn(description, name);
            EXPECT_EQ(read, i + 1 == messages.size() ? std::optional(after) : std::nullopt)
                << size << " " << i;
        }
    }
    std::vector<std::string> none;
    EXPECT_FALSE(recordMessages({{"bad name", "x"}, {"QV=x", "x"}, {"QVa\nPPD: b", "x"}}, none));
    EXPECT_TRUE(none.empty());
}

TEST(QueueRecords, StayBelowTheirMaximum) {
    FilterHarness harness;
    const std::string empty = smallPPD + onlySheet("595 842");
    std::string description = empty;
    // Returns why the records are refused; "" when the description holds them.
    const auto put = [&](std::vector<NamedPayload> records) {
        ::setenv("PPD", harness.root.Write("q.ppd", description).c_str(), 1);
        harness.Forget();
        const Result<void> result = putRecords("Proofs", std::move(records));
        ::unsetenv("PPD");
        description = afterMessages(description, harness.Messages());
        return result ? std::string() : result.Why().text;
    };
    const auto wouldHold = [&](const NamedPayload& record) {
        std::vector<std::string> messages;
        EXPECT_TRUE(recordMessages({record}, messages));
        const std::size_t bytes = afterMessages(description, messages).size() - empty.size();
        return "the queue's description would hold " + std::to_string(bytes) +
               " bytes of records, and may hold 1048576";
    };
    const NamedPayload large{"QVLarge", noise(400'000)};
    EXPECT_EQ(put({{"QVFirst", noise(500'000)}}), "");
    EXPECT_EQ(put({large}), wouldHold(large));
    EXPECT_TRUE(harness.Told().empty()) << "nothing is sent";
    EXPECT_EQ(put({{"QVFirst", noise(1000)}, large}), "");
    EXPECT_EQ(recordIn(description, "QVFirst"), noise(1000));
    // The chunks that the first record no longer needs are empty lines now, and count.
    const NamedPayload larger{"QVOther", noise(500'000)};
    EXPECT_EQ(put({larger}), wouldHold(larger));
    // What is too large already may still become smaller.
    std::vector<std::string> messages;
    ASSERT_TRUE(recordMessages({larger}, messages));
    description = afterMessages(description, messages);
    EXPECT_EQ(put({{"QVOther", noise(490'000)}}), "");
    EXPECT_NE(put({{"QVOther", noise(491'000)}}), "");
}

TEST(Commands, KeepTextsAsWideRecordsUnderTheirNames) {
    FilterHarness harness;
    const std::string text = "presets EFBBBF Größe 用紙 \xF0\x9F\x96\xA8";
    for (const auto& [title, record] :
         std::map<std::string, std::string>{{std::string("Command_ZANPrefs") + uuid, "QVDriverPreference"},
                                            {std::string("Command_WritePresetData") + uuid, "QVlocalPreset"},
                                            {"Command_PRINTERLOCALPRESETS", "QVlocalPreset"},
                                            {"command_PopupJnData", "QVPopupJnData"}}) {
        harness.Forget();
        EXPECT_EQ(run(title, text), 0) << title;
        const auto kept = recordIn(afterMessages(smallPPD, harness.Messages()), record);
        EXPECT_EQ(kept, std::string(payloadFromWide(wideFromUtf8(text)))) << title;
        EXPECT_EQ(run(title, ""), 1) << "nothing to keep";
    }
}

TEST(Commands, HostileTitlesAndTextsDoNothing) {
    FilterHarness harness;
    const std::filesystem::path outside = harness.root.Write("outside", "untouched");
    for (const std::string& title :
         {std::string(), std::string("Command_LocaleCode "), std::string("Command_LocaleCode\nERROR: x"),
          std::string("command_localecode"), std::string("Command_ZANPrefs"),
          "Command_ZANPrefs" + std::string(36, 'x'), std::string("Command_AllBidi../../x"),
          std::string("$(touch x)"), std::string("%n%s%99999999s"), std::string(100000, 'A')}) {
        harness.Forget();
        EXPECT_EQ(run(title, "text"), 1);
        EXPECT_TRUE(harness.Messages().back().starts_with("ERROR: ")) << harness.Told();
        EXPECT_EQ(std::ranges::count(harness.Messages().back(), '\n'), 1) << "a message stays one line";
    }
    for (const auto& [title, text] : std::vector<std::pair<std::string, std::string>>{
             {"Command_LocaleCode", "j"},
             {"Command_LocaleCode", "../../ja"},
             {"Command_LocaleCode", std::string(70000, 'a')},
             {"Command_PSQVDestination", "/Library/Caches/ZAN/.."},
             {"Command_PSQVDestination", ""},
             {"Command_PSQVDestination", "TorkaFilterNotes"},
             {"Command_PSQVDestination", "ConnectionErrorInfoFileA.txt"},
             {"Command_PSQVDestination", "zan_timeout_override.txt"},
             {"Command_PSQVDestination", "ZAN.x"},
             {"Command_PSQVDestination", ".x"},
             {"Command_PSQVDestination", "Team.owner"},
             {"Command_PSQVDestination", std::string(201, 'a')},
             {"Command_PSTempFileName", "/Library/Caches/ZAN/../../outside"},
             {"Command_WritePSTemp", "a ticket without a name"},
             {"Command_UpdateCommands", "no delimiters"},
             {"Command_UpdateCommands", "../x::DELIMIT::h::DELIMIT::a=b"},
             {std::string("Command_AllBidi") + uuid, "::DELIMIT::::DELIMIT::"}}) {
        EXPECT_EQ(run(title, text), 1) << title << " " << text.substr(0, 40);
    }
    EXPECT_EQ(run("Command_PSQVDestination", std::string(200, 'a')), 0);
    // An address is only a name in the controllers' folder; it cannot lead elsewhere.
    std::filesystem::create_directories(harness.root / "etc/torka/data");
    EXPECT_EQ(run(std::string("Command_AllBidi") + uuid, "A-1::DELIMIT::..::DELIMIT::"), 0);
    EXPECT_TRUE(PrivateFolder::Exists("ConnectionErrorInfoFileA-1.txt"));
    EXPECT_FALSE(std::filesystem::exists(harness.root / "var/cache/torka/queues/Proofs.bididata"));
    // The pane would wait in vain for a report that cannot be written: the job says so.
    std::filesystem::create_directories(harness.Cache("ConnectionErrorInfoFileA-2.txt") / "x");
    harness.Forget();
    EXPECT_EQ(run(std::string("Command_AllBidi") + uuid, "A-2::DELIMIT::..::DELIMIT::"), 1);
    EXPECT_NE(harness.Told().find("ERROR: "), std::string::npos) << harness.Told();

    FilterJob job = commandJob("Command_LocaleCode");
    job.queue = "../x";
    FolderSource source("/");
    EXPECT_EQ(runCommand(job, "ja", source), 1);
    EXPECT_EQ(readFile(outside), "untouched");
}

TEST(Commands, AnswerFromAFolderInTheLanguageThatWasAskedFor) {
    const FilterHarness harness;
    const std::filesystem::path place = harness.root / "etc/torka/controllers/10.0.0.5";
    for (const char* folder : {"data", "data.ja", "ppd"}) {
        std::filesystem::create_directories(place / folder);
    }
    harness.root.Write("etc/torka/controllers/10.0.0.5/data/QVTrayInfo", "trays");
    harness.root.Write("etc/torka/controllers/10.0.0.5/data/QVTonerInfo", "toner");
    harness.root.Write("etc/torka/controllers/10.0.0.5/data/not a name", "x");
    harness.root.Write("etc/torka/controllers/10.0.0.5/data.ja/QVTrayInfo", "トレイ");
    harness.root.Write("etc/torka/controllers/10.0.0.5/ppd/QVServerInfo.narrow", "narrow");
    const std::string text = "A-7::DELIMIT::10.0.0.5::DELIMIT::a=b";
    const std::filesystem::path data = harness.root / "var/cache/torka/queues/Proofs.bididata";
    const auto wideRecord = [&](const char* name) {
        std::size_t size = 0;
        const RecordBlock block = CFileHdlr::fileReadData(data, name, &size);
        return utf8FromWide(wideFromPayload({block.get(), size}));
    };
    ASSERT_EQ(run(std::string("Command_GetServerData") + uuid, text), 0) << harness.Told();
    EXPECT_EQ(wideRecord("QVTrayInfo"), "trays");
    EXPECT_NE(harness.Told().find("QVServerInfo0000="), std::string::npos);
    ASSERT_EQ(run("Command_LocaleCode", "ja"), 0);
    ASSERT_EQ(run("Command_UpdateCommands", text), 0);
    EXPECT_EQ(wideRecord("QVTrayInfo"), "トレイ");
    EXPECT_EQ(wideRecord("QVTonerInfo"), "toner");
    ASSERT_EQ(run("Command_UpdateCommands", text + "\r\nlocale=de\r\n"), 0);
    EXPECT_EQ(wideRecord("QVTrayInfo"), "trays") << "the request's own language stands above";
    ASSERT_EQ(run("Command_UpdateCommands", text + "\nlocale=../ppd\n"), 0);
    EXPECT_EQ(wideRecord("QVTrayInfo"), "トレイ") << "no language";
    EXPECT_FALSE(std::filesystem::exists(harness.root / "var/cache/torka/queues/Proofs.open"));
    EXPECT_EQ(std::filesystem::status(data).permissions(), std::filesystem::perms(0644));
    EXPECT_EQ(std::filesystem::status(data.parent_path()).permissions(), std::filesystem::perms(0755));

    // The command deletes this queue's files and reports, and nothing else.
    const std::filesystem::path other = data.parent_path() / "Finals.bididata";
    std::filesystem::copy_file(data, other);
    PrivateFolder::Write("zan_timeout_override.txt", "");
    EXPECT_EQ(run("Command_DeleteUpdateFiles",
                  "Finals.bididata\n/x/Proofs.bididata\r\n..\nzan_timeout_override.txt\n"
                  "../../../outside\nTorkaFilterNotes\n"),
              0);
    EXPECT_FALSE(std::filesystem::exists(data));
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_TRUE(PrivateFolder::Exists("zan_timeout_override.txt"));
    EXPECT_TRUE(PrivateFolder::Exists("TorkaFilterNotes"));
}

// The server reads a message in lines of 2,047 bytes at most, and takes what is behind for the next message.
TEST(Messages, StayLinesOfTheirLevelWhateverTheirTextIs) {
    FilterHarness harness;
    const std::string hostile = std::string(2040, 'A') + "PPD: QVStock0000=x";
    std::vector<std::string> texts{hostile, std::string(5000, '\xbf'), "a\nPPD: QVStock0000=x\x7f", ""};
    for (std::size_t before = 0; before < 3000; before += 7) { // "PPD:" at any place of a line
        texts.push_back(std::string(before, 'x') + "PPD: QVStock0000=x ATTR: marker-levels=1");
    }
    for (const std::string& text : texts) {
        for (const auto& [tellIt, level] :
             {std::pair{&tellError, "ERROR: "}, {&tellWarning, "WARNING: "}, {&tellDebug, "DEBUG: "}}) {
            harness.Forget();
            tellIt(text);
            std::string whole; // what the log holds of it
            const std::vector<std::string> messages = harness.Messages();
            for (const std::string& message : messages) {
                EXPECT_LT(message.size(), 1023U);
                EXPECT_EQ(message.find('\n'), message.size() - 1);
                const bool isLast = &message == &messages.back();
                EXPECT_TRUE(message.starts_with(isLast ? level : "DEBUG: ")) << message;
                if (!isLast || whole.empty() || level == std::string("DEBUG: ")) {
                    whole += message.substr(message.find(' ') + 1, message.size() - message.find(' ') - 2);
                }
            }
            EXPECT_EQ(whole.size(), text.size());
        }
    }
    for (const auto& [bytesBefore, whole] : {std::pair{0, 450}, {1, 449}, {2, 449}}) {
        std::string shown(static_cast<std::size_t>(bytesBefore), 'x');
        for (int i = 0; i < whole; ++i) {
            shown += "ü";
        }
        harness.Forget();
        tellWarning(shown + "üü");
        EXPECT_EQ(harness.Told(), "DEBUG: " + shown + "\nDEBUG: üü\nWARNING: " + shown + " ...\n");
    }
}

TEST(TwoWayFolder, KeepsTheNewestAnswersOfAQueueForAnHour) {
    const FilterHarness harness;
    const std::filesystem::path folder = harness.root / "var/cache/torka/queues";
    std::filesystem::create_directories(folder);
    std::set<std::string> kept;
    const auto put = [&](const std::string& name, std::chrono::seconds age, bool stays) {
        std::ofstream(folder / name) << "x";
        std::filesystem::last_write_time(folder / name, std::filesystem::file_time_type::clock::now() - age);
        if (stays) {
            kept.insert(name);
        }
    };
    for (int i = 0; i < 103; ++i) { // ages in another order than names
        const int older = i * 37 % 103;
        put("Proofs#" + std::to_string(i) + ".bididata", std::chrono::seconds(10 + older), older < 100);
    }
    put("Finals#1.bididata", std::chrono::minutes(59), true);
    put("Finals#2.bididata", std::chrono::minutes(61), false);
    put("Finals.bididata", std::chrono::hours(48), true);
    put(".torka-young", std::chrono::minutes(9), true);
    put(".torka-old", std::chrono::minutes(11), false);
    sweepTwoWayFolder();
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        left.insert(entry.path().filename());
    }
    EXPECT_EQ(left, kept);
}

} // namespace

} // namespace torka::tests
