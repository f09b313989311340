// SPDX-License-Identifier: Apache-2.0
#include "pane/views/QtPaneInterface.h"
#include "tests/pane/PanelFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

namespace torka::tests {
namespace {

// A whole panel in a dialog in memory, with the bundle's real interface file and real widgets.
TEST(PaneLoader, OpensAndClosesPanelsInAnyOrder) {
    Bench bench(panelDescription("*%QVShortcut *QVDuplex\n"));
    const TemporaryFolder folder;
    const auto contents = folder / "Contents";
    std::filesystem::create_directories(contents / "Resources");
    std::filesystem::copy_file(std::string(TORKA_SOURCE_DIR) + "/bundle/Resources/TorkaFeaturesPDE.ui",
                               contents / "Resources" / "TorkaFeaturesPDE.ui");
    bench.bundle->path = folder.Path();
    bench.system->files[(contents / "PrinterList.plist").string()] =
        bench.system->files["/bundle/Contents/PrinterList.plist"];
    bench.bundle->strings["Pane/DEFAULTS"] = "Vorgaben";
    setPaneInterfaceLoader(qtPaneInterfaceLoader());
    for (const bool endsBeforeItsPanel : {false, true}) {
        auto panel = bench.OpenShown();
        const QPointer<QWidget> root = widgetOf(panel->panelView());
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(root->findChild<QLabel*>("printerName")->text(), "Torka Production 90");
        auto* duplex = root->findChild<QComboBox*>("*QVDuplex");
        QTest::keyClick(duplex, Qt::Key_Down);
        EXPECT_EQ(valueOf(*panel, "*QVDuplex"), "Tumble");
        auto* defaults = root->findChild<QPushButton*>("defaultsButton");
        EXPECT_EQ(defaults->text(), "Vorgaben") << "the bundle's text";
        defaults->click();
        EXPECT_EQ(duplex->currentIndex(), 0);
        const auto twoWay = [&] {
            auto* sign = root->findChild<QWidget*>("twoWaySign")->findChild<QWidget*>();
            return sign->accessibleName().toStdString();
        };
        auto* box = root->findChild<QCheckBox*>("bidiCheckBox");
        box->click();
        EXPECT_EQ(twoWay(), "Two-way communication: On");
        bench.dialog->printer->sendResult = kPMGeneralError;
        panel->Server().FetchServerData(
            bench.dialog->printer, "10.0.0.7", "", [] {}, ServerExchange::Failures::quiet);
        EXPECT_EQ(twoWay(), "Two-way communication: Printer does not answer");
        box->click();
        if (endsBeforeItsPanel) {
            delete root;
        }
        panel.reset();
        EXPECT_EQ(root, nullptr) << "nobody put the view into a window";
    }
}

} // namespace
} // namespace torka::tests
