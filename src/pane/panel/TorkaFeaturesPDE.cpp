// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/TorkaFeaturesPDE.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "connection/BonjourModuleController.h"
#include "pane/data/PDEData.h"
#include "pane/exchange/ServerExchange.h"
#include "pane/exchange/WaitPresenter.h"
#include "pane/panel/BundleHelpers.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Help.h"

// Short answers, and what the panel provides to the other parts of the pane.

namespace torka {

ViewRef TorkaFeaturesPDE::panelView() {
    becomeCurrent();
    return LoadInterface() ? interface->outputBinsView() : nullptr;
}

CFStringRef TorkaFeaturesPDE::panelName() {
    if (!self.thePDEName) {
        self.thePDEName = cfString(LocalizedString("PDE Panel Title", "Torka Features"));
    }
    return self.thePDEName;
}

CFStringRef TorkaFeaturesPDE::panelKind() { return GetBundleID(); }

CFArrayRef TorkaFeaturesPDE::supportedPPDOptionKeys() {
    const auto keys =
        self.pdeBundle ? cfCast<CFArray>(self.pdeBundle->InfoValue(u"PMPPDKeysSupported")) : nullptr;
    return keys ? CFArrayCreate(keys->values) : nullptr;
}

bool TorkaFeaturesPDE::shouldShowHelp() {
    const auto book =
        self.pdeBundle ? cfCast<CFString>(self.pdeBundle->InfoValue(u"CFBundleHelpBookName")) : nullptr;
    return !book || AHGotoPage(book, nullptr, nullptr) != noErr;
}

CFArrayRef TorkaFeaturesPDE::summaryInfo() { return nullptr; }
void TorkaFeaturesPDE::updateDestinationSheet(const CFDictionaryRef& /*destination*/) {}
void TorkaFeaturesPDE::printInfoDidChange() {}
void TorkaFeaturesPDE::PPDOptionKeyValueDidChange(const CFStringRef& /*optionKey*/,
                                                  const CFStringRef& /*choice*/) {}

std::string TorkaFeaturesPDE::LocalizedString(std::string_view key, std::string_view defaultText,
                                              std::string_view table) const {
    return self.pdeBundle
               ? utf8Text(self.pdeBundle->LocalizedString(cfString(key), cfString(defaultText), table))
               : std::string(defaultText);
}

CFStringRef TorkaFeaturesPDE::currentIPAddress() const {
    return interface ? interface->stringValue(PaneOutlet::printerAddress) : nullptr;
}

void TorkaFeaturesPDE::setFullPropertiesButtonStatusON(bool on) {
    if (interface) {
        interface->setEnabled(PaneOutlet::fullPropertiesButton, on);
    }
}

void TorkaFeaturesPDE::setCustomizeQuickAccessButtonButtonStatusON(bool on) {
    if (interface) {
        interface->setEnabled(PaneOutlet::customizeQuickAccessButton, on);
    }
}

void TorkaFeaturesPDE::setDefaultsButtonStatusON(bool on) {
    if (interface) {
        interface->setEnabled(PaneOutlet::defaultsButton, on);
    }
}

void TorkaFeaturesPDE::showPrinterAddress(const CFStringRef& address) {
    if (interface) {
        interface->setStringValue(PaneOutlet::printerAddress, address);
    }
}

void TorkaFeaturesPDE::bringToFront() { applicationDidBecomeActive(); }

void TorkaFeaturesPDE::applicationDidBecomeActive() {
    if (interface) {
        interface->bringToFront();
    }
}

std::filesystem::path TorkaFeaturesPDE::bundlePath() const {
    return self.pdeBundle ? self.pdeBundle->Path() : std::filesystem::path();
}

BidiFailure& TorkaFeaturesPDE::bidiFailure() { return server->Failure(); }

std::shared_ptr<const std::string> TorkaFeaturesPDE::getBidiDataCopy() const {
    return server->getBidiDataCopy();
}

std::string TorkaFeaturesPDE::TemplateText() const { return self.myppd->DMTXmlData(); }

std::string TorkaFeaturesPDE::WindowTitle() const {
    return LocalizedString("Printing Preferences", "Printing Preferences", "BidiStrings");
}

// The wait for the module ends, and its window closes, before the module's window opens: the scope ends with
// the last copy of the observer.
WaitObserver TorkaFeaturesPDE::Observer() {
    return [wait = std::make_shared<ScopedWait>()](const WaitProgress& progress) {
        ScopedWait::Observer()(progress);
    };
}

bool TorkaFeaturesPDE::isQuickAccessOff() const { return self.myPDEData->dmtHides("QVQuickAccess"); }

void TorkaFeaturesPDE::enableCustomizedViewForDMT() {
    if (!interface) {
        return;
    }
    for (const PaneOutlet outlet : {PaneOutlet::quickaccessStaticText, PaneOutlet::horizontalLine,
                                    PaneOutlet::horizontalLine2, PaneOutlet::customizeQuickAccessButton}) {
        interface->setHidden(outlet, true);
    }
    // The height of the quick-access line, in points. The buttons below it move up.
    constexpr double lineHeight = 35;
    constexpr double buttonShift = 30;
    const auto moveUp = [this](PaneOutlet outlet, double distance) {
        PaneFrame frame = interface->frame(outlet);
        frame.y += distance;
        interface->setFrame(outlet, frame);
    };
    moveUp(PaneOutlet::customizePane, lineHeight);
    moveUp(PaneOutlet::fullPropertiesButton, buttonShift);
    moveUp(PaneOutlet::defaultsButton, buttonShift);
    for (const PaneOutlet outlet :
         {PaneOutlet::bidiCheckBox, PaneOutlet::printerAddress, PaneOutlet::printerName,
          PaneOutlet::printerNameStaticText, PaneOutlet::printerAddressStaticText}) {
        moveUp(outlet, lineHeight);
    }
    PaneFrame root = interface->frame(PaneOutlet::outputBinsView);
    root.height -= lineHeight;
    interface->setFrame(PaneOutlet::outputBinsView, root);
}

void TorkaFeaturesPDE::defaultsButtonClicked() {
    if (!gIgnoreButtonEvents) {
        becomeCurrent();
        self.myUi_Panel->ResetControlsToDefault();
        TakeSystemLayout();
        PrefillAccountName();
        self.myUi_Panel->DrawUserPane();
        gPopupJobNotesDefaultsButton = 1;
    }
}

void TorkaFeaturesPDE::customizeQuickAccessButtonClicked() {
    if (interface && !gIgnoreButtonEvents) {
        becomeCurrent();
        interface->customizeQuickAccess().openSheet();
    }
}

} // namespace torka
