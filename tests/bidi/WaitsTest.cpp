// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/BidiFailure.h"
#include "bidi/commands/CommandJob.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/BidiDataFile.h"
#include "bidi/records/CFileHdlr.h"
#include "platform/memory/MemoryAlerts.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySpooler.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Waits : public ::testing::Test {
protected:
    Waits() {
        system->root = "/root";
        fillBidiFilePaths("/etc/cups/ppd/Office.ppd", paths);
        setDestinationPPD("/old.ppd");
        queues->destinations = {{"Other"}, {"Office"}};
        queues->ppdPaths["Office"] = "/new.ppd";
        printer->name = "Office";
    }
    void At(milliseconds moment, std::function<void()> happening) {
        happenings.emplace_back(system->now + moment, std::move(happening));
        system->onSleep = [this] {
            for (auto& [when, what] : happenings) {
                if (what && system->now >= when) {
                    std::exchange(what, nullptr)();
                }
            }
        };
    }
    milliseconds Took(const std::function<void()>& call) {
        const auto start = system->now;
        call();
        return std::chrono::duration_cast<milliseconds>(system->now - start);
    }
    void Put(const std::string& place, const std::string& content = "") {
        system->files[place].content = content;
    }
    void Remove(const std::string& place) { system->files.erase(place); }

    tests::ScopedMemorySystem system;
    tests::CapturingStreams streams;
    tests::ScopedDouble<MemorySpooler, setSpooler> queues;
    tests::ScopedDouble<MemoryAlerts, setAlerts> shownAlerts;
    std::shared_ptr<MemoryPrinter> printer = std::make_shared<MemoryPrinter>();
    BidiFilePaths paths;
    BidiFailure failure;
    std::vector<std::pair<std::chrono::steady_clock::time_point, std::function<void()>>> happenings;
    const std::string data = "/root/var/cache/torka/queues/Office.bididata";
    const std::string lock = "/root/var/cache/torka/queues/Office.open";
    const std::string connectionError = "/root/var/cache/torka/ZAN/ConnectionErrorInfoFileID-1.txt";
    const std::string override = "/root/var/cache/torka/ZAN/zan_timeout_override.txt";
};

