// SPDX-License-Identifier: Apache-2.0
#include "tests/e2e/ServerData.h"

#include <gmock/gmock.h>

#include <map>

// The commands about queues, in a good world and in bad ones.

namespace torka::tests {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

class QueueCommands : public ServerData {
protected:
    // The findings' states and remedies, "STATE: REMEDY"; the worst one when there are several of one kind.
    static std::map<std::string, std::string> Findings(const std::string& queue) {
        const nlohmann::json answer = runToolForJson({"queue", "check", queue}, 1); // senders' names are open
        std::map<std::string, std::string> found;
        for (const nlohmann::json& finding : answer["findings"]) {
            const std::string state = finding["state"].get<std::string>();
            std::string& kept = found[finding["what"].get<std::string>()];
            if (kept.empty() || state == "fault") {
                kept = state + ": " + finding["remedy"].get<std::string>();
            }
        }
        return found;
    }
    static std::function<void()> Run(const std::vector<std::string>& command) {
        return [command] { EXPECT_EQ(runCommand(command).status, 0); };
    }
    static std::function<void()> Move(const fs::path& from, const fs::path& to) {
        return [from, to] { fs::rename(from, to); };
    }
    static std::function<void()> Allow(const fs::path& place, unsigned mode) {
        return [place, mode] { fs::permissions(place, fs::perms(mode)); };
    }
    static void SetAddress(const std::string& address) {
        Done({"address", "set", "-d", "Well", "Well", address, "--two-way"});
    }
};

TEST_F(QueueCommands, ListAddAndRemove) {
    Done({"queue", "add", "Kept", "torkasink:/", samplePath("torka-production.ppd")});
    ASSERT_EQ(runCommand({"lpadmin", "-p", "Plain", "-v", "torkasink:/", "-E"}).status, 0);
    std::map<std::string, nlohmann::json> queues;
    const nlohmann::json listed = runToolForJson({"queue", "list"});
    for (const nlohmann::json& queue : listed["queues"]) {
        queues[queue["name"].get<std::string>()] = queue;
    }
    EXPECT_EQ(queues["Kept"]["torkafilter"], true);
    EXPECT_EQ(queues["Kept"]["device"], "torkasink:/");
    EXPECT_EQ(queues["Kept"]["state"], "idle");
    EXPECT_NE(queues["Plain"]["torkafilter"], true);
    // What a shell's Tab key offers: queues, and the choices of the queue's own description.
    std::vector<std::string> line{"complete", "words", "torka", "print", "-d", "Ke"};
    EXPECT_THAT(runTool(line).output, StartsWith("Kept\t"));
    line.back() = "Kept";
    line.insert(line.end(), {"brochure.ps", "QVStaple=Sad"});
    EXPECT_EQ(runTool(line).output, "QVStaple=Saddle\tSaddle Stitch\n");
    Done({"queue", "remove", "Plain"});
    EXPECT_EQ(ExpectTool({"queue", "remove", "Plain"}, 2, "").errors,
              "torka: the print server has no queue Plain\n");
    ExpectTool({"queue", "remove", ""}, 2, "");
    EXPECT_THAT(runTool({"queue", "list"}).output, HasSubstr("\n  Kept "));
}

TEST_F(QueueCommands, AddRefusesWhatNobodyCanUse) {
    const TemporaryFolder folder;
    const std::string good = samplePath("torka-production.ppd");
    const std::string withErrors = folder.Write("lines.ppd", "*PPD-Adobe: \"4.3\"\n*Foo: \"x").string();
    const fs::path filter = *sandbox / "lib/filter/torkafilter";
    const fs::path away = filter.string() + "-away";
    const std::string sink = "torkasink:/";
    const struct {
        std::string reason;
        std::string device;
        std::string description;
        std::function<void()> spoil = [] {};
        std::function<void()> mend = [] {};
    } rows[] = {
        {"programs that read it with CUPS cannot", sink, samplePath("torka-defects.ppd")},
        {"errors, the first of them", sink, withErrors},
        {"does not add the queue", "nosuch:/", good},
        {"torkafilter is not installed", sink, good, Move(filter, away), Move(away, filter)},
        {"can be replaced by others than root", sink, good, Allow(filter, 0777), Allow(filter, 0755)}};
    for (const auto& row : rows) {
        row.spoil();
        ExpectTool({"queue", "add", "Bad", row.device, row.description}, 2, row.reason);
        row.mend();
        EXPECT_EQ(ExpectTool({"queue", "check", "Bad"}, 2, "").errors,
                  "torka: the print server has no queue Bad\n");
    }
}

TEST_F(QueueCommands, AddKeepsTheRecordsOfTheQueueAndNamesTheFiltersThatItReplaces) {
    const TemporaryFolder folder;
    const std::string sample = readFile(samplePath("torka-production.ppd"));
    const std::string lineOf = "*cupsFilter: \"application/vnd.cups-postscript 0 ";
    const std::string former =
        folder.Write("former.ppd", replaced(sample, "\n", "\n" + lineOf + "before\"\n"));
    const std::string given = folder.Write("given.ppd", replaced(sample, "\n", "\n" + lineOf + "gone\"\n"));
    std::string presets; // of several chunks
    for (unsigned i = 1; i < 3000; ++i) {
        presets += static_cast<char>('!' + i * i * 7919 % 90);
    }
    const auto put = [](const std::string& file, const char* name, const std::string& text) {
        ASSERT_EQ(runTool({"record", "put", file, name}, {}, text).status, 0);
    };
    put(former, "QVlocalPreset", presets);
    // An older state of one record, of more chunks; the same state of another; one of its own.
    put(former, "QVPopupJnData", "former");
    put(given, "QVPopupJnData", presets);
    put(former, "QVSame", "same");
    put(given, "QVSame", "same");
    put(given, "QVOwn", "own");
    put(former, "QVInvalidPrinterAddress", "yes");
    std::ofstream(former, std::ios::app) << "*QVlocalPreset00ff: AAAA\n"; // left from a longer record
    ASSERT_EQ(runCommand({"lpadmin", "-p", "Kept2", "-v", "torkasink:/", "-E", "-P", former}).status, 0);
    const CommandResult added = ExpectTool({"queue", "add", "Kept2", "torkasink:/", given}, 1,
                                           "torkafilter takes application/vnd.cups-postscript in place of");
    EXPECT_THAT(added.errors, testing::AllOf(HasSubstr("before"), HasSubstr("gone"),
                                             HasSubstr(": the record QVPopupJnData of " + given + " is not"),
                                             testing::Not(HasSubstr("QVSame"))));
    EXPECT_THAT(added.output, HasSubstr("former description: 2 (QVlocalPreset, QVPopupJnData)\n"));
    const std::string kept = *sandbox / "etc/ppd/Kept2.ppd";
    EXPECT_EQ(Done({"record", "get", kept, "QVlocalPreset"}), presets);
    EXPECT_EQ(Done({"record", "get", kept, "QVPopupJnData"}), "former");
    EXPECT_EQ(Done({"record", "get", kept, "QVSame"}) + Done({"record", "get", kept, "QVOwn"}), "sameown");
    EXPECT_THAT(readFile(kept), testing::Not(testing::ContainsRegex(
                                    "QVlocalPreset00ff|QVPopupJnData0002|QVInvalidPrinterAddress")));
    Done({"queue", "add", "Kept2", "torkasink:/", samplePath("torka-production.ppd")});
    const std::string copy = folder.Write("copy.ppd", readFile(kept));
    put(copy, "QVOwn", "older");
    ExpectTool({"queue", "add", "Kept2", "torkasink:/", copy}, 1, "the record QVOwn of");
    EXPECT_EQ(Done({"record", "get", kept, "QVOwn"}), "own");
}

TEST_F(QueueCommands, PrintSendsNothingWhereTheSettingsWouldBeLost) {
    const TemporaryFolder folder;
    const fs::path filters = *sandbox / "lib/filter";
    const std::string own = filters / "torkafilter";
    for (const auto& [name, command] : {std::pair{"officefilter", own + " \"$@\""}, {"plain", "cat $6"}}) {
        std::ofstream(filters / name) << "#!/bin/sh\nexec " << command << "\n";
        fs::permissions(filters / name, fs::perms(0755));
    }
    const std::string own2 = "application/postscript 0 torkafilter";
    const std::string other = "*cupsFilter2: \"image/gif application/postscript 0 plain\"\n";
    // The values of lines *cupsFilter or *cupsFilter2, behind "application/vnd.cups-". What is printed shows
    // which line the server takes.
    const struct {
        std::vector<std::string> values;
        int status;
        std::string told;
        bool hasSettings = true;
        std::string otherLine = {};
        std::string form = "*cupsFilter";
    } rows[] = {
        {{}, 2, "torka queue add Lines torkasink:/ FILE.ppd"},
        {{"postscript 0 torkafilter"}, 2, "vnd.cups-command does not go through torkafilter"},
        {{"postscript 0 -", "command 0 torkafilter"}, 2, "vnd.cups-postscript does not go through"},
        {{"postscript 0 torkafilter", "command 0 torkafilter"},
         2,
         "vnd.cups-postscript does not",
         false,
         other},
        {{"postscript " + own2, "command " + own2}, 0, "", true, other, "*cupsFilter2"},
        {{"postscript\t0 \t" + own, "command\t0\tmaxsize(0) torkafilter"}, 0, ""},
        {{"postscript 0 officefilter", "command 0 torkafilter"}, 1, "loses its print settings unless"},
        {{"postscript 5 torkafilter", "postscript 4 plain", "command 0 torkafilter"},
         1,
         "through plain:",
         false},
        {{"postscript 4 torkafilter", "postscript 5 plain", "command 0 torkafilter"}, 0, ""},
        {{"postscript 5 plain", "postscript 5 torkafilter", "command 0 torkafilter"},
         1,
         "through plain:",
         false},
    };
    for (const auto& row : rows) {
        std::string text = "\n" + row.otherLine;
        for (const std::string& value : row.values) {
            text += row.form + ": \"application/vnd.cups-" + value + "\"\n";
        }
        const std::string description =
            folder.Write("lines.ppd", replaced(readFile(samplePath("torka-production.ppd")), "\n", text));
        ASSERT_EQ(runCommand({"lpadmin", "-p", "Lines", "-v", "torkasink:/", "-E", "-P", description}).status,
                  0);
        const int last = LastJob();
        const CommandResult said = ExpectTool(
            {"print", "-d", "Lines", samplePath("plain.ps"), "QVStaple=Saddle"}, row.status, row.told);
        EXPECT_EQ(LastJob() > last, row.status != 2);
        if (row.status != 2) {
            const std::string printed = sandbox->Printed(jobNumber(said.output));
            EXPECT_EQ(printed.find("%%BeginFeature: *QVStaple Saddle\n") != std::string::npos,
                      row.hasSettings)
                << text;
        }
        if (!row.otherLine.empty()) {
            runTool({"queue", "add", "Lines", "torkasink:/", description});
            EXPECT_THAT(readFile(*sandbox / "etc/ppd/Lines.ppd"),
                        HasSubstr("*cupsFilter2: \"application/vnd"));
            ExpectTool({"print", "-d", "Lines", samplePath("plain.ps"), "QVStaple=Saddle"}, 0, "");
        }
    }
}

TEST_F(QueueCommands, CheckFindsEachFaultWithItsRemedy) {
    AddQueue("Well");
    const auto expectGood = [](const std::vector<std::string>& kinds) {
        const auto findings = Findings("Well");
        for (const std::string& what : kinds) {
            EXPECT_THAT(findings.at(what), testing::StartsWith("good: ")) << what;
        }
        EXPECT_THAT(findings.at("sender-names"), testing::StartsWith("open: write AuthType"));
    };
    expectGood({"state", "description", "filter-lines", "filter", "folders"});

    const fs::path filter = *sandbox / "lib/filter/torkafilter";
    const fs::path caches = *sandbox / "root/var/cache/torka/ZAN";
    const fs::path cache = caches.parent_path();
    const fs::path keys = *sandbox / "root/var/lib/torka";
    const fs::path away = *sandbox / "root/away";
    const struct {
        std::string what;
        std::string finding; // its start
        std::function<void()> spoil;
        std::function<void()> mend;
    } rows[] = {
        {"state", "fault: cupsenable Well", Run({"cupsdisable", "Well"}), Run({"cupsenable", "Well"})},
        {"state", "fault: cupsaccept Well", Run({"cupsreject", "Well"}), Run({"cupsaccept", "Well"})},
        {"filter", "fault: install -o root", Move(filter, away), Move(away, filter)},
        {"filter", "fault: install -o root", Allow(filter, 0700), Allow(filter, 0755)},
        {"folders", "fault: chown lp", Allow(caches, 0777), Allow(caches, 0711)},
        {"folders", "fault: chown lp", Allow(caches, 0700), Allow(caches, 0711)},
        {"folders", "fault: install -d -o lp",
         [&] {
             fs::rename(caches, away);
             fs::permissions(cache, fs::perms(0555));
         },
         [&] {
             fs::permissions(cache, fs::perms(0755));
             fs::rename(away, caches);
         }},
        {"folders", "fault: move the file away",
         [&] {
             fs::rename(caches, away);
             std::ofstream(caches) << "no folder";
         },
         [&] {
             fs::remove(caches);
             fs::rename(away, caches);
         }},
        {"folders", "fault: chmod o+x", Allow(cache.parent_path(), 0700), Allow(cache.parent_path(), 0755)},
        {"keys", "fault: correct the file",
         [&] {
             fs::create_directories(keys / "ZAN");
             std::ofstream(keys / "ZAN/FieldKeys.plist") << "no keys";
         },
         [&] { fs::remove_all(keys); }},
        // From here on with two-way communication, which takes each check a second.
        {"address", "fault: torka address set", [] { SetAddress("no-such-host.invalid"); },
         [&] {
             Give("127.0.0.1", "data", "ServerInfo", "Press:ServerName\n");
             SetAddress("127.0.0.1");
             expectGood({"two-way"});
         }},
        {"two-way", "fault: torka address set", Move(*sandbox / "root/etc/torka", away),
         Move(away, *sandbox / "root/etc/torka")},
    };
    for (const auto& row : rows) {
        row.spoil();
        EXPECT_THAT(Findings("Well")[row.what], testing::StartsWith(row.finding));
        row.mend();
    }
    // Another queue, whose description has none of the filter's lines.
    ASSERT_EQ(runCommand({"lpadmin", "-p", "Foreign", "-v", "torkasink:/", "-E", "-P",
                          samplePath("torka-production.ppd")})
                  .status,
              0);
    EXPECT_THAT(Findings("Foreign")["filter-lines"], testing::StartsWith("fault: torka queue add Foreign"));
}

} // namespace

} // namespace torka::tests
