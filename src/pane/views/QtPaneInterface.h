// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/BonjourModuleView.h"
#include "pane/editing/PaneEditor.h"
#include "pane/panel/PaneInterface.h"
#include "pane/views/AddressSheet.h"
#include "pane/views/PaneContext.h"
#include "platform/qt/QtView.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace torka {

class CustomizePaneWidget;
class PaneRoot;
class TwoWaySign;

// The objects that an interface works on, and the actions of its buttons.
struct PaneSetup {
    ZANPPD& model;
    CustomizePaneController& controller;
    PDEData* data = nullptr;
    TorkaFeaturesPDE* panel = nullptr;
    std::function<std::string(const PaneWord&)> text{}; // in the person's language
    BidiTranslator bidiText{};
    bool metric = true;
    std::optional<GaugeSource> gauges{};
    // Returns the owner of the panel. It is held during a click that may run the event loop, in which the
    // dialog may release the panel.
    std::function<std::shared_ptr<void>()> keepAlive{};
    std::function<void()> openFullProperties{};
    std::function<void()> resetToDefaults{}; // resets all settings
    std::function<void()> customizeQuickAccess{};
    std::function<bool()> beganWithLastJob{}; // with the settings of the person's last job
    std::function<void()> applicationDidBecomeActive{};
    std::function<void()> becomeCurrent{}; // a person turns to a window of this panel
    std::function<bool()> twoWayFailed{};  // two-way communication is on and the controller does not answer
};

// The interface of the pane, loaded from its interface file. The widgets in the file are found by the names
// of their outlets.
//
// Owns the editor and the dialogs. It shares the root view with the dialog, and removes its content when it
// ends. After the end of the root view every call does nothing.
class QtPaneInterface final : public PaneInterface {
public:
    // Null, with the reason in `problem`, when the file is missing or broken or lacks an outlet.
    static std::unique_ptr<QtPaneInterface> Load(const QString& uiFile, PaneSetup setup,
                                                 std::string& problem);
    ~QtPaneInterface() override;

    ViewRef outputBinsView() override { return view; }
    CFStringRef stringValue(PaneOutlet outlet) const override;
    void setStringValue(PaneOutlet outlet, const CFStringRef& text) override;
    void setHidden(PaneOutlet outlet, bool hidden) override;
    void setEnabled(PaneOutlet outlet, bool enabled) override;
    PaneFrame frame(PaneOutlet outlet) const override;
    // Only keeps the frame for frame(): the layout places the widgets.
    void setFrame(PaneOutlet outlet, const PaneFrame& frame) override;
    void whenFirstPainted(std::function<void()> action) override;
    void bringToFront() override;
    CustomizePaneView& customizePane() override { return drawer; }
    CustomizeQuickAccessView& customizeQuickAccess() override { return *quickAccessDialog; }
    PopupJobNoteView& popupJobNotes() override { return *popupNotesDialog; }
    bool confirmConflicts() override;
    bool confirmBrokenNotes() override;
    BonjourModuleView& addressSheet() override { return *addressDialog; }

    // Null after the end of the root view.
    QWidget* Outlet(PaneOutlet outlet) const;

    // For the tests; no caller here
    // Null after the end of the root view.
    CustomizePaneWidget* Pane() const;
    PaneEditor& Editor() { return editor; }

private:
    // Forwards to the drawing widgets, which may end before it.
    class Drawer final : public CustomizePaneView {
    public:
        explicit Drawer(QtPaneInterface& ownedBy)
            : owner(ownedBy) {}
        void drawControlsInTree(const PPDTree& tree) override;
        void greyoutShortcutControls(bool grey) override;

    private:
        QtPaneInterface& owner;
    };

    explicit QtPaneInterface(PaneSetup paneSetup);
    bool LoadFile(const QString& uiFile, std::string& problem);
    void Translate();
    void MakePane();
    void MakeDialogs();
    void Connect();
    void UseDefaults();
    void ShowTwoWay();
    void TakeFocus(const QWidget* focused);
    void RootGone();

    PaneSetup setup;
    PaneEditor editor;
    PaneContext context;
    Drawer drawer{*this};
    std::shared_ptr<QtView> view;
    QPointer<QWidget> root;
    std::map<PaneOutlet, QPointer<QWidget>> outlets;
    std::map<PaneOutlet, PaneFrame> askedFrames;
    QPointer<CustomizePaneWidget> pane;
    QPointer<TwoWaySign> sign;
    std::unique_ptr<CustomizeQuickAccessView> quickAccessDialog;
    std::unique_ptr<PopupJobNoteView> popupNotesDialog;
    std::unique_ptr<BonjourModuleView> addressDialog;
    QObject connections; // ends the connections to the application
};

// The loader for processes with a QApplication. It reads "TorkaFeaturesPDE.ui" of the bundle.
PaneInterfaceLoader qtPaneInterfaceLoader();

} // namespace torka
