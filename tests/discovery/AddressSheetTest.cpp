// SPDX-License-Identifier: Apache-2.0
#include "pane/views/AddressSheet.h"

#include "platform/avahi/AvahiEventPoll.h"
#include "platform/memory/MemoryAlerts.h"
#include "platform/memory/MemoryEventLoop.h"
#include "platform/memory/MemoryServiceDirectory.h"
#include "platform/qt/QtEventLoop.h"
#include "tests/connection/MemoryAddressOwner.h"
#include "tests/support/TestSupport.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <unistd.h>

namespace torka {
namespace {

// The sheet with its controller and a network in memory.
class AddressSheetTest : public ::testing::Test {
protected:
    AddressSheetTest() {
        window = std::make_unique<QWidget>();
        paneCheckBox = new QCheckBox(window.get());
        paneButton = new QPushButton(window.get());
        sheet = std::make_unique<AddressSheet>(
            window.get(), [](const char*, const char* english) { return QString(english); });
        sheet->attachPaneWidgets(paneCheckBox, paneButton);
        field = sheet->Window()->findChild<QLineEdit*>();
        table = sheet->Window()->findChild<QTreeView*>();
        controller = BonjourModuleController::init(owner, *sheet);
        window->show();
    }
    void Announce(const std::string& name, const std::string& address) {
        ResolvedService answer{name + ".local.", 631, {HostAddress()}};
        const bool resolves = parseIPv4Address(address, answer.addresses[0]);
        net->Announce({name, "_ipp._tcp", "local."}, resolves ? std::optional(answer) : std::nullopt);
    }
    void Run(int milliseconds) {
        loop->Run(std::chrono::milliseconds(milliseconds));
        QCoreApplication::processEvents();
    }
    QString Cell(int row, int column) const { return table->model()->index(row, column).data().toString(); }
    tests::ScopedMemorySystem system;
    tests::ScopedDouble<MemoryEventLoop, setMainEventLoop> loop;
    tests::ScopedDouble<MemoryServiceDirectory, setServiceDirectory> net;
    tests::MemoryAddressOwner owner;
    std::unique_ptr<QWidget> window; // owns the other widgets
    QCheckBox* paneCheckBox;
    QPushButton* paneButton;
    std::unique_ptr<AddressSheet> sheet;
    QLineEdit* field;
    QTreeView* table;
    std::shared_ptr<BonjourModuleController> controller;
};

TEST_F(AddressSheetTest, IsWorkedWithKeysAlone) {
    AddressSheet unopened(window.get(), nullptr);
    unopened.setAddressField(cfString("10.0.0.9"));
    EXPECT_EQ(utf8Text(unopened.addressField()), "10.0.0.9");
    Announce("Copy room, second floor", "10.0.0.30");
    Announce("Office <b>Printer</b> & more", "10.0.0.4");
    Announce("Prepress", "10.0.0.12");
    Announce("Warehouse", "");
    EXPECT_FALSE(paneButton->isEnabled());
    QTest::mouseClick(paneCheckBox, Qt::LeftButton, {}, QPoint(5, paneCheckBox->height() / 2));
    ASSERT_TRUE(sheet->isSheetVisible()); // because no address is stored yet
    EXPECT_TRUE(sheet->bidiState());
    Run(500);
    ASSERT_EQ(table->model()->rowCount(), 4);
    EXPECT_EQ(Cell(1, 0), "Office <b>Printer</b> & more");
    EXPECT_TRUE(field->hasFocus());

    QTest::keyClick(field, Qt::Key_Tab);
    ASSERT_TRUE(table->hasFocus());
    QTest::keyClick(table, Qt::Key_Down);
    QTest::keyClick(table, Qt::Key_Down);
    EXPECT_EQ(field->text(), "10.0.0.4");
    QTest::keyClick(table, Qt::Key_End);
    EXPECT_EQ(field->text(), "Warehouse");
    EXPECT_TRUE(sheet->Window()->findChild<QProgressBar*>()->isVisible());
    QTest::keyClick(table, Qt::Key_Home);
    EXPECT_FALSE(sheet->Window()->findChild<QProgressBar*>()->isVisible());
    EXPECT_EQ(field->text(), "10.0.0.30");

    // The tab key reaches every control, and each has an accessible name.
    QStringList reached;
    for (QWidget* widget = table->nextInFocusChain(); widget != table; widget = widget->nextInFocusChain()) {
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible() &&
            sheet->Window()->isAncestorOf(widget)) {
            reached.append(widget->objectName() + widget->metaObject()->className());
        }
    }
    EXPECT_EQ(reached.size(), 4) << reached.join(" ").toStdString(); // check box, two buttons, field
    EXPECT_FALSE(table->accessibleName().isEmpty());
    QTest::keyClick(table, Qt::Key_Return);
    EXPECT_FALSE(sheet->isSheetVisible());
    EXPECT_EQ(owner.address, "10.0.0.30");
    EXPECT_TRUE(owner.twoWay && paneButton->isEnabled() && paneCheckBox->isChecked());
    sheet->setBidiCheckBoxEnabled(false);
    EXPECT_FALSE(paneCheckBox->isEnabled());
}

TEST_F(AddressSheetTest, EscapeAndCloseCancel) {
    owner.address = "10.0.0.1";
    controller->setIPAddress();
    QTest::mouseClick(paneCheckBox, Qt::LeftButton, {}, QPoint(5, paneCheckBox->height() / 2));
    EXPECT_TRUE(owner.twoWay);
    for (const bool byKey : {true, false}) {
        QTest::mouseClick(paneButton, Qt::LeftButton);
        ASSERT_TRUE(sheet->isSheetVisible());
        QTest::keyClicks(field, "other"); // replaces the selected text
        EXPECT_EQ(field->text(), "other");
        sheet->Window()->findChild<QCheckBox*>("sheetBidiCheckBox")->click();
        EXPECT_FALSE(paneCheckBox->isChecked());
        byKey ? QTest::keyClick(field, Qt::Key_Escape) : void(sheet->Window()->close());
        EXPECT_FALSE(sheet->isSheetVisible() || controller->validWindowSessionRunning());
        EXPECT_EQ(field->text(), "10.0.0.1");
        EXPECT_TRUE(paneCheckBox->isChecked());
    }
    EXPECT_EQ(owner.stores, 1);
}

TEST_F(AddressSheetTest, SortsByHeaderAndMenu) {
    for (const auto& [name, address] : {std::pair("b", "10.0.0.10"), std::pair("a", "10.0.0.9")}) {
        Announce(name, address);
    }
    controller->configureButtonClicked();
    Run(500);
    QHeaderView* header = table->header();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      {header->sectionViewportPosition(1) + 20, header->height() / 2});
    EXPECT_EQ(Cell(0, 1), "10.0.0.9");
    EXPECT_EQ(header->sortIndicatorSection(), 1);
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::AscendingOrder);
    Q_EMIT table->customContextMenuRequested(QPoint(5, 5));
    auto* menu = table->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    menu->actions().at(1)->trigger();
    EXPECT_EQ(Cell(0, 1), "10.0.0.10");
    EXPECT_EQ(header->sortIndicatorOrder(), Qt::DescendingOrder);
    menu->actions().at(0)->trigger();
    EXPECT_EQ(Cell(0, 0), "a");
    menu->close();
}

