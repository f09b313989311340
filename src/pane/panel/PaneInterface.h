// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PrintDialogExtension.h"

#include <functional>
#include <memory>
#include <string_view>

// The interface between the panel and its widgets.
//
// The panel (TorkaFeaturesPDE) loads its interface once, through the loader that the bundle's entry set. It
// addresses widgets by the names of their outlets. The Qt widgets are in pane/views; tests use an interface
// in memory.

namespace torka {

class BonjourModuleView;
class TorkaFeaturesPDE;
struct PPDTree;

enum class PaneOutlet {
    outputBinsView, // the pane's root view
    customizePane,  // holds the controls
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

// Draws the controls of the tree: the quick-access area and the property pages.
class CustomizePaneView {
public:
    CustomizePaneView() = default;
    CustomizePaneView(const CustomizePaneView&) = delete;
    CustomizePaneView& operator=(const CustomizePaneView&) = delete;
    virtual ~CustomizePaneView();
    // Shows the controls with the present values of the model. It is called often and leaves unchanged
    // controls alone.
    virtual void drawControlsInTree(const PPDTree& tree) = 0;
    // Disables the controls while the Job Properties module runs.
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
    // Checks the text that a person types into an outlet ("popupJobNoteVal11" to "popupJobNoteSec55") from
    // now on.
    virtual void observeControlTextDidChange(std::string_view outlet) = 0;
    // True to print; false when the person cancelled.
    virtual bool handlePopupJobnoteUI() = 0;
};

class PaneInterface {
public:
    PaneInterface() = default;
    PaneInterface(const PaneInterface&) = delete;
    PaneInterface& operator=(const PaneInterface&) = delete;
    virtual ~PaneInterface();
    // Never null. Shared with the dialog, which may keep it after the end of the panel.
    virtual ViewRef outputBinsView() = 0;
    virtual CFStringRef stringValue(PaneOutlet outlet) const = 0; // "" for outlets without text
    virtual void setStringValue(PaneOutlet outlet, const CFStringRef& text) = 0;
    virtual void setHidden(PaneOutlet outlet, bool hidden) = 0;
    virtual void setEnabled(PaneOutlet outlet, bool enabled) = 0;
    virtual PaneFrame frame(PaneOutlet outlet) const = 0;
    virtual void setFrame(PaneOutlet outlet, const PaneFrame& frame) = 0;
    // Calls `action` once from the event loop, after the first painting of the root view. Never calls it when
    // the view is not painted or the interface ends before.
    virtual void whenFirstPainted(std::function<void()> action) = 0;
    // Brings the last window of the application to the front when it is visible.
    virtual void bringToFront() = 0;
    virtual CustomizePaneView& customizePane() = 0;
    virtual CustomizeQuickAccessView& customizeQuickAccess() = 0;
    virtual PopupJobNoteView& popupJobNotes() = 0;
    // Names the pairs of settings that the description forbids together, before a job is printed, and offers
    // to resolve them. True to print: there are none, or the person prints all the same. False when the
    // person cancelled.
    virtual bool confirmConflicts() = 0;
    // Names the fields of job notes whose texts break a rule, before a job is printed. True to print: no text
    // breaks a rule, or the person prints all the same. False when the person cancelled or went to a field.
    virtual bool confirmBrokenNotes() = 0;
    virtual BonjourModuleView& addressSheet() = 0;
};

// Loads the interface file "TorkaFeaturesPDE" of the bundle for one panel. The interface refers to the panel
// and ends before it; only its root view may live longer. Null when the file is missing or broken; the log
// tells why.
using PaneInterfaceLoader =
    std::function<std::unique_ptr<PaneInterface>(TorkaFeaturesPDE& owner, const BundleRef& bundle)>;

// Set once, at start.
void setPaneInterfaceLoader(PaneInterfaceLoader loader);
const PaneInterfaceLoader& paneInterfaceLoader();

} // namespace torka