TEST_F(Waits, CommandJobs) {
    const SpoolerJob pending{7, "T", "Office", jobStatePending};
    const SpoolerJob done{7, "T", "Office", jobStateCompleted};
    const struct {
        const char* what;
        std::vector<SpoolerJob> jobs;
        int stateLater; // state of the first job after 2 s; 0 for no change
        int destinationState;
        bool completes;
        int milliseconds;
    } cases[] = {
        {"completed at once", {{6, "U", "Office", jobStateCompleted}, done}, 0, 3, true, 700},
        {"completed later", {pending}, jobStateCompleted, 4, true, 2700},
        {"stays pending", {pending}, 0, 3, false, 36'000},
        {"unknown", {{6, "T2", "Office", jobStateCompleted}}, 0, 3, false, 36'000},
        {"the first of that title counts", {pending, {8, "T", "Office", 9}}, 0, 3, false, 36'000},
        {"stopped: its filter failed", {pending}, jobStateStopped, 3, false, 2000},
        {"cancelled", {pending}, jobStateCanceled, 3, false, 2000},
        {"aborted", {pending}, jobStateAborted, 3, false, 2000},
        {"on a stopped queue", {pending}, 0, destinationStateStopped, false, 0},
    };
    for (const auto& wait : cases) {
        SCOPED_TRACE(wait.what);
        queues->jobs = wait.jobs;
        queues->jobQueries = 0;
        queues->destinations[1].state = wait.destinationState;
        setDestinationPPD("/old.ppd");
        happenings.clear();
        if (wait.stateLater != 0) {
            At(milliseconds(2000), [&] { queues->jobs[0].state = wait.stateLater; });
        }
        bool completes = false;
        EXPECT_EQ(Took([&] { completes = isJobComple("T"); }), milliseconds(wait.milliseconds));
        EXPECT_EQ(completes, wait.completes);
        EXPECT_EQ(destinationPPD(), wait.completes ? "/new.ppd" : "/old.ppd");
        EXPECT_EQ(queues->jobQueries,
                  (wait.milliseconds - (completes ? 700 : 0)) / 100 + (wait.milliseconds == 36'000 ? 0 : 1));
    }
    EXPECT_THAT(queues->fetched, ElementsAre("Office", "Office"));
    // The queue was deleted in the meantime.
    queues->jobs = {done};
    queues->destinations.clear();
    setDestinationPPD("/old.ppd");
    EXPECT_TRUE(isJobComple("T"));
    EXPECT_EQ(destinationPPD(), "/old.ppd");
    // The scheduler restarts.
    queues->answers = false;
    queues->destinations = {{"Office"}};
    At(milliseconds(5000), [&] { queues->answers = true; });
    EXPECT_EQ(Took([] { EXPECT_TRUE(isJobComple("T")); }), milliseconds(5700));
    // Cancel.
    queues->jobs = {pending};
    system->cancelAt = system->now + milliseconds(1234);
    EXPECT_EQ(Took([] { EXPECT_FALSE(isJobComple("T")); }), milliseconds(1234));
}

// The scheduler reads some lines of the standard error stream as commands.
TEST_F(Waits, TitlesInTheLogStayInTheirLine) {
    queues->jobs = {{7, "T\nPPD: x", "Office", jobStateProcessing}};
    At(milliseconds(100), [&] { queues->jobs[0].state = jobStateCompleted; });
    std::vector<milliseconds> seen;
    EXPECT_TRUE(isJobComple("T\nPPD: x", [&](const WaitProgress& progress) {
        EXPECT_EQ(progress.limit, milliseconds(36'000));
        seen.push_back(progress.waited);
    }));
    EXPECT_THAT(seen, ElementsAre(milliseconds(0)));
    EXPECT_THAT(streams.Errors(), testing::Contains(HasSubstr("c=T?PPD: x, j=T?PPD: x")));
    EXPECT_THAT(streams.Errors(), testing::Each(testing::Not(HasSubstr("\nPPD"))));
}

TEST_F(Waits, DataFile) {
    constexpr int forever = 1'000'000;
    const struct {
        const char* what;
        bool isRead;  // else the file is to be created
        int dataFrom; // ms; -1 for never
        int lockUntil;
        int errorFrom;
        bool overridden;
        bool succeeds;
        int milliseconds;
        std::size_t alerts;
    } cases[] = {
        {"there", true, 0, 0, -1, false, true, 0, 0},
        {"comes", true, 1000, 0, -1, false, true, 1000, 0},
        {"never comes", true, -1, 0, -1, false, false, 25'000, 0},
        {"comes too late", true, 25'050, 0, -1, false, false, 25'000, 0},
        {"locked for a while", true, 0, 2000, -1, false, true, 2000, 0},
        {"a lock left behind", true, 0, forever, -1, false, true, 3000, 0},
        {"a lock alone", true, -1, forever, -1, false, false, 25'000, 0},
        {"there", false, 0, 0, -1, false, true, 300, 0},
        {"comes", false, 1000, 0, -1, false, true, 1500, 0},
        {"never comes", false, -1, 0, -1, false, false, 35'100, 1},
        {"comes with the last look", false, 34'750, 0, -1, false, true, 35'100, 1},
        {"error reported before", false, 0, 0, 0, false, false, 0, 0},
        {"error reported meanwhile", false, -1, 0, 1000, false, false, 1200, 0},
        {"error reported just after", false, 0, 0, 300, false, false, 300, 0},
        {"without limit", false, 400'000, 0, -1, true, true, 400'500, 0},
    };
    for (const auto& wait : cases) {
        SCOPED_TRACE(wait.what);
        system->files.clear();
        happenings.clear();
        shownAlerts->shown.clear();
        const auto put = [&](int from, const std::string& place) {
            if (from == 0) {
                Put(place, "a\r\nb");
            } else if (from > 0) {
                At(milliseconds(from), [this, place] { Put(place, "a\r\nb"); });
            }
        };
        put(wait.dataFrom, data);
        put(wait.errorFrom, connectionError);
        put(wait.overridden ? 0 : -1, override);
        put(wait.lockUntil > 0 ? 0 : -1, lock);
        At(milliseconds(wait.lockUntil), [&] { Remove(lock); });
        BidiDataFile file(paths, failure);
        bool succeeds = false;
        EXPECT_EQ(Took([&] {
                      succeeds = wait.isRead ? file.readBidiData()
                                             : file.WaitForFileToBeCreated("ID-1", paths.dataFile);
                  }),
                  milliseconds(wait.milliseconds));
        EXPECT_EQ(succeeds, wait.succeeds);
        EXPECT_EQ(*file.getBidiDataCopy(), wait.isRead && succeeds ? "a\nb\n" : "");
        EXPECT_EQ(shownAlerts->shown.size(), wait.alerts);
    }
    // A file that is too long exists but cannot be read: 40 more tries.
    Put(data, std::string(maximumDataFile + 1, 'x'));
    Remove(lock);
    BidiDataFile file(paths, failure);
    EXPECT_EQ(Took([&] { EXPECT_FALSE(file.readBidiData()); }), milliseconds(2000));
    Put(data, "new");
    EXPECT_TRUE(file.readBidiData());
    const auto copy = file.getBidiDataCopy();
    Put(lock);
    system->cancelAt = system->now + milliseconds(400);
    EXPECT_EQ(Took([&] { EXPECT_FALSE(file.readBidiData()); }), milliseconds(400));
    EXPECT_EQ(*copy, "new\n");
    system->files.clear();
    Put(override);
    system->cancelAt = system->now + std::chrono::minutes(20);
    EXPECT_FALSE(file.WaitForFileToBeCreated("../../x", paths.dataFile));
    EXPECT_EQ(system->now, system->cancelAt);
}

TEST_F(Waits, LockFileAndBusyPrinter) {
    BidiDataFile file(paths, failure);
    EXPECT_EQ(Took([&] { EXPECT_TRUE(file.canBiDiDataFileBeAccessed()); }), milliseconds(0));
    Put(lock);
    EXPECT_EQ(Took([&] { EXPECT_FALSE(file.canBiDiDataFileBeAccessed()); }), milliseconds(5000));
    At(milliseconds(4990), [&] { Remove(lock); });
    EXPECT_EQ(Took([&] { EXPECT_TRUE(file.canBiDiDataFileBeAccessed()); }), milliseconds(5000));

    const auto group = std::make_shared<MemoryPrinter>(); // an idle class with the printer
    group->member = printer;
    for (const auto& [what, state, message, idleFrom, isBusy, waited, alerts] :
         std::vector<std::tuple<const char*, std::uint16_t, const char*, int, bool, int, std::size_t>>{
             {"idle", kPMPrinterIdle, "", -1, false, 0, 0},
             {"stopped", kPMPrinterStopped, "", -1, true, 0, 0},
             {"prints", kPMPrinterProcessing, "Printing page 3", -1, true, 0, 1},
             {"quiet, then idle", kPMPrinterProcessing, "", 17'990, false, 18'000, 0},
             {"quiet for long", kPMPrinterProcessing, "", -1, true, 18'000, 1},
         }) {
        shownAlerts->shown.clear();
        happenings.clear();
        printer->state = state;
        printer->stateAttributes =
            CFDictionaryCreate({{cfString("printer-state-message"), cfString(message)}});
        if (idleFrom > 0) {
            At(milliseconds(idleFrom), [&] { printer->state = kPMPrinterIdle; });
        }
        SCOPED_TRACE(what);
        bool busy = !isBusy;
        EXPECT_EQ(Took([&] { busy = failure.isPrinterBusyWithPrinting(group); }), milliseconds(waited));
        EXPECT_EQ(busy, isBusy);
        EXPECT_EQ(shownAlerts->shown.size(), alerts);
    }
    Put(override);
    EXPECT_TRUE(failure.isPrinterBusyWithPrinting(printer));
    EXPECT_EQ(failure.printerInBusyState_ContinueBiDiOFF(), BidiChoice::printerStayedBusy);
    EXPECT_EQ(shownAlerts->shown.size(), 1U);
}

TEST_F(Waits, FailureMessage) {
    BidiFailure translated([](std::string_view table, std::string_view key, std::string_view) {
        return std::string(table) + "/" + std::string(key);
    });
    translated.showBiDiError("10.0.0.9");
    EXPECT_EQ(translated.printerInBusyState_ContinueBiDiOFF(), BidiChoice::continueBidiOff);
    failure.showBiDiError("10.0.0.9");
    EXPECT_NE(shownAlerts->shown.at(1).informative.find("10.0.0.9"), std::string::npos);
    const AlertText& told = shownAlerts->shown.at(0);
    EXPECT_EQ(told.title + told.informative + told.defaultButton + told.alternateButton,
              "BidiStrings/BIDI_SPOOLER_DELAY_SBidiStrings/BIDI_SPOOLER_DELAY_L\n\nBidiStrings/BIDI_NO_ANSWER"
              "BidiStrings/CONTINUEBidiStrings/CANCEL");
    shownAlerts->onShow = [&](const AlertText&) {
        EXPECT_EQ(failure.printerInBusyState_ContinueBiDiOFF(), BidiChoice::printerStayedBusy);
        return AlertButton::alternateButton;
    };
    printer->state = kPMPrinterProcessing;
    EXPECT_TRUE(failure.isPrinterBusyWithPrinting(printer));
    EXPECT_EQ(failure.printerInBusyState_ContinueBiDiOFF(), BidiChoice::cancel);
}

// A complete request. The filter answers 400 ms after the command.
TEST_F(Waits, ServerDataAnswersItsOwnRequest) {
    ServerDataRequests requests;
    Put(data, "an old answer\n");
    std::string answered;
    const auto fetch = [&](const std::function<void()>& filter) {
        system->files.erase(connectionError);
        happenings.clear();
        queues->jobs.clear();
        const ServerDataRequests::Request request = requests.Compose("10.0.0.7", "locale=en\n", "", {});
        printer->onSend = [&, filter](const MemoryPrinter::SentCommand& command) {
            queues->jobs.push_back({1, utf8Text(command.title), "Office", jobStateProcessing});
            answered = parseUpdateRequest(utf8Text(command.command))->identifier;
            At(milliseconds(400), [this, filter] {
                filter();
                queues->jobs[0].state = jobStateCompleted;
            });
        };
        BidiDataFile file(paths, failure);
        const ServerDataOutcome outcome = fetchServerData(printer, request.title, request.text,
                                                          requests.randomStringForBIDIFile(), paths, file);
        EXPECT_EQ(answered, requests.randomStringForBIDIFile());
        return std::pair(outcome, *file.getBidiDataCopy());
    };
    const auto answer = [&](const std::string& identifier) {
        std::string text;
        CFileHdlr::fileWriteData(requestIdentifierRecord, identifier.data(), identifier.size(), text);
        Put(data, text);
        return text;
    };
    std::string text;
    const auto read = fetch([&] { text = answer(answered); });
    EXPECT_EQ(read, std::pair(ServerDataOutcome::read, text));
    EXPECT_EQ(fetch([&] { answer("another"); }).first, ServerDataOutcome::otherRequest);
    EXPECT_EQ(fetch([&] { Put(data, "no name\n"); }),
              std::pair(ServerDataOutcome::read, std::string("no name\n")));
    EXPECT_EQ(
        fetch([&] { Put("/root/var/cache/torka/ZAN/ConnectionErrorInfoFile" + answered + ".txt"); }).first,
        ServerDataOutcome::connectionError);
    EXPECT_EQ(fetch([&] { Put(lock); }).first, ServerDataOutcome::locked);
}

} // namespace
} // namespace torka
