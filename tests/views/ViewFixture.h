// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/panel/UI_Panel.h"
#include "pane/views/CustomizePaneWidget.h"
#include "pane/views/QtPaneInterface.h"
#include "tests/pane/PaneFixture.h"

#include <QtTest>
#include <QtWidgets>
#include <gmock/gmock.h>

// A pane with real widgets for a description, without a dialog, and what tests of widgets share.

namespace torka::tests {

struct ViewedPane {
    static std::string english(const PaneWord& word) { return word.english; }
    explicit ViewedPane(std::unique_ptr<Pane> shownPane, std::optional<GaugeSource> gauges = std::nullopt,
                        std::string (*text)(const PaneWord&) = english)
        : pane(std::move(shownPane))
        , panel(std::make_unique<UI_Panel>(pane->data.get())) {
        PaneSetup setup{*pane->model, panel->GetCustomizePane(), pane->data.get()};
        setup.text = text;
        setup.gauges = std::move(gauges);
        setup.beganWithLastJob = [this] { return beganWithLastJob; };
        setup.bidiText = [](const char*, const char* word) { return QString::fromUtf8(word); };
        setup.resetToDefaults = [this] {
            panel->ResetControlsToDefault();
            panel->DrawUserPane();
        };
        std::string problem;
        interface =
            QtPaneInterface::Load(QStringLiteral(TORKA_SOURCE_DIR "/bundle/Resources/TorkaFeaturesPDE.ui"),
                                  std::move(setup), problem);
        if (interface == nullptr) {
            throw std::runtime_error(problem);
        }
        panel->GetCustomizePane().setView(&interface->customizePane());
        interface->setStringValue(PaneOutlet::printerName, cfString("Torka Production 90"));
        interface->setStringValue(PaneOutlet::printerAddress, cfString("192.168.1.20"));
    }
    ~ViewedPane() { panel->GetCustomizePane().setView(nullptr); }

    void Draw() {
        panel->PopulatePPDTreeStructure();
        panel->GetCustomizePane().drawControlsInTree(UI_Panel::Tree);
    }
    // Draws the pane and shows it in a window.
    void Show() {
        Draw();
        Root()->resize(820, 600);
        Root()->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(Root()));
    }
    QWidget* Root() const { return widgetOf(interface->outputBinsView()); }
    CustomizePaneWidget& Widget() const { return *interface->Pane(); }
    PaneEditor& Editor() const { return interface->Editor(); }
    template <class T>
    T* Find(const char* name) const {
        return Root()->findChild<T*>(QString::fromUtf8(name));
    }
    std::string Value(const char* keyword) const { return PaneEditor::Value(*Editor().FindControl(keyword)); }

    bool beganWithLastJob = false;
    std::unique_ptr<Pane> pane;
    std::unique_ptr<UI_Panel> panel;
    std::unique_ptr<QtPaneInterface> interface;
};

// A pane with the description in a file.
inline std::unique_ptr<Pane> paneOfFile(const std::string& path) {
    return std::unique_ptr<Pane>(new Pane(Pane::OfFile(path)));
}

inline std::unique_ptr<Pane> samplePane() {
    return paneOfFile(TORKA_SOURCE_DIR "/samples/torka-production.ppd");
}

// The button of these words, without its mnemonic's sign, or of this accessible name.
inline QAbstractButton& button(const QWidget& above, const char* words) {
    for (auto* each : above.findChildren<QAbstractButton*>()) {
        if (each->text().remove(QLatin1Char('&')) == QString::fromUtf8(words) ||
            each->accessibleName() == QString::fromUtf8(words)) {
            return *each;
        }
    }
    throw std::runtime_error(words);
}

// Clicks at it, which must be possible, and does what the click leaves for later.
inline void press(const QWidget& above, const char* words) {
    QAbstractButton& pressed = button(above, words);
    EXPECT_TRUE(pressed.isVisible() && pressed.isEnabled()) << words;
    QTest::mouseClick(&pressed, Qt::LeftButton);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

inline void doubleClick(QAbstractItemView& list, const QModelIndex& row) {
    list.scrollTo(row);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(row).center());
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(row).center());
}

} // namespace torka::tests
