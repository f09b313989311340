// SPDX-License-Identifier: Apache-2.0
#include "pane/views/QtPaneInterface.h"
#include "tests/pane/PanelFixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

namespace torka::tests {
namespace {

// Whole panels in dialogs in memory, with the bundle's real interface file and real widgets.
struct PaneLoader : ::testing::Test {
    PaneLoader() {
        static const TemporaryFolder folder; // the panel keeps the bundle that it finds first
        const auto contents = folder / "Contents";
        std::filesystem::create_directories(contents / "Resources");
        std::filesystem::copy_file(std::string(TORKA_SOURCE_DIR) + "/bundle/Resources/TorkaFeaturesPDE.ui",
                                   contents / "Resources" / "TorkaFeaturesPDE.ui",
                                   std::filesystem::copy_options::overwrite_existing);
        bench.bundle->path = folder.Path();
        bench.system->files[(contents / "PrinterList.plist").string()] =
            bench.system->files["/bundle/Contents/PrinterList.plist"];
        bench.bundle->strings["Pane/DEFAULTS"] = "Vorgaben";
        setPaneInterfaceLoader(qtPaneInterfaceLoader());
    }

    Bench bench{panelDescription("*%QVShortcut *QVDuplex\n")};
};

TEST_F(PaneLoader, OpensAndClosesPanelsInAnyOrder) {
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

// Two dialogs of one process: a text that a person types is read in the encoding of its own description.
TEST_F(PaneLoader, APanelIsTheCurrentOneWhileAPersonUsesItsWindow) {
    const auto latin = bench.OpenShown();
    std::string text = panelDescription();
    text.replace(text.find("ISOLatin1"), 9, "JIS83-RKSJ");
    bench.Choose("Japan", bench.folder.Write("Japan.ppd", text));
    const auto japanese = bench.OpenShown();
    std::array<QWidget, 2> windows;
    const std::array panels{latin, japanese};
    const std::array texts{"B\u00FCro", "\u65E5\u672C"};
    for (std::size_t i = 0; i < windows.size(); ++i) {
        (new QVBoxLayout(&windows[i]))->addWidget(widgetOf(panels[i]->panelView()));
        windows[i].show();
    }
    QDialog above(&windows[0]);
    for (const auto& [i, focused] :
         {std::pair<std::size_t, QWidget*>{0, windows[0].findChild<QCheckBox*>("bidiCheckBox")},
          {1, &windows[1]},
          {0, &above}, // a dialog of the first pane
          {1, windows[1].findChild<QComboBox*>("*QVDuplex")}}) {
        Q_EMIT qApp->focusChanged(nullptr, focused);
        set(*panels[i], "*QVNotes1", texts[i]);
        EXPECT_EQ(valueOf(*panels[i], "*QVNotes1"), texts[i]);
    }
}

} // namespace
} // namespace torka::tests
