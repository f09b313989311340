#pragma once

#include "platform/PrintDialogExtension.h"

#include <functional>
#include <memory>
#include <string_view>

// What the panel sees of its widgets, and what the widgets tell the panel.
//
// The panel (TorkaFeaturesPDE) loads its interface once, through the loader that the bundle's entry chose,
// and from then on speaks to it by the names of the outlets. The Qt widgets live in pane/views; tests bring
// an interface in memory.

namespace torka {

class BonjourModuleView;
class TorkaFeaturesPDE;
struct PPDTree;

enum class PaneOutlet {
    outputBinsView, // the pane's root view
    customizePane,  // where the controls are drawn
    printerName,
    printerNameStaticText,
    printerAddress,
    printerAddressStaticText,
    bidiCheckBox,
    configureButton,
    fullPropertiesButton,
    defaultsButton,
    customizeQuickAccessButton,
    quickaccessStaticText,
    horizontalLine,
    horizontalLine2,
};

// Points, origin at the lower left of the root view.
struct PaneFrame {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
};

// Draws the controls of the tree: the quick-access area, the property pages, and everything around them.
class CustomizePaneView {
public:
    CustomizePaneView() = default;
    CustomizePaneView(const CustomizePaneView&) = delete;
    CustomizePaneView& operator=(const CustomizePaneView&) = delete;
    virtual ~CustomizePaneView();
    // Shows the tree's controls with the model's present values. Called often: what did not change stays.
    virtual void drawControlsInTree(const PPDTree& tree) = 0;
    // Greys the controls out while the Job Properties module runs.
    virtual void greyoutShortcutControls(bool grey) = 0;
};

// The dialog in which a person chooses the quick-access entries.
class CustomizeQuickAccessView {
public:
    CustomizeQuickAccessView() = default;
    CustomizeQuickAccessView(const CustomizeQuickAccessView&) = delete;
    CustomizeQuickAccessView& operator=(const CustomizeQuickAccessView&) = delete;
    virtual ~CustomizeQuickAccessView();
    virtual bool validWindowSessionRunning() const = 0;
    virtual void doButtonCancelClicked() = 0;
    virtual void openSheet() = 0;
};

// The dialog that asks for the popup job notes before a job is printed.
class PopupJobNoteView {
public:
    PopupJobNoteView() = default;
    PopupJobNoteView(const PopupJobNoteView&) = delete;
    PopupJobNoteView& operator=(const PopupJobNoteView&) = delete;
    virtual ~PopupJobNoteView();
    // From now on the text that is typed into an outlet ("popupJobNoteVal11" to "popupJobNoteSec55") is
    // checked.
    virtual void observeControlTextDidChange(std::string_view outlet) = 0;
    // True to go on printing, false when the person cancelled.
    virtual bool handlePopupJobnoteUI() = 0;
};

class PaneInterface {
public:
    PaneInterface() = default;
    PaneInterface(const PaneInterface&) = delete;
    PaneInterface& operator=(const PaneInterface&) = delete;
    virtual ~PaneInterface();
    // Never null; shared with the dialog, which may keep it longer than the panel lives.
    virtual ViewRef outputBinsView() = 0;
    virtual CFStringRef stringValue(PaneOutlet outlet) const = 0; // "" for outlets without text
    virtual void setStringValue(PaneOutlet outlet, const CFStringRef& text) = 0;
    virtual void setHidden(PaneOutlet outlet, bool hidden) = 0;
    virtual void setEnabled(PaneOutlet outlet, bool enabled) = 0;
    virtual PaneFrame frame(PaneOutlet outlet) const = 0;
    virtual void setFrame(PaneOutlet outlet, const PaneFrame& frame) = 0;
    // Calls `action` once from the event loop, after the root view was painted for the first time. Never
    // called when the view is never painted, or the interface ends before.
    virtual void whenFirstPainted(std::function<void()> action) = 0;
    // Brings the application's last window, when it is visible, to the front.
    virtual void bringToFront() = 0;
    virtual CustomizePaneView& customizePane() = 0;
    virtual CustomizeQuickAccessView& customizeQuickAccess() = 0;
    virtual PopupJobNoteView& popupJobNotes() = 0;
    // Names the fields of job notes whose texts break a rule, before a job is printed. True to go on
    // printing, at once when there are none; false when the person cancelled or went to such a field.
    virtual bool confirmBrokenNotes() = 0;
    virtual BonjourModuleView& addressSheet() = 0;
};

// Loads the interface file "TorkaFeaturesPDE" of the bundle for one panel. The interface refers to the panel,
// which outlives it but for the root view. Null when the file is missing or broken; the log says why.
using PaneInterfaceLoader =
    std::function<std::unique_ptr<PaneInterface>(TorkaFeaturesPDE& owner, const BundleRef& bundle)>;

// Chosen once, at start.
void setPaneInterfaceLoader(PaneInterfaceLoader loader);
const PaneInterfaceLoader& paneInterfaceLoader();

} // namespace torka
