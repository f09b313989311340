#include "pane/views/AddressSheet.h"
#include "platform/avahi/AvahiServiceDirectory.h"
#include "platform/posix/PosixSystem.h"
#include "platform/qt/QtEventLoop.h"
#include "tests/connection/MemoryAddressOwner.h"
#include "tests/support/Neighbours.h"
#include "tests/support/TestSupport.h"

#include <QAbstractItemModel>
#include <QLabel>
#include <QTest>
#include <QTreeView>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torka {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

// Runs the tool, and the sheet in a Qt application, with a real daemon on loopback in a network namespace.
// The daemon starts after the sheet opens and ends before the sheet is closed.
TEST(Avahi, ControllersOfARealDaemonAreFound) {
    const tests::TemporaryFolder folder;
    const tests::CommandResult result =
        tests::runCommand({"unshare", "--net", "--mount", "sh",
                           TORKA_SOURCE_DIR "/tests/discovery/network.sh", folder.Path().string(),
                           TORKA_BINARY_DIR "/bin/torka", TORKA_BINARY_DIR "/bin/torka_discovery_probe"});
    if (result.status == 99 || result.status == -1 || result.errors.starts_with("unshare: ")) {
        GTEST_SKIP() << "no local net with a daemon of its own may be made here: " << result.errors;
    }
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(tests::readFile(folder / "without"),
                HasSubstr("controllers cannot be searched for: Avahi: "));
    // One row for each host: a host with two services, and a host with more services than the row names.
    const std::string office = "(Office Printer, Office hold|Office hold, Office Printer)";
    const std::string flood = "Flood [0-9]+, Flood [0-9]+, Flood [0-9]+, \u2026";
    EXPECT_THAT(tests::readFile(folder / "tool"),
                MatchesRegex("<b>Markup</b>: 10\\.9\\.8\\.7\n" + flood + ": 10\\.9\\.8\\.6\n" + office +
                             ": 127\\.0\\.0\\.1\n"));
    // Sorted by address, with the second row selected.
    EXPECT_THAT(tests::readFile(folder / "probe"),
                MatchesRegex(
                    "unavailable\n" + flood + "\\|10\\.9\\.8\\.6\n<b>Markup</b>\\|10\\.9\\.8\\.7\n" + office +
                    "\\|127\\.0\\.0\\.1\nfield 10\\.9\\.8\\.7\ngone\nstored 10\\.9\\.8\\.7 two-way\n"));
}

// A pane with its address sheet, over the net of this machine.
class Pane {
public:
    Pane(const std::string& storedAddress, const std::string& queueService)
        : sheet(nullptr, [](const char*, const char* english) { return QString(english); })
        , controller(BonjourModuleController::init(owner, sheet))
        , rows(*sheet.Window()->findChild<QTreeView*>()->model()) {
        owner.address = storedAddress;
        owner.service = queueService;
        controller->setIPAddress();
    }
    // With two-way communication on, until the one controller is listed with its address.
    void Open() {
        controller->configureButtonClicked();
        sheet.setBidiState(true);
        EXPECT_TRUE(QTest::qWaitFor([this] { return Cell(1) == "10.77.0.2"; }, 20000));
        EXPECT_EQ(rows.rowCount(), 1);
    }
    std::string Cell(int column) const { return rows.index(0, column).data().toString().toStdString(); }
    std::string Field() const { return utf8Text(sheet.addressField()); }
    std::string Status() const {
        return sheet.Window()->findChild<QLabel*>("discoveryStatus")->text().toStdString();
    }
    void Choose() {
        auto* table = sheet.Window()->findChild<QTreeView*>();
        table->selectionModel()->setCurrentIndex(rows.index(0, 0), QItemSelectionModel::ClearAndSelect |
                                                                       QItemSelectionModel::Rows);
    }

    tests::MemoryAddressOwner owner;
    AddressSheet sheet;
    std::shared_ptr<BonjourModuleController> controller;
    const QAbstractItemModel& rows;
};

TEST(Avahi, ANamesakeInTheNetworkReplacesNoStoredAddress) {
    if (!tests::hasNeighbour()) {
        return tests::runWithNeighbour({"_printer._tcp 515 10.0.0.5", "_printer._tcp 515 office"});
    }
    setSystem(std::make_unique<PosixSystem>());
    setMainEventLoop(std::make_unique<QtEventLoop>());
    setServiceDirectory(std::make_unique<AvahiServiceDirectory>(*GetMainEventLoop()));
    {
        Pane number("10.0.0.5", "");
        Pane name("office", "");
        Pane service("office", "office"); // asks last, so its answer comes after the others' would
        EXPECT_TRUE(QTest::qWaitFor([&] { return service.owner.address != "office"; }, 20000));
        EXPECT_EQ(service.owner.address, "10.77.0.2") << "the queue's own service";
        for (Pane* pane : {&number, &name}) {
            const std::string stored = pane->owner.address;
            EXPECT_EQ(stored, pane == &number ? "10.0.0.5" : "office");
            pane->Open();
            EXPECT_THAT(pane->Cell(0), HasSubstr(stored)) << "another host's name";
            EXPECT_EQ(pane->Field(), stored);
            pane->sheet.Window()->accept();
            EXPECT_EQ(pane->owner.address, stored);
            EXPECT_EQ(pane->owner.stores, 1);

            pane->Open();
            pane->Choose();
            EXPECT_EQ(pane->Field(), "10.77.0.2");
            EXPECT_EQ(pane->Status(), "The stored address " + stored + " becomes 10.77.0.2 with OK.");
            pane->sheet.Window()->accept();
            EXPECT_EQ(pane->owner.address, "10.77.0.2") << "a row that a person chose";
        }
    }
    setServiceDirectory(nullptr);
    setMainEventLoop(nullptr);
    setSystem(nullptr);
}

} // namespace
} // namespace torka