TEST_F(AddressSheetTest, ManyControllersKeepPlaceAndSelection) {
    for (int i = 0; i < 1500; ++i) {
        Announce("Controller " + std::to_string(i) + std::string(60, 'x'), "");
    }
    controller->configureButtonClicked();
    Run(200);
    ASSERT_EQ(table->model()->rowCount(), 1000);
    table->setCurrentIndex(table->model()->index(500, 0));
    table->scrollTo(table->model()->index(500, 0), QAbstractItemView::PositionAtTop);
    const QModelIndex top = table->indexAt({5, 5});
    ASSERT_GT(top.row(), 400);
    const QString selected = Cell(500, 0);
    net->Withdraw({"Controller 900" + std::string(60, 'x'), "_ipp._tcp", "local."});
    Run(200);
    EXPECT_EQ(table->model()->rowCount(), 999);
    EXPECT_EQ(table->indexAt({5, 5}).row(), top.row());
    ASSERT_TRUE(sheet->selectedRow().has_value());
    EXPECT_EQ(Cell(static_cast<int>(*sheet->selectedRow()), 0), selected);
}

TEST_F(AddressSheetTest, OutlivesItsWindow) {
    Announce("a", "");
    controller->configureButtonClicked();
    Run(500);
    table->setCurrentIndex(table->model()->index(0, 0));
    window.reset(); // while the sheet is open and a resolution is under way
    EXPECT_EQ(sheet->Window(), nullptr);
    EXPECT_FALSE(sheet->isSheetVisible() || sheet->selectedRow().has_value());
    Run(20000);
    controller->clickedCancel();
    controller->configureButtonClicked();
    controller->OKClicked();
    EXPECT_EQ(owner.address, "");
}

