// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/RecordWriter.h"
#include "tests/e2e/Noise.h"
#include "tests/e2e/ServerData.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <thread>

// Faults of a print server while somebody waits: full disks, deleted queues, files that change.

namespace torka::tests {

namespace {

// A folder of the sandbox with little room while this lives.
class SmallDisk {
public:
    SmallDisk(std::filesystem::path folder, const std::string& size)
        : place(std::move(folder))
        , mounted(mount("none", place.c_str(), "tmpfs", 0, ("size=" + size + ",mode=0711,uid=7").c_str()) ==
                  0) {}
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() {
        if (mounted) {
            umount(place.c_str());
        }
    }
    bool IsThere() const { return mounted; }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(place)) {
            names.push_back(entry.path().filename());
        }
        std::ranges::sort(names);
        return names;
    }

private:
    std::filesystem::path place;
    bool mounted;
};

class Faults : public ServerData {
protected:
    // Sends a command that the server holds until its release.
    static std::string SendHeld(CupsPrinter& printer, const std::string& text) {
        const std::string title = commandTitle(SpoolerCommand::zanPrefs);
        EXPECT_EQ(
            printer.SendCommand(cfString(text), cfString(title),
                                CFDictionaryCreate({{cfString("job-hold-until"), cfString("indefinite")}})),
            noErr);
        return title;
    }
    static void Release(const CupsPrinter& printer) {
        runCommand({"lp", "-i", std::to_string(printer.CommandJob()), "-H", "resume"});
    }
    // The reason that a failed job reports.
    static std::string Failure(const CommandResult& result) {
        EXPECT_EQ(result.status, 1) << result.output;
        return result.errors;
    }
};

TEST_F(Faults, AFullDiskFailsTheCommandAndKeepsWhatWasThere) {
    const PMPrinter printer = AddQueue("Full");
    const std::filesystem::path folder = *sandbox / "root/var/cache/torka";
    const SmallDisk disk(folder, "64k");
    if (!disk.IsThere()) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    Give("10.0.0.20", "data", "TrayInfo", "small");
    const auto ask = [&](const char* address) {
        return runTool({"command", "send", "Full", "Command_AllBidi",
                        std::string("A-1::DELIMIT::") + address + "::DELIMIT::"});
    };
    const CommandResult small = ask("10.0.0.20");
    ASSERT_EQ(small.status, 0) << small.errors;
    const std::string before = readFile(folder / "queues/Full.bididata");
    Give("10.0.0.21", "data", "TrayInfo", noise(40'000));
    EXPECT_NE(Failure(ask("10.0.0.21")).find("No space left on device"), std::string::npos);
    EXPECT_EQ(readFile(folder / "queues/Full.bididata"), before);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "queues")) {
        names.push_back(entry.path().filename());
    }
    EXPECT_EQ(names, std::vector<std::string>{"Full.bididata"}) << "neither a lock nor a part";
    EXPECT_EQ(ask("10.0.0.20").status, 0) << "the next command goes on";
}

