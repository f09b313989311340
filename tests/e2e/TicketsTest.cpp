// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/commands/TicketCommands.h"
#include "output/BundleIdentifier.h"
#include "platform/System.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"
#include "platform/posix/PosixSystem.h"
#include "tests/apps/Tool.h"
#include "tests/e2e/Sandbox.h"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cups/cups.h>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <sstream>
#include <thread>

// Each job prints with its own settings or not at all: many people at the same time, borrowed tickets, busy
// queues, killed filters.

namespace torka::tests {

namespace {

constexpr std::string_view notePrefix = "%%ZANCustom1: ";

class Tickets : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        platform::setSystem(std::make_unique<platform::PosixSystem>(platform::PosixSystemOptions{}));
    }
    void TearDown() override {
        cupsSetUser("root");
        std::filesystem::remove(*sandbox / "printed/release");
        platform::setSystem(nullptr);
        SandboxTest::TearDown();
    }

    static void AddQueue(const std::string& name, const std::string& uri = "torkasink:/") {
        const CommandResult result = runTool({"queue", "add", name, uri, samplePath("torka-production.ppd")});
        ASSERT_EQ(result.status, 0) << result.errors;
    }

    // Waits up to 20 seconds for the condition. Returns whether it became true.
    template <typename Condition>
    static bool WaitUntil(const Condition& condition) {
        for (int i = 0; i < 1000; ++i) {
            if (condition()) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return false;
    }
    static JobStatus WaitForEnd(int job) {
        WaitUntil([job] { return jobStatus(job).IsOver(); });
        return jobStatus(job);
    }

    // Sends a ticket with one note ahead of a job. Returns the ticket's path.
    static std::string SendTicket(const std::string& queue, const std::string& note) {
        const std::string path = "/Library/Caches/ZAN/Torka.temp" + platform::system().CreateUuidString();
        const std::string list =
            runPython("import plistlib, sys\n"
                      "sys.stdout.buffer.write(plistlib.dumps([30, sys.argv[1].encode()]))",
                      {std::string(notePrefix) + note});
        EXPECT_EQ(sendTicketAhead(std::make_shared<CupsPrinter>(queue), cfString(path),
                                  CFDataCreate(list.data(), list.size())),
                  noErr);
        return path;
    }
    static int Submit(const std::string& queue, const std::string& path, JobOptions options = {}) {
        options.emplace_back(ticketPathSetting, path);
        return *submitFile(queue, samplePath("plain.ps"), "proof", options);
    }
    // The notes in the job that reached the device.
    std::set<std::string> Notes(int job) const {
        std::set<std::string> notes;
        std::istringstream lines(sandbox->Printed(job));
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with(notePrefix)) {
                notes.insert(line.substr(notePrefix.size()));
            }
        }
        return notes;
    }

    // Keeps a queue of the device torkasink:/wait busy until Release.
    void Occupy(const std::string& queue) const {
        const TemporaryFolder folder;
        const std::string file =
            folder.Write("long.ps", "%!PS\n" + std::string(200'000, '%') + "\nshowpage\n");
        const int job = *submitFile(queue, file, "long", {});
        const std::filesystem::path part = *sandbox / ("printed/." + std::to_string(job) + ".part");
        EXPECT_TRUE(WaitUntil([&part] {
            std::error_code none;
            return std::filesystem::file_size(part, none) >= 65536 && !none;
        }));
    }
    void Release() const { std::ofstream(*sandbox / "printed/release") << ""; }
};

using NoteSet = std::set<std::string>;

TEST_F(Tickets, ABorrowedTicketStopsTheBorrowersJobAndNotItsOwn) {
    AddQueue("Lending");
    AddQueue("LendingToo");
    cupsSetUser("victim");
    const std::string path = SendTicket("Lending", "mine");
    const int own = Submit("Lending", path);
    ASSERT_EQ(WaitForEnd(own).state, 9);
    EXPECT_EQ(Notes(own), NoteSet{"mine"});
    // Somebody who has read the job's attributes claims to be the victim, and sends a job UUID.
    for (const char* queue : {"Lending", "LendingToo"}) {
        const int borrowed =
            Submit(queue, path, {{"job-uuid", "urn:uuid:6f1d2f0e-0000-4000-8000-000000000000"}});
        const JobStatus status = WaitForEnd(borrowed);
        EXPECT_EQ(status.state, 6);
        EXPECT_NE(status.message.find("its print settings belong to another job"), std::string::npos)
            << status.message;
        EXPECT_EQ(sandbox->Printed(borrowed), "");
    }
    // The victim's job can be printed again.
    std::filesystem::remove(*sandbox / ("printed/" + std::to_string(own) + ".ps"));
    ASSERT_EQ(runCommand({"lp", "-i", std::to_string(own), "-H", "restart"}).status, 0);
    EXPECT_TRUE(WaitUntil([&] { return Notes(own) == NoteSet{"mine"}; }));
}

TEST_F(Tickets, SettingsArriveBeforeTheirJobWhateverItsPriorityAndWhereverItGoes) {
    AddQueue("Busy", "torkasink:/wait");
    AddQueue("Spare");
    Occupy("Busy");
    const std::string urgentTicket = SendTicket("Busy", "urgent");
    const int urgent = Submit("Busy", urgentTicket, {{"job-priority", "90"}});
    const std::string movedTicket = SendTicket("Busy", "moved");
    const int moved = Submit("Busy", movedTicket, {{"job-hold-until", "indefinite"}});
    EXPECT_EQ(jobStatus(urgent).state, 3);
    Release();
    EXPECT_EQ(WaitForEnd(urgent).state, 9) << jobStatus(urgent).message;
    EXPECT_EQ(Notes(urgent), NoteSet{"urgent"});
    EXPECT_EQ(jobStatus(moved).state, 4);
    ASSERT_EQ(runCommand({"lpmove", std::to_string(moved), "Spare"}).status, 0);
    ASSERT_EQ(runCommand({"lp", "-i", std::to_string(moved), "-H", "resume"}).status, 0);
    EXPECT_EQ(WaitForEnd(moved).state, 9) << jobStatus(moved).message;
    EXPECT_EQ(Notes(moved), NoteSet{"moved"});
    // A queue that holds its jobs holds the job but not its settings.
    ASSERT_EQ(runCommand({"lpadmin", "-p", "Spare", "-o", "job-hold-until-default=indefinite"}).status, 0);
    const int held = Submit("Spare", SendTicket("Spare", "held"));
    ASSERT_EQ(runCommand({"lp", "-i", std::to_string(held), "-H", "resume"}).status, 0);
    EXPECT_EQ(WaitForEnd(held).state, 9) << jobStatus(held).message;
    EXPECT_EQ(Notes(held), NoteSet{"held"});
}

TEST_F(Tickets, SeveralDocumentsOfOneJobShareTheirTicket) {
    AddQueue("Documents");
    const std::string path = SendTicket("Documents", "both");
    const CommandResult sent =
        runCommand({"lp", "-d", "Documents", "-o", std::string(ticketPathSetting) + "=" + path,
                    samplePath("plain.ps"), samplePath("plain.ps")});
    ASSERT_EQ(sent.status, 0) << sent.errors;
    const int job = std::stoi(sent.output.substr(sent.output.find("Documents-") + 10));
    EXPECT_EQ(WaitForEnd(job).state, 9) << jobStatus(job).message;
    const std::string printed = sandbox->Printed(job);
    const std::size_t first = printed.find("%%ZANCustom1: both");
    ASSERT_NE(first, std::string::npos);
}

TEST_F(Tickets, TheCheckOfAQueueSeesWhatItsServerShows) {
    AddQueue("Checked");
    const auto states = [] {
        std::map<std::string, std::string> found;
        const nlohmann::json shown = runToolForJson({"queue", "check", "Checked"}, 1);
        for (const auto& row : shown["findings"]) {
            if (row["what"] == "subscriptions" || std::string(row["what"]).ends_with("-names")) {
                found[row["what"]] = row["state"];
            }
        }
        return found;
    };
    using States = std::map<std::string, std::string>;
    EXPECT_EQ(states(),
              (States{{"sender-names", "open"}, {"ticket-names", "unknown"}, {"subscriptions", "unknown"}}));
    ASSERT_EQ(WaitForEnd(Submit("Checked", SendTicket("Checked", "seen"))).state, 9);
    EXPECT_EQ(states()["ticket-names"], "open");
    // Private values: first visible to everybody who gives the owner's name, then only to the owner.
    const std::filesystem::path file = *sandbox / "etc/cupsd.conf";
    const std::string before = readFile(file);
    const auto configure = [&](const std::string& text, const std::string& expected) {
        std::ofstream(file) << text;
        ASSERT_EQ(kill(std::stoi(readFile(*sandbox / "cupsd.pid")), SIGHUP), 0);
        EXPECT_TRUE(WaitUntil([&expected] {
            const std::string output = runTool({"queue", "check", "Checked"}).output;
            return output.find(expected) != std::string::npos;
        })) << expected;
    };
    const auto replaced = [](std::string text, const std::string& from, const std::string& to) {
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    };
    const std::string hidden = replaced(replaced(before, "JobPrivateAccess all", "JobPrivateAccess @OWNER"),
                                        "JobPrivateValues none", "JobPrivateValues all");
    configure(hidden, "ticket-names: open: whoever gives the owner's name");
    const std::string limit = "<Limit Validate-Job Get-Jobs>\nAuthType Basic\nRequire valid-user\n</Limit>\n";
    configure(replaced(hidden, "<Limit All>", limit + "<Limit All>"), "sender-names: closed");
    configure(before, "sender-names: open");
    EXPECT_EQ(runTool({"queue", "check", "No such"}).status, 2);
}

// While the object lives, kills filters of the sandbox's server at random.
class FilterKiller {
public:
    explicit FilterKiller(const Sandbox& sandbox)
        : children("/proc/" + pid(sandbox) + "/task/" + pid(sandbox) + "/children")
        , worker([this] { Run(); }) {}
    FilterKiller(const FilterKiller&) = delete;
    FilterKiller& operator=(const FilterKiller&) = delete;
    ~FilterKiller() { End(); }
    // Ends the killing. Returns the jobs whose watching process was killed.
    std::set<int> End() {
        isOver = true;
        if (worker.joinable()) {
            worker.join();
        }
        return jobs;
    }

private:
    static std::string pid(const Sandbox& sandbox) {
        return std::to_string(std::stoi(readFile(sandbox / "cupsd.pid")));
    }
    static std::string content(const std::string& path) {
        // Reading fails for a process that has ended; an istreambuf_iterator would throw then.
        std::array<char, 4096> block{};
        std::ifstream file(path, std::ios::binary);
        file.read(block.data(), block.size());
        return {block.data(), static_cast<std::size_t>(file.gcount())};
    }
    void Run() {
        std::mt19937 random(1);
        const int signals[] = {SIGKILL, SIGABRT, SIGTERM};
        std::map<int, unsigned> looks; // per process, before its kill; every tenth process is killed
        while (!isOver) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            std::istringstream list(content(children));
            for (int child = 0; list >> child;) {
                const std::string folder = "/proc/" + std::to_string(child);
                // The file holds the server's name until the filter program starts.
                if (content(folder + "/comm") != "torkafilter\n") {
                    continue;
                }
                unsigned& left =
                    looks.try_emplace(child, random() % 10 == 0 ? 1 + random() % 8 : 0).first->second;
                if (left == 0 || --left > 0) {
                    continue;
                }
                std::istringstream words(content(folder + "/cmdline"));
                std::string job;
                std::getline(words, job, '\0'); // skips the queue's name
                std::getline(words, job, '\0');
                const int working =
                    std::atoi(content(folder + "/task/" + std::to_string(child) + "/children").c_str());
                if (working > 0 && random() % 2 == 0) {
                    kill(working, signals[random() % 3]);
                } else if (!job.empty() && kill(child, signals[random() % 3]) == 0) {
                    jobs.insert(std::atoi(job.c_str()));
                }
            }
        }
    }

    std::string children;
    std::atomic<bool> isOver = false;
    std::set<int> jobs;
    std::thread worker;
};

