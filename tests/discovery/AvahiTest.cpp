// SPDX-License-Identifier: Apache-2.0
#include "pane/views/AddressSheet.h"
#include "platform/avahi/AvahiServiceDirectory.h"
#include "platform/posix/PosixSystem.h"
#include "platform/qt/QtEventLoop.h"
#include "tests/apps/Tool.h"
#include "tests/connection/MemoryAddressOwner.h"
#include "tests/support/Neighbours.h"

#include <QAbstractItemModel>
#include <QHeaderView>
#include <QLabel>
#include <QTest>
#include <QTreeView>

#include <algorithm>
#include <gmock/gmock.h>

// The tool and the sheet over real daemons, on a wire of two machines.

namespace torka {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

constexpr int patience = 20000; // ms; nothing is judged by it

// A pane with its address sheet.
class Pane {
public:
    Pane(const std::string& storedAddress, const std::string& queueService)
        : sheet(nullptr, [](const char*, const char* english) { return QString(english); })
        , controller(BonjourModuleController::init(owner, sheet))
        , table(*sheet.Window()->findChild<QTreeView*>()) {
        owner.address = storedAddress;
        owner.service = queueService;
        controller->setIPAddress();
    }
    void Open() {
        controller->configureButtonClicked();
        sheet.setBidiState(true);
    }
    std::vector<std::string> Rows() const {
        std::vector<std::string> rows;
        const QAbstractItemModel& model = *table.model();
        for (int row = 0; row < model.rowCount(); ++row) {
            rows.push_back(
                (model.index(row, 0).data().toString() + ": " + model.index(row, 1).data().toString())
                    .toStdString());
        }
        return rows;
    }
    std::string Field() const { return utf8Text(sheet.addressField()); }
    std::string Status() {
        return sheet.Window()->findChild<QLabel*>("discoveryStatus")->text().toStdString();
    }
    bool WaitForStatus(const char* text) {
        return QTest::qWaitFor([&] { return Status() == text; }, patience);
    }
    // Until so many controllers are listed, each with its address.
    bool WaitForRows(std::size_t count) const {
        return QTest::qWaitFor(
            [&] {
                const std::vector<std::string> rows = Rows();
                return rows.size() == count &&
                       std::ranges::none_of(rows, [](const std::string& row) { return row.ends_with(": "); });
            },
            patience);
    }
    void Choose(int row) {
        table.selectionModel()->setCurrentIndex(
            table.model()->index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }

    tests::MemoryAddressOwner owner;
    AddressSheet sheet;
    std::shared_ptr<BonjourModuleController> controller;
    QTreeView& table;
};

class Avahi : public ::testing::Test {
protected:
    void SetUp() override {
        setSystem(std::make_unique<PosixSystem>());
        setMainEventLoop(std::make_unique<QtEventLoop>());
        setServiceDirectory(std::make_unique<AvahiServiceDirectory>(*GetMainEventLoop()));
    }
    void TearDown() override {
        setServiceDirectory(nullptr);
        setMainEventLoop(nullptr);
        setSystem(nullptr);
    }
    static std::string Discover(const char* seconds) {
        const tests::CommandResult result = tests::runTool({"address", "discover", "--seconds", seconds});
        return result.output + result.errors;
    }
};

TEST_F(Avahi, ControllersAreFoundWhetherTheDaemonComesBeforeOrAfter) {
    if (!tests::hasNeighbour()) {
        std::vector<std::string> services = {
            "_ipp._tcp 631 - Office Printer", "_printer._tcp 515 - Office Printer",
            "_pdl-datastream._tcp 9100 - Office hold", "_chat._tcp 5222 - Somebody",
            "_ipps._tcp 443 torka-b.local &lt;b&gt;Markup&lt;/b&gt;"};
        for (int i = 0; i < 60; ++i) {
            services.push_back("_printer._tcp 515 torka-c.local Flood " + std::to_string(i));
        }
        return tests::runWithNeighbour(services);
    }
    // One row for each host: of two printers under two names, and of more than are named.
    const std::string office = "(Office Printer, Office hold|Office hold, Office Printer): 10\\.77\\.0\\.2";
    const std::string flood = "Flood [0-9]+, Flood [0-9]+, Flood [0-9]+, \u2026: 10\\.9\\.8\\.6";
    const std::string markup = "<b>Markup</b>: 10\\.9\\.8\\.7";
    const auto areFound = MatchesRegex(markup + "\n" + flood + "\n" + office + "\n");
    std::string found;
    for (const char* seconds : {"1", "2", "5"}) { // longer only where that is needed
        found = testing::Matches(areFound)(found) ? found : Discover(seconds);
    }
    EXPECT_THAT(found, areFound);

    tests::endDaemon();
    EXPECT_THAT(Discover("1"), HasSubstr("controllers cannot be searched for: Avahi: "));
    Pane pane("", "");
    pane.Open();
    EXPECT_TRUE(pane.WaitForStatus("DISCOVERY_UNAVAILABLE"));
    tests::startDaemon();
    EXPECT_TRUE(pane.WaitForRows(3));
    Q_EMIT pane.table.header()->sectionClicked(1);
    EXPECT_THAT(pane.Rows(),
                testing::ElementsAre(MatchesRegex(flood), MatchesRegex(markup), MatchesRegex(office)));
    pane.Choose(1);
    EXPECT_EQ(pane.Field(), "10.9.8.7");
    tests::endDaemon();
    EXPECT_TRUE(pane.WaitForStatus("DISCOVERY_UNAVAILABLE"));
    pane.sheet.Window()->accept();
    EXPECT_EQ(pane.owner.address, "10.9.8.7");
    EXPECT_TRUE(pane.owner.twoWay);
}

TEST_F(Avahi, ANamesakeInTheNetworkReplacesNoStoredAddress) {
    if (!tests::hasNeighbour()) {
        return tests::runWithNeighbour({"_printer._tcp 515 - 10.0.0.5", "_printer._tcp 515 - office"});
    }
    Pane number("10.0.0.5", "");
    Pane name("office", "");
    Pane service("office", "office"); // asks last, so its answer comes after the others' would
    EXPECT_TRUE(QTest::qWaitFor([&] { return service.owner.address != "office"; }, patience));
    EXPECT_EQ(service.owner.address, "10.77.0.2") << "the queue's own service";
    for (const auto& [pane, stored] : {std::pair(&number, "10.0.0.5"), std::pair(&name, "office")}) {
        EXPECT_EQ(pane->owner.address, stored);
        pane->Open();
        EXPECT_TRUE(pane->WaitForRows(1));
        EXPECT_THAT(pane->Rows(), testing::Each(testing::AllOf(HasSubstr(stored), HasSubstr(": 10.77.0.2"))))
            << "another host";
        EXPECT_EQ(pane->Field(), stored);
        pane->sheet.Window()->accept();
        EXPECT_EQ(pane->owner.address, stored);

        pane->Open();
        EXPECT_TRUE(pane->WaitForRows(1));
        pane->Choose(0);
        EXPECT_EQ(pane->Field(), "10.77.0.2");
        EXPECT_EQ(pane->Status(),
                  std::string("The stored address ") + stored + " becomes 10.77.0.2 with OK.");
        pane->sheet.Window()->accept();
        EXPECT_EQ(pane->owner.address, "10.77.0.2") << "a row that a person chose";
    }
}

} // namespace
} // namespace torka
