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

// What an interface is made of: the models, and what the person's clicks do.
struct PaneSetup {
    ZANPPD& model;
    CustomizePaneController& controller;
    PDEData* data = nullptr;
    TorkaFeaturesPDE* panel = nullptr;
    std::function<std::string(const PaneWord&)> text{}; // in the person's language
    BidiTranslator bidiText{};
    bool metric = true;
    std::optional<GaugeSource> gauges{};
    // Held while a click is worked on that may run the event loop, in which the dialog may let go of the
    // panel.
    std::function<std::shared_ptr<void>()> keepAlive{};
    std::function<void()> openFullProperties{};
    std::function<void()> resetToDefaults{}; // of all settings
    std::function<void()> customizeQuickAccess{};
    std::function<void()> applicationDidBecomeActive{};
    std::function<bool()> twoWayFailed{}; // two-way communication is on and the controller does not answer
};

// The pane's interface, loaded from its interface file. Its widgets are found there by their outlets' names.
//
// Owns the editor and the dialogs. The root view is shared with the dialog; what stands in it goes with the
// interface. Every call may come after the root view has gone, and then does nothing.
class QtPaneInterface final : public PaneInterface {
public:
    // Null with `problem` when the file is missing or broken or lacks an outlet.
    static std::unique_ptr<QtPaneInterface> Load(const QString& uiFile, PaneSetup setup,
                                                 std::string& problem);
    ~QtPaneInterface() override;

    ViewRef outputBinsView() override { return view; }
    CFStringRef stringValue(PaneOutlet outlet) const override;
    void setStringValue(PaneOutlet outlet, const CFStringRef& text) override;
    void setHidden(PaneOutlet outlet, bool hidden) override;
    void setEnabled(PaneOutlet outlet, bool enabled) override;
    PaneFrame frame(PaneOutlet outlet) const override;
    // The layout places the widgets and closes every gap; only what was asked for is kept, for frame().
    void setFrame(PaneOutlet outlet, const PaneFrame& frame) override;
    void whenFirstPainted(std::function<void()> action) override;
    void bringToFront() override;
    CustomizePaneView& customizePane() override { return drawer; }
    CustomizeQuickAccessView& customizeQuickAccess() override { return *quickAccessDialog; }
    PopupJobNoteView& popupJobNotes() override { return *popupNotesDialog; }
    bool confirmBrokenNotes() override;
    BonjourModuleView& addressSheet() override { return *addressDialog; }

    PaneEditor& Editor() { return editor; }
    // Null once the root view has gone.
    CustomizePaneWidget* Pane() const;
    QWidget* Outlet(PaneOutlet outlet) const;

private:
    // Stands for the widgets that draw, which may go before it.
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
    void ShowTwoWay();
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
    QObject connections; // ends those of the application
};

// The loader to choose at start: reads "TorkaFeaturesPDE.ui" of the bundle, for a process with a
// QApplication.
PaneInterfaceLoader qtPaneInterfaceLoader();

} // namespace torka
