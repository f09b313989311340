// SPDX-License-Identifier: Apache-2.0
#include "pane/exchange/ServerExchange.h"

#include "pane/data/PopupJobNotes.h"
#include "pane/exchange/WaitPresenter.h"
#include "tests/connection/RecordPPD.h"
#include "tests/pane/PanelFixture.h"

#include <gmock/gmock.h>

namespace torka::tests {

namespace {

using testing::ElementsAre;
using Answer = ServerExchange::Answer;

// Records the waits that a person would see, by their first letters.
class MemoryWaits final : public WaitPresenter {
public:
    explicit MemoryWaits(std::string& letters)
        : seen(letters) {}
    void Begin() override { seen += 'b'; }
    void Show(const WaitProgress&) override { seen += 's'; }
    void End() override { seen += 'e'; }

private:
    std::string& seen;
};

struct Exchange : Bench {
    Exchange() {
        setWaitPresenter(std::make_unique<MemoryWaits>(waits));
        server.SetQueue(queuePath.string(), "Press");
    }
    ~Exchange() { setWaitPresenter(nullptr); }
    Answer Fetch(std::string_view address = "host") {
        return server.FetchServerData(dialog->printer, address, "keys=*QVA\n", [this] { ++resets; });
    }

    std::string waits;
    ServerExchange server{{}};
    int resets = 0;
};

TEST(ServerExchange, ReadsTheAnswerOfItsRequest) {
    Exchange test;
    test.system->files["/var/cache/torka/queues/Press.bididata"] = {"Line one\nLine two", 0644};
    EXPECT_EQ(test.Fetch(), Answer::read);
    EXPECT_EQ(*test.server.getBidiDataCopy(), "Line one\nLine two\n");
    EXPECT_THAT(test.SentTitles(), ElementsAre("Command_AllBidi"));
    EXPECT_EQ(test.resets, 0);
    EXPECT_EQ(test.Fetch("other"), Answer::read);
    EXPECT_EQ(test.resets, 1);
    test.system->minorVersion = 6;
    EXPECT_EQ(test.Fetch(), Answer::read);
    EXPECT_THAT(test.SentTitles(),
                ElementsAre("Command_AllBidi", "Command_AllBidi", "Command_GetServerData"));
    EXPECT_THAT(test.waits, testing::MatchesRegex("(bs+e)+"));
}

TEST(ServerExchange, AFailureIsToldOnce) {
    const std::tuple<const char*, std::function<void(Exchange&)>, std::size_t> cases[] = {
        {"refused", [](Exchange& test) { test.dialog->printer->sendResult = kPMGeneralError; }, 1},
        {"stopped", [](Exchange& test) { test.spooler->destinations[0].state = destinationStateStopped; }, 1},
        {"no data file", [](Exchange&) {}, 1},
        {"busy",
         [](Exchange& test) {
             test.dialog->printer->state = kPMPrinterProcessing;
             test.system->files["/var/cache/torka/queues/Press.bididata"] = {"x", 0644};
         },
         1},
        {"cancelled",
         [](Exchange& test) { test.system->cancelAt = test.system->now + std::chrono::seconds(2); }, 0},
    };
    for (const auto& [name, spoil, alerts] : cases) {
        for (const bool goesOn : {true, false}) {
            Exchange test;
            test.alerts->answer = goesOn ? AlertButton::defaultButton : AlertButton::alternateButton;
            spoil(test);
            const Answer expected = goesOn && alerts > 0 ? Answer::withoutData : Answer::stop;
            test.server.FetchServerData(
                test.dialog->printer, "host", "", [] {}, ServerExchange::Failures::quiet);
            EXPECT_TRUE(test.alerts->shown.empty()) << name;
            EXPECT_EQ(test.Fetch(), expected) << name;
            EXPECT_EQ(test.alerts->shown.size(), alerts) << name;
        }
    }
}

TEST(PopupPreferences, ComeBackFromTheQueuesDescription) {
    const std::string description = panelDescription(
        jobNote("QVAccount", "20|Alpha|Remembered|PopupJN") + jobNote("QVOnce", "20|Alpha|PopupJN") +
        jobNote("QVPin", "20|Alpha|Remembered|Password|PopupJN"));
    for (const auto& [stored, account] :
         {std::pair{"111\n*QVAccount=50%25 Lager\n*QVOnce=x\n*QVPin=1234\n*QVFold=Half\nno pair\n*QVAccount",
                    "50% Lager"},
          {"011\n*QVAccount=A", ""},
          {"110\n*QVAccount=A", ""},
          {"101\n*QVAccount=A", "A"},
          {"xyz\n*QVAccount=A", ""},
          {"11", ""},
          {"111\n*QVAccount=%4", ""}}) {
        Bench bench(description);
        resetPopupJobNotes();
        Pane pane(description);
        readPopupJobNotePreferencesFrom(writeRecordPPD(bench.folder, "QVPopupJnData", stored, true));
        pane.model->ReadPUJNPrefs();
        applyPopupJobNotePreferences(*pane.model);
        EXPECT_EQ(valueOf(pane, "*QVAccount"), account) << stored;
        EXPECT_EQ(gPopupJobNotesSavedSetting, stored[1] == '0' ? '0' : '1') << stored;
        for (const char* untouched : {"*QVOnce", "*QVPin"}) {
            EXPECT_EQ(valueOf(pane, untouched), "") << stored;
        }
        EXPECT_EQ(valueOf(pane, "*QVFold"), "Flat");
        readPopupJobNotePreferencesFrom({});
    }
}

} // namespace

} // namespace torka::tests
