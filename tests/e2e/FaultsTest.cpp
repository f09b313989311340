// SPDX-License-Identifier: Apache-2.0
#include "tests/e2e/ServerData.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <set>
#include <sys/mount.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Faults of a print server while somebody waits: full disks, deleted queues, files that change, filters that
// are ended.

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
};

TEST_F(Faults, AFullDiskFailsTheCommandAndLeavesNoHalves) {
    AddQueue("Full");
    const std::filesystem::path folder = *sandbox / "root/var/cache/torka";
    const auto ask = [](const char* address) {
        return std::vector<std::string>{"command", "send", "Full", "Command_AllBidi",
                                        std::string("A-1::DELIMIT::") + address + "::DELIMIT::"};
    };
    const std::string noSpace = "No space left on device";
    const auto names = [](const std::filesystem::path& place) {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(place)) {
            found.insert(entry.path().filename());
        }
        return found;
    };
    Give("10.0.0.20", "data", "TrayInfo", "small");
    Give("10.0.0.21", "data", "TrayInfo", noise(40'000));
    {
        const SmallDisk disk(folder, "64k");
        if (!disk.IsThere()) {
            GTEST_SKIP() << "no file system may be mounted here";
        }
        Done(ask("10.0.0.20"));
        const std::string before = readFile(folder / "queues/Full.bididata");
        ExpectTool(ask("10.0.0.21"), 1, noSpace);
        EXPECT_EQ(readFile(folder / "queues/Full.bididata"), before);
        EXPECT_EQ(names(folder / "queues"), std::set<std::string>{"Full.bididata"});
        Done(ask("10.0.0.20")); // the next command goes on
    }
    // A ticket, and a mailbox document.
    const SmallDisk disk(folder / "ZAN", "64k");
    Done({"command", "send", "Full", "Command_PSTempFileName",
          "/Library/Caches/ZAN/Torka.temp5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85"});
    ExpectTool({"command", "send", "Full", "Command_WritePSTemp", noise(100'000)}, 1, noSpace);
    for (const std::string& left : names(folder / "ZAN")) {
        EXPECT_FALSE(left.starts_with("Torka.temp") || left[0] == '.') << left;
    }
    const TemporaryFolder documents;
    const std::string document = readFile(samplePath("plain.ps")) + "% " + noise(100'000) + "\n";
    ExpectTool({"print", "-d", "Full", documents.Write("big.ps", document), "QVDestination=File",
                "QVMailboxName=big"},
               1, noSpace);
    EXPECT_FALSE(std::filesystem::exists(folder / "ZAN/big"));
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

// The server removes the description before it writes the new one. A reader must not report an absent record
// then, and must not take a part for the whole.
TEST_F(Faults, ADescriptionThatIsReplacedWhileItIsReadIsReadWhole) {
    AddQueue("Rewritten");
    const std::string rest = noise(20'000);
    const auto put = [&rest](int number) {
        Done({"command", "send", "Rewritten", "Command_ZANPrefs", std::to_string(number) + rest});
    };
    put(0);
    std::atomic<bool> isOver = false;
    std::string wrong;
    int reads = 0;
    std::thread reader([&] {
        for (int last = 0; !isOver; ++reads) {
            const std::string text = utf8FromWide(CPPDMsgHdlr(ppdPath, "DriverPreference").GetStringData());
            const int number = text.empty() ? -1 : text[0] - '0';
            if (number < last || text != std::to_string(number) + rest) {
                wrong += std::to_string(reads) + ": " + std::to_string(text.size()) + " characters, ";
            }
            last = std::max(last, number);
        }
    });
    for (int number = 1; number <= 6; ++number) {
        put(number);
    }
    isOver = true;
    reader.join();
    EXPECT_EQ(wrong, "");
    EXPECT_GT(reads, 5);
}

TEST_F(Faults, ADataFileThatGrowsIsReadWholeBehindItsLockAndToItsEndWithoutOne) {
    AddQueue("Growing");
    const std::filesystem::path data = twoWayPlace("Growing", dataFileSuffix);
    const std::filesystem::path lock = twoWayPlace("Growing", lockFileSuffix);
    const std::string payload = noise(60'000);
    Give("10.0.0.22", "data", "TrayInfo", payload);
    ASSERT_EQ(Ask(std::make_shared<CupsPrinter>("Growing"), "10.0.0.22"), ServerDataOutcome::read);
    const std::string text = readFile(data);
    for (const bool isLocked : {true, false}) {
        std::ofstream out(data, std::ios::binary);
        out << text.substr(0, 1000) << std::flush;
        if (isLocked) {
            std::ofstream(lock) << "";
        }
        const std::jthread writer([&] {
            for (std::size_t at = 1000; at < text.size(); at += 1000) {
                out << text.substr(at, 1000) << std::flush;
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            std::filesystem::remove(lock);
        });
        BidiDataFile file(paths, failure);
        EXPECT_TRUE(file.readBidiData());
        answer = file.getBidiDataCopy();
        const std::string read = Record("TrayInfo");
        EXPECT_TRUE(payload.starts_with(read));
        EXPECT_TRUE(!isLocked || read.size() == payload.size()) << read.size();
    }
}

// Filters that are ended in the middle of their work. They run without a server.

pid_t startFilter(const std::filesystem::path& root, const char* title, const std::filesystem::path& text,
                  const std::string& options = {}) {
    const pid_t child = fork();
    if (child != 0) {
        return child;
    }
    setpgid(0, 0);
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    setenv("CONTENT_TYPE", "application/vnd.cups-command", 1);
    setenv("PRINTER", "Q", 1);
    setenv("TORKA_SYSTEM_ROOT", root.c_str(), 1);
    execl(TORKA_BINARY_DIR "/bin/torkafilter", "Q", "1", "anna", title, "1", options.c_str(), text.c_str(),
          static_cast<char*>(nullptr));
    _exit(127);
}

int statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

// Ends a filter (below 0: its whole group) once something is seen of its work. False when it was over first.
bool endWhen(pid_t target, int signal, const std::function<bool()>& isSeen) {
    const pid_t child = std::abs(target);
    while (!isSeen()) {
        siginfo_t ended{};
        if (waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOHANG | WNOWAIT) != 0 ||
            ended.si_pid == child) {
            statusOf(child);
            return false;
        }
        usleep(100);
    }
    kill(target, signal);
    EXPECT_EQ(statusOf(child), signal) << "ended by it, as the server wants to see it";
    return true;
}

TEST(EndedFilter, CancelledRequestLeavesNoLockBehind) {
    const TemporaryFolder root;
    std::filesystem::create_directories(root / "etc/torka/controllers/10.0.0.30/data");
    root.Write("etc/torka/controllers/10.0.0.30/data/TrayInfo", noise(100'000));
    const std::filesystem::path request = root.Write("request", "A-1::DELIMIT::10.0.0.30::DELIMIT::");
    const std::filesystem::path lock = root / "var/cache/torka/queues/Q.open";
    int met = 0; // filters that were met while they held the lock
    for (int i = 0; i < 20 && met < 2; ++i) {
        const pid_t child =
            startFilter(root.Path(), "Command_AllBidi5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85", request);
        met +=
            endWhen(met % 2 == 0 ? child : -child, SIGTERM, [&lock] { return std::filesystem::exists(lock); })
                ? 1
                : 0;
        EXPECT_FALSE(std::filesystem::exists(lock));
        for (const auto& file : std::filesystem::directory_iterator(lock.parent_path())) {
            EXPECT_FALSE(file.path().filename().string().starts_with(".")) << file.path();
        }
    }
    EXPECT_GT(met, 0);
}

TEST(EndedFilter, KilledOneLeavesNoHalfTicketAndIsStartedAgain) {
    const std::string name = "Torka.temp5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";
    std::string text = noise(1'000'000);
    while (text.size() < 10'000'000) {
        text += text;
    }
    bool isMet = false;
    for (int i = 0; i < 20 && !isMet; ++i) {
        const TemporaryFolder root;
        const std::filesystem::path folder = root / "var/cache/torka/ZAN";
        std::filesystem::create_directories(folder);
        const std::filesystem::path ticket = root.Write("ticket", text);
        const auto start = [&] {
            return startFilter(root.Path(), "Command_WritePSTemp", ticket, "torka-ticket=" + name);
        };
        // While the text goes into a file of another name.
        isMet = endWhen(-start(), SIGKILL, [&folder] {
            const std::filesystem::directory_iterator files(folder);
            return std::any_of(begin(files), end(files), [](const std::filesystem::directory_entry& file) {
                std::error_code error;
                return file.path().filename().string().starts_with(".torka-") && file.file_size(error) > 0;
            });
        });
        if (isMet && !std::filesystem::exists(folder / name)) {
            EXPECT_EQ(statusOf(start()), 0);
        }
        EXPECT_TRUE(readFile(folder / name) == text);
    }
    EXPECT_TRUE(isMet);
}

} // namespace

} // namespace torka::tests