// The number of jobs: TORKA_MANY_JOBS, or 60.
int manyJobs() {
    const char* text = std::getenv("TORKA_MANY_JOBS");
    return text == nullptr ? 60 : std::max(1, std::atoi(text));
}

TEST_F(Tickets, OfManyJobsAtOnceNoneCarriesAnothersSettings) {
    constexpr int senders = 50;
    const std::vector<std::string> queues{"Many1", "Many2", "Many3"};
    for (const std::string& queue : queues) {
        AddQueue(queue);
    }
    struct Sent {
        std::string note;
        CommandResult result;
        int job = 0;
    };
    std::vector<Sent> jobs(static_cast<std::size_t>(manyJobs()));
    std::atomic<std::size_t> next = 0;
    FilterKiller killer(*sandbox);
    std::vector<std::thread> threads;
    for (int i = 0; i < senders; ++i) {
        threads.emplace_back([&] {
            for (std::size_t at = next++; at < jobs.size(); at = next++) {
                const std::string user = "person" + std::to_string(at % 4);
                jobs[at].note = "job " + std::to_string(at) + " of " + user;
                jobs[at].result = runCommand({"env", "CUPS_USER=" + user, TORKA_BINARY_DIR "/bin/torka",
                                              "print", "-d", queues[at % queues.size()],
                                              samplePath("plain.ps"), "Notes1=" + jobs[at].note});
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::set<int> killed = killer.End();
    std::map<std::string, int> counts;
    for (Sent& sent : jobs) {
        ASSERT_TRUE(sent.result.output.starts_with("Job ")) << sent.result.output << sent.result.errors;
        sent.job = std::stoi(sent.result.output.substr(4));
        const NoteSet notes = Notes(sent.job);
        // The server drops old jobs, so that the status which the sender received counts.
        const bool isCompleted = sent.result.status == 0;
        EXPECT_TRUE(notes.empty() || notes == NoteSet{sent.note}) << sent.note << ": " << *notes.begin();
        if (isCompleted && !notes.empty()) {
            ++counts["whole"];
        } else if (killed.contains(sent.job)) {
            ++counts["killed"];
        } else {
            EXPECT_FALSE(isCompleted) << sent.note;
            // A working process that was killed may have written a part.
            const bool isCut = sent.result.errors.find("was ended by signal") != std::string::npos;
            EXPECT_TRUE(isCut || sent.result.errors.find("print settings of this job are missing") !=
                                     std::string::npos)
                << sent.note << ": " << sent.result.errors;
            EXPECT_TRUE(isCut || sandbox->Printed(sent.job).empty()) << sent.note;
            ++counts["stopped"];
        }
    }
    EXPECT_GT(counts["whole"], 0);
    EXPECT_GT(killed.size(), 0U) << "no filter was met";
    std::cout << jobs.size() << " jobs: " << counts["whole"] << " whole, " << counts["stopped"]
              << " stopped with their reason, " << counts["killed"] << " killed; " << killed.size()
              << " filters killed\n";
}

} // namespace

} // namespace torka::tests