TEST_F(AddressSheetTest, IsHeldWhileAnAlertWaits) {
    auto host = std::make_shared<int>();
    const std::weak_ptr<int> held = host;
    sheet->setKeepAlive([held] { return held.lock(); });
    const tests::ScopedDouble<MemoryAlerts, setAlerts> alerts;
    alerts->onShow = [&](const AlertText&) {
        host.reset();
        EXPECT_FALSE(held.expired());
        return AlertButton::defaultButton;
    };
    controller->configureButtonClicked();
    sheet->setBidiState(true);
    sheet->Window()->accept(); // with an empty field
    EXPECT_TRUE(host == nullptr && held.expired());
}

// Qt's objects must not be destroyed within their own signals. The loop still lets an action end its timer or
// watch.
TEST(QtEventLoop, TimersAndWatchesEndWithinTheirActions) {
    QtEventLoop loop;
    std::vector<EventLoopTimerRef> timers(3);
    std::vector<int> fired(3);
    for (std::size_t i = 0; i < 3; ++i) { // one that ends itself at once, later, and one that never fires
        InstallEventLoopTimer(
            &loop, EventTimerInterval(0.001), EventTimerInterval(0.002),
            [&, i](const EventLoopTimerRef& timer) {
                if (++fired[i] == 5) {
                    RemoveEventLoopTimer(timer);
                } else if (i == 0) {
                    timers[0].reset();
                }
            },
            timers[i]);
    }
    RemoveEventLoopTimer(timers[2]);

    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    int read = 0;
    std::unique_ptr<DescriptorWatch> reader;
    reader = loop.Watch(pipeEnds[0], descriptorReadable, [&](unsigned happened) {
        read += happened == descriptorReadable ? 1 : 0;
        reader.reset();
    });
    // The writer is watched as Avahi's client watches.
    static int written;
    static const AvahiPoll* avahi;
    const platform::AvahiEventPoll poll(loop);
    avahi = poll.Api();
    AvahiWatch* writer = avahi->watch_new(
        avahi, pipeEnds[1], AvahiWatchEvent{},
        [](AvahiWatch* watch, int pipe, AvahiWatchEvent happened, void*) {
            written += happened == AVAHI_WATCH_OUT && avahi->watch_get_events(watch) == happened ? 1 : 0;
            EXPECT_EQ(write(pipe, "x", 1), 1);
            avahi->watch_free(watch);
        },
        nullptr);
    QCoreApplication::processEvents(); // the pipe is writable, but nobody asked for that yet
    EXPECT_EQ(written, 0);
    avahi->watch_update(writer, AVAHI_WATCH_OUT);
    EXPECT_TRUE(QTest::qWaitFor([&] { return read > 0 && fired[1] == 5 && fired[0] > 0; }, 5000));
    QTest::qWait(20);
    EXPECT_EQ(fired, (std::vector{1, 5, 0}));
    EXPECT_EQ(read + written, 2);
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

} // namespace
} // namespace torka
