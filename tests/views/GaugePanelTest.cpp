// SPDX-License-Identifier: Apache-2.0
#include "pane/views/GaugePanel.h"
#include "bidi/records/CFileHdlr.h"
#include "tests/views/ViewFixture.h"

namespace torka::tests {
namespace {

std::string dataFile(const std::wstring& trays, const std::wstring& toner) {
    std::string out;
    if (!trays.empty()) {
        CFileHdlr::fileWriteData("TrayInfo", trays.data(), trays.size() * sizeof(wchar_t), out);
    }
    CFileHdlr::fileWriteData("TonerInfo", toner.data(), toner.size() * sizeof(wchar_t), out);
    return out;
}

TEST(Gauges, ShowWhatTheRecordsTell) {
    bool on = false;
    auto state = ServerExchange::State::nothing;
    auto content = std::make_shared<const std::string>(
        dataFile(L"2\nTray 1@Tray1@Plain@A4@Plain@White@420@550\nTray 3@Tray3@<b>&x@A3@Plain@White@-3@550\n",
                 L"2\nCyan@71@10@#00ffff@100@45000@1\nBlack@8@10@NULL@100@60000@1\n"));
    int asked = 0;
    std::function<void()> change;
    ScopedMemorySystem system;
    ViewedPane pane(std::make_unique<Pane>(paneHeader + popup("QVDuplex", {"None", "Tumble"})),
                    GaugeSource{[&] { return on; }, [&] { return state; }, [&] { return content; },
                                [&] { ++asked; }, [&](auto listener) { change = std::move(listener); }});
    pane.Draw();
    auto& gauges = dynamic_cast<GaugePanel&>(*pane.Find<QWidget>("gauges"));
    const auto names = [&] {
        change();
        std::vector<std::string> told;
        for (const auto* bar : gauges.findChildren<QProgressBar*>()) {
            told.push_back(bar->accessibleName().toStdString());
        }
        return told;
    };
    const auto isSeen = [&] { return !gauges.isHidden(); };
    for (const auto quiet : {ServerExchange::State::nothing, ServerExchange::State::read}) {
        state = quiet; // off
        EXPECT_THAT(names(), testing::IsEmpty());
        EXPECT_FALSE(isSeen());
    }
    on = true;
    EXPECT_THAT(names(),
                testing::UnorderedElementsAre("Tray 1 – Plain, A4: 76 %", "Tray 3 – <b>&x, A3: not empty",
                                              "Cyan: 71 %", "Black: 8 %, needs attention"));
    EXPECT_TRUE(isSeen());
    for (const int room : {40, 400}) { // the rows fold away for the list of pages
        gauges.SetRoom(room);
        EXPECT_EQ(gauges.findChild<QScrollArea*>()->isHidden(), room == 40);
    }
    state = ServerExchange::State::failed;
    EXPECT_THAT(names(), testing::IsEmpty());
    EXPECT_TRUE(isSeen()) << "the quiet line";
    QTest::keyClick(gauges.findChild<QWidget*>("gaugesReadAgain"), Qt::Key_Space);
    EXPECT_EQ(asked, 1);
    // Broken records and no records are no reason to show anything.
    state = ServerExchange::State::read;
    for (const std::string& broken :
         {dataFile(L"9\nTray 1@x\n", L"@@@"), std::string(), std::string("junk")}) {
        content = std::make_shared<const std::string>(broken);
        EXPECT_THAT(names(), testing::IsEmpty());
        EXPECT_FALSE(isSeen());
    }
}

} // namespace
} // namespace torka::tests