TEST_F(Faults, AFullDiskLosesATicketWholly) {
    AddQueue("FullTickets");
    const SmallDisk disk(*sandbox / "root/var/cache/torka/ZAN", "64k");
    if (!disk.IsThere()) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    const std::string name = "Torka.temp5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";
    ASSERT_EQ(
        runTool({"command", "send", "FullTickets", "Command_PSTempFileName", "/Library/Caches/ZAN/" + name})
            .status,
        0);
    EXPECT_NE(Failure(runTool({"command", "send", "FullTickets", "Command_WritePSTemp", noise(100'000)}))
                  .find("No space left on device"),
              std::string::npos);
    const std::vector<std::string> names = disk.Names();
    EXPECT_EQ(
        std::ranges::count_if(
            names, [](const std::string& left) { return left.starts_with("Torka.temp") || left[0] == '.'; }),
        0);
    // A mailbox document that does not fit is absent, and the job reports it.
    const TemporaryFolder documents;
    const std::string document = readFile(samplePath("plain.ps")) + "% " + noise(100'000) + "\n";
    const CommandResult printed = runTool({"print", "-d", "FullTickets", documents.Write("big.ps", document),
                                           "QVDestination=File", "QVMailboxName=big"});
    EXPECT_EQ(printed.status, 1);
    EXPECT_NE(printed.errors.find("No space left on device"), std::string::npos) << printed.errors;
    EXPECT_FALSE(std::filesystem::exists(*sandbox / "root/var/cache/torka/ZAN/big"));
}

TEST_F(Faults, AWaitOutlivesARestartOfTheServer) {
    AddQueue("Restarted");
    CupsPrinter printer("Restarted");
    const std::string title = SendHeld(printer, "<plist/>");
    int questions = 0;
    EXPECT_TRUE(isJobComple(title, [&](const WaitProgress&) {
        ++questions;
        if (questions == 1) {
            sandbox->Stop();
        } else if (questions == 3) { // two had no answer
            sandbox->Start();
            Release(printer);
        }
    }));
    EXPECT_GE(questions, 3);
    EXPECT_EQ(utf8FromWide(CPPDMsgHdlr(ppdPath, "DriverPreference").GetStringData()), "<plist/>");
}

TEST_F(Faults, AQueueThatIsDeletedEndsTheWait) {
    AddQueue("Deleted");
    CupsPrinter printer("Deleted");
    const std::string title = SendHeld(printer, "<plist/>");
    setDestinationPPD("/before.ppd");
    int questions = 0;
    EXPECT_FALSE(isJobComple(title, [&questions](const WaitProgress&) {
        if (++questions == 1) {
            EXPECT_EQ(runCommand({"lpadmin", "-x", "Deleted"}).status, 0);
        }
    }));
    EXPECT_EQ(questions, 1) << "the next one finds neither job nor queue";
    EXPECT_EQ(destinationPPD(), "/before.ppd");
    EXPECT_EQ(sendCommandAndWait(std::make_shared<CupsPrinter>("Deleted"), "x", title),
              CommandOutcome::notSent);
}

TEST_F(Faults, ADescriptionThatIsReplacedDuringAWaitIsTheOneThatIsRead) {
    AddQueue("Replaced");
    CupsPrinter printer("Replaced");
    const std::string title = SendHeld(printer, "<plist/>");
    int questions = 0;
    EXPECT_TRUE(isJobComple(title, [&](const WaitProgress&) {
        if (++questions == 1) {
            const std::string other = samplePath("torka-production-ja.ppd");
            EXPECT_EQ(runTool({"queue", "add", "Replaced", "torkasink:/", other}).status, 0);
            Release(printer);
        }
    }));
    EXPECT_NE(readFile(destinationPPD()).find("*LanguageVersion: Japanese"), std::string::npos);
    EXPECT_EQ(utf8FromWide(CPPDMsgHdlr(destinationPPD(), "DriverPreference").GetStringData()), "<plist/>");
}

// The server removes the description before it writes the new one. A reader must not report an absent record
// then, and must not take a part for the whole.
TEST_F(Faults, ADescriptionThatIsReplacedWhileItIsReadIsReadWhole) {
    AddQueue("Rewritten");
    const auto put = [](int number) {
        EXPECT_EQ(runTool({"command", "send", "Rewritten", "Command_ZANPrefs",
                           std::to_string(number) + noise(20'000)})
                      .status,
                  0);
    };
    put(0);
    std::atomic<bool> isOver = false;
    std::string wrong;
    int reads = 0;
    std::thread reader([&] {
        for (int last = 0; !isOver; ++reads) {
            const std::string text = utf8FromWide(CPPDMsgHdlr(ppdPath, "DriverPreference").GetStringData());
            const int number = text.empty() ? -1 : text[0] - '0';
            if (number < last || text != std::to_string(number) + noise(20'000)) {
                wrong += std::to_string(reads) + ": " + std::to_string(text.size()) + " characters, ";
            }
            last = std::max(last, number);
        }
    });
    for (int number = 1; number <= 9; ++number) {
        put(number);
    }
    isOver = true;
    reader.join();
    EXPECT_EQ(wrong, "");
    EXPECT_GT(reads, 5);
}

TEST_F(Faults, ADataFileThatGrowsIsReadWholeBehindItsLockAndToItsEndWithoutOne) {
    AddQueue("Growing");
    const std::string payload = noise(60'000);
    std::string text;
    ASSERT_TRUE(encodeRecord("TrayInfo", payload.data(), payload.size(),
                             [&](std::string_view chunk, std::string_view base64) {
                                 text.append(chunk).append(": ").append(base64).append("\n");
                             }));
    const std::filesystem::path data = twoWayPlace("Growing", dataFileSuffix);
    const std::filesystem::path lock = twoWayPlace("Growing", lockFileSuffix);
    // The filter must own the folder, so that the filter has to make it.
    Give("10.0.0.22", "data", "TrayInfo", "first");
    ASSERT_EQ(runTool({"command", "send", "Growing", "Command_AllBidi", "A-1::DELIMIT::10.0.0.22::DELIMIT::"})
                  .status,
              0);
    for (const bool isLocked : {true, false}) {
        std::filesystem::remove(data);
        std::ofstream out(data, std::ios::binary);
        out << text.substr(0, 1000) << std::flush;
        if (isLocked) {
            std::ofstream(lock) << "";
        }
        std::thread writer([&] {
            for (std::size_t at = 1000; at < text.size(); at += 1000) {
                out << text.substr(at, 1000) << std::flush;
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            std::filesystem::remove(lock);
        });
        BidiDataFile file(paths, failure);
        EXPECT_TRUE(file.readBidiData());
        std::size_t size = 0;
        const RecordBlock block = RecordText(*file.getBidiDataCopy()).Read("TrayInfo", &size);
        ASSERT_TRUE(block);
        const std::string_view read(block.get(), size);
        EXPECT_TRUE(payload.starts_with(read));
        EXPECT_TRUE(!isLocked || read.size() == payload.size()) << read.size();
        writer.join();
    }
}

} // namespace

} // namespace torka::tests
