// Runs the address sheet with the Avahi daemon in a Qt application, plays a person, and prints what the sheet
// shows. Writes the files "unavailable" and "listed" into the given folder when the sheet reaches these
// states.

#include "pane/views/AddressSheet.h"
#include "platform/avahi/AvahiServiceDirectory.h"
#include "platform/posix/PosixSystem.h"
#include "platform/qt/QtEventLoop.h"
#include "tests/connection/MemoryAddressOwner.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QTest>
#include <QTreeView>

#include <iostream>

namespace {

using namespace torka;

template <typename Condition>
bool waitFor(int seconds, const Condition& condition) {
    return QTest::qWaitFor(condition, seconds * 1000);
}

void touch(const QString& path) {
    QFile file(path);
    file.open(QIODevice::WriteOnly);
}

QString cell(const QAbstractItemModel& model, int row, int column) {
    return model.index(row, column).data().toString();
}

int run(const QString& folder) {
    tests::MemoryAddressOwner owner;
    AddressSheet sheet(nullptr, [](const char*, const char* english) { return QString(english); });
    const auto controller = BonjourModuleController::init(owner, sheet);
    const auto* table = sheet.Window()->findChild<QTreeView*>();
    const auto* status = sheet.Window()->findChild<QLabel*>("discoveryStatus");
    const QAbstractItemModel& model = *table->model();
    const auto isUnavailable = [status] { return status->text() == "DISCOVERY_UNAVAILABLE"; };

    sheet.setBidiState(true);
    controller->BIDICheckBoxClicked();
    if (!sheet.isSheetVisible() || !waitFor(20, isUnavailable)) {
        return 1;
    }
    std::cout << "unavailable" << std::endl;
    touch(folder + "/unavailable");

    const auto isListed = [&model] {
        bool hasAddresses = model.rowCount() >= 3;
        for (int row = 0; row < model.rowCount(); ++row) {
            hasAddresses = hasAddresses && !cell(model, row, 1).isEmpty();
        }
        return hasAddresses;
    };
    if (!waitFor(40, isListed)) {
        std::cout << "not listed: " << model.rowCount() << " rows" << std::endl;
        return 1;
    }
    Q_EMIT table->header()->sectionClicked(1);
    for (int row = 0; row < model.rowCount(); ++row) {
        std::cout << cell(model, row, 0).toStdString() << "|" << cell(model, row, 1).toStdString() << "\n";
    }
    table->selectionModel()->setCurrentIndex(model.index(1, 0),
                                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    std::cout << "field " << utf8Text(sheet.addressField()) << std::endl;
    touch(folder + "/listed");

    if (!waitFor(20, isUnavailable)) {
        return 1;
    }
    std::cout << "gone" << std::endl;
    sheet.Window()->accept();
    std::cout << "stored " << owner.address << (owner.twoWay ? " two-way" : "") << std::endl;
    return sheet.isSheetVisible() ? 1 : 0;
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    setSystem(std::make_unique<PosixSystem>());
    setMainEventLoop(std::make_unique<QtEventLoop>());
    setServiceDirectory(std::make_unique<AvahiServiceDirectory>(*GetMainEventLoop()));
    const int status = argc == 2 ? run(QString::fromLocal8Bit(argv[1])) : 2;
    setServiceDirectory(nullptr);
    setMainEventLoop(nullptr);
    return status;
}
