// SPDX-License-Identifier: Apache-2.0
#include "pane/views/CustomizePaneWidget.h"
#include "pane/views/FieldPage.h"
#include "pane/views/QtPaneInterface.h"
#include "tests/pane/PanelFixture.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

namespace torka::tests {
namespace {

// A whole panel in a dialog in memory, with the bundle's real interface file and real widgets.
struct PaneLoaderTest : testing::Test {
    Bench bench{panelDescription("*%QVShortcut *QVDuplex\n")};

    // One folder for all tests, because a process looks up the bundle's place once.
    static const std::filesystem::path& BundlePath() {
        static const TemporaryFolder folder;
        return folder.Path();
    }

    PaneLoaderTest() {
        const auto resources = BundlePath() / "Contents" / "Resources";
        std::filesystem::create_directories(resources);
        std::filesystem::copy_file(std::string(TORKA_SOURCE_DIR) + "/bundle/Resources/TorkaFeaturesPDE.ui",
                                   resources / "TorkaFeaturesPDE.ui",
                                   std::filesystem::copy_options::overwrite_existing);
        bench.bundle->path = BundlePath();
        bench.system->files[(BundlePath() / "Contents" / "PrinterList.plist").string()] =
            bench.system->files["/bundle/Contents/PrinterList.plist"];
        bench.bundle->strings["Pane/DEFAULTS"] = "Vorgaben";
        setPaneInterfaceLoader(qtPaneInterfaceLoader());
    }
};

TEST_F(PaneLoaderTest, ShowsThePanelAndTakesItsEdits) {
    const auto panel = bench.Open();
    ASSERT_NE(panel, nullptr);
    QWidget* root = widgetOf(panel->panelView());
    ASSERT_NE(root, nullptr);
    panel->willShow();
    root->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(root));
    EXPECT_EQ(root->findChild<QLabel*>(QStringLiteral("printerName"))->text(),
              QStringLiteral("Torka Production 90"));
    auto* defaults = root->findChild<QPushButton*>(QStringLiteral("defaultsButton"));
    EXPECT_EQ(defaults->text(), QStringLiteral("Vorgaben")) << "the bundle's text";
    auto* duplex = root->findChild<QComboBox*>(QStringLiteral("*QVDuplex"));
    ASSERT_NE(duplex, nullptr);
    duplex->setFocus();
    QTest::keyClick(duplex, Qt::Key_Down);
    EXPECT_EQ(valueOf(*panel, "*QVDuplex"), "Tumble");
    EXPECT_TRUE(panel->saveValuesAndReturnError(nullptr));
    EXPECT_EQ(bench.Stored("*QVDuplex"), "Tumble");
    QTest::mouseClick(defaults, Qt::LeftButton);
    EXPECT_EQ(valueOf(*panel, "*QVDuplex"), "None");
    EXPECT_EQ(duplex->currentIndex(), 0);
    QCoreApplication::processEvents(); // the work deferred until the first painting
}

TEST_F(PaneLoaderTest, OpensAndClosesInAnyOrder) {
    for (int round = 0; round < 20; ++round) {
        auto panel = bench.OpenShown();
        const QPointer<QWidget> root = widgetOf(panel->panelView());
        ASSERT_NE(root, nullptr);
        root->grab();
        if (round % 2 == 0) {
            delete root; // the dialog's window ends before the panel
        }
        panel->printWindowWillClose();
        panel.reset();
        EXPECT_EQ(sTorkaFeaturesPDE, nullptr);
        EXPECT_EQ(root, nullptr) << "nobody put the view into a window";
    }
}

} // namespace
} // namespace torka::tests
