// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/TorkaFeaturesPDE.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "connection/BonjourModuleController.h"
#include "connection/ConnectionType.h"
#include "pane/data/PDEData.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/data/PresetStore.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <algorithm>
#include <array>

// Restores settings into the model and shows them: restore, show, hide, update.

namespace torka {

namespace {

constexpr int firstVersionWithPaperNames = 9;
constexpr CFIndex maximumPrinterName = 38; // UTF-16 units
constexpr std::size_t trayNameSize = 64;   // bytes, with its terminator

// Cuts a long model name at the last blank within its maximum, or at the maximum when there is no blank.
CFStringRef shownPrinterName(const CFStringRef& name) {
    if (CFStringGetLength(name) <= maximumPrinterName) {
        return name;
    }
    const std::u16string start = name->units.substr(0, static_cast<std::size_t>(maximumPrinterName));
    return CFStringCreateWithCharacters(start.substr(0, std::min(start.rfind(u' '), start.size())));
}

} // namespace

bool TorkaFeaturesPDE::restoreValuesAndReturnError(std::string* /*error*/) {
    becomeCurrent();
    self.printSettings = self.pdePluginCallbackObject->printSettings();
    self.printer = self.pdePluginCallbackObject->PMPrinter();
    CFTypeRef duplex;
    PMPrintSettingsGetValue(self.printSettings, cfString("*QVDuplex"), duplex);
    CFDictionaryRef settings;
    const OSStatus copied = PMPrintSettingsCopyAsDictionary(self.printSettings, settings);
    // The pane always writes "*QVDuplex". Without it the settings are not those of this pane.
    if (!duplex || copied == noErr) {
        self.myUi_Panel->ResetControlsToDefault();
    }
    if (copied == noErr && self.shouldRestore) {
        self.myppd->SetAllValues(settings);
    }
    if (self.myPDEData->isBIDIEnabled()) {
        self.myUi_Panel->makeJobNotesForSpecialControls();
    }
    if (!UI_Panel::Tree.quickAccess.empty() || !UI_Panel::Tree.groups.empty()) {
        self.myUi_Panel->DrawUserPane();
        TakeSideSettings();
    } else {
        self.myUi_Panel->ResetControlsToDefault();
    }
    CFDictionaryRef defaults;
    if (!self.shouldRestore) {
        defaults = TakeLastUsed();
    }
    TakePopupPreferences();
    // TakePopupPreferences has set the popup notes back, for which the person is asked with each job. They do
    // not count as taken from the last job.
    hasLastJob = defaults && !CFEqual(defaults, presets->PresentSettings());
    self.myPDEData->TakeTemplate();
    NotePopupPreferences();
    PrefillAccountName();
    updateUI();
    willShow();
    return true;
}

// For a new dialog, whose print settings tell nothing of this printer: what the person chose the last time.
// Returns the settings before; null when there was no last job.
CFDictionaryRef TorkaFeaturesPDE::TakeLastUsed() {
    CFDictionaryRef defaults = presets->PresentSettings();
    if (presets->ApplyLastUsed() != PresetStore::Result::done) {
        return nullptr;
    }
    for (const PPDXControl* control : presets->LeftOut().controls) {
        myNSLogC("%s cannot be set again as in the last job.", control->Keyword());
    }
    for (const std::string& keyword : presets->LeftOut().keywords) {
        myNSLogC("The description no longer has %s, which the last job had.", keyword.c_str());
    }
    if (presets->LeftOut().watermark) {
        myNSLogC("The watermark of the last job is no longer there.");
    }
    return defaults;
}

// Only where the controller checks the account name of the network's directory.
void TorkaFeaturesPDE::PrefillAccountName() {
    PPDXControls& controls = *self.myppd->GetControls();
    const PPDXSpecialOption* directory = controls.FindSpecialOption("*ZANAuthenticateWithLDAP", true);
    const PPDXJobNote* note = controls.FindJobNote("*QVUserAuthName", true);
    if (directory != nullptr && std::string_view(directory->GetValue()) == "True" && note != nullptr &&
        CFStringGetLength(note->CopyNotes()) == 0) {
        self.myUi_Panel->GetOSAccountName();
    }
}

// Lists, watermark and account keys belong to one queue. Those of another queue are dropped.
void TorkaFeaturesPDE::TakeSideSettings() {
    self.myPDEData->SetPrintSettings(self.printSettings);
    if (self.isOfThisQueue) {
        self.myPDEData->RestoreNonPSSettings();
    } else {
        self.myPDEData->DropNonPSSettings();
    }
}

// Runs once a panel. The print settings of this queue are newer than the notes that its description
// remembers.
void TorkaFeaturesPDE::TakePopupPreferences() {
    if (hasNoPopupJobNotes() || popupPreferences) {
        return;
    }
    if (!self.isOfThisQueue) {
        // The popup dialog asks for these notes with each job. Their own preferences decide whether the last
        // values return.
        for (PPDXJobNote* note : popupJobNotes(*self.myppd)) {
            note->ResetToDefaultValue();
        }
    }
    self.myppd->ReadPUJNPrefs();
    applyPopupJobNotePreferences(*self.myppd,
                                 self.isOfThisQueue ? RememberedValues::leave : RememberedValues::take);
}

// What the person changes from here on is written. Values that this queue's print settings brought were
// changed by the person before, so they differ from nothing that is noted here.
void TorkaFeaturesPDE::NotePopupPreferences() {
    if (!hasNoPopupJobNotes() && !popupPreferences) {
        popupPreferences = self.isOfThisQueue ? std::string() : popupJobNotePreferences(*self.myppd);
    }
}

bool TorkaFeaturesPDE::willShow() {
    becomeCurrent();
    if (interface && isQuickAccessOff()) {
        interface->setHidden(PaneOutlet::customizeQuickAccessButton, true);
        interface->setHidden(PaneOutlet::horizontalLine, true);
    }
    if (self.isBonjourPrinter) {
        ShowDiscoveredAddress();
    }
    TakeCustomPageSize();
    if (self.automationCalled == 0) {
        loadAutomationFileAndLoadPrintSetting();
    }
    self.automationCalled = 1;
    updatePageSizeAndInputSlot();
    self.myUi_Panel->DrawUserPane();
    self.myUi_Panel->Show();
    if (interface && CFStringGetLength(interface->stringValue(PaneOutlet::printerName)) == 0) {
        self.printer = self.pdePluginCallbackObject->PMPrinter();
        CFStringRef name;
        if (PMPrinterGetMakeAndModelName(self.printer, name) == noErr) {
            ShowPrinterName(name);
        }
    }
    return true;
}

void TorkaFeaturesPDE::ShowPrinterName(const CFStringRef& name) {
    if (interface && name) {
        interface->setStringValue(PaneOutlet::printerName, shownPrinterName(name));
    }
}

// Stores the service name in the device URI as the address of a queue that has none.
void TorkaFeaturesPDE::ShowDiscoveredAddress() {
    if (CFStringGetLength(self.myPDEData->GetCorvianPrinterAddress()) != 0) {
        return;
    }
    const CFStringRef address = breakBonjourURLIntoMeaningFullItems(self.printerURI);
    self.myPDEData->SetCorvianPrinterAddress(address, false);
    showPrinterAddress(address);
}

bool TorkaFeaturesPDE::IsListedPaper(const CFStringRef& name) const {
    std::vector<Paper> papers;
    PMPrinterGetPaperList(self.printer, papers);
    return std::any_of(papers.begin(), papers.end(), [&](const Paper& paper) {
        return CFStringCompare(cfString(paper.ppdPaperName), name, kCFCompareCaseInsensitive) == 0;
    });
}

// When the system does not tell whether its paper is a custom one, the paper counts as custom if the printer
// lists it. This is intended.
void TorkaFeaturesPDE::TakeCustomPageSize() {
    self.customPageSize = false;
    CFTypeRef value;
    PMPrintSettingsGetValue(self.printSettings, cfString("com.apple.print.subTicket.paper_info_ticket"),
                            value);
    const auto ticket = cfCast<CFDictionary>(value);
    const auto name =
        cfCast<CFString>(CFDictionaryGetValue(ticket, u"com.apple.print.PaperInfo.PMPaperName"));
    const auto custom =
        cfCast<CFBoolean>(CFDictionaryGetValue(ticket, u"com.apple.print.PaperInfo.PMCustomPaper"));
    if (!name || !(custom ? CFBooleanGetValue(custom) : IsListedPaper(name))) {
        return;
    }
    self.customPageSize = true;
    self.customPapername = name;
    if (system().MinorVersion() >= firstVersionWithPaperNames) {
        const std::string text = utf8Text(name);
        self.customPapername = cfString(text == "tabloid" ? "Tabloid" : text == "SRA3" ? "SRA3" : "Custom");
    }
}

void TorkaFeaturesPDE::TakeSystemPageSize() {
    if (self.myUi_Panel->GetOSPageSize()) {
        self.myPDEData->SetPageSizeFromOS(true);
        return;
    }
    self.myPDEData->SetPageSizeFromOS(false);
    PPDXPopupControl* size = self.myppd->GetControls()->FindPopup("*QVPrintSize", true);
    if (size != nullptr && static_cast<std::size_t>(std::max(size->GetValue(), 0)) <= size->ItemCount()) {
        size->SetValue(size->GetValue());
    }
}

void TorkaFeaturesPDE::SelectInputSlot() {
    std::array<char, trayNameSize> tray{};
    self.myPDEData->GetPrimayPaperFeedFromOS(tray.data(), trayNameSize);
    PPDXPopupControl* slot = self.myppd->GetControls()->FindPopup("*InputSlot", true);
    if (tray[0] != '\0' && slot != nullptr) {
        slot->SetKeywordSelect(tray.data(), true);
    }
}

// The dialog's own tabs choose orientation and collation; the controls of the description show them.
void TorkaFeaturesPDE::TakeSystemLayout() {
    const std::uint16_t orientation = self.myPDEData->GetPageOrientationFromOS();
    const bool isLandscape = orientation == kPMLandscape || orientation == kPMReverseLandscape;
    self.myppd->SetValueForKey(cfString("*QVOrientation"), cfString(isLandscape ? "Landscape" : "Portrait"));
    CFTypeRef collate;
    PMPrintSettingsGetValue(self.printSettings, cfString("com.apple.print.PrintSettings.PMCopyCollate"),
                            collate);
    if (const auto isCollated = cfCast<CFBoolean>(collate)) {
        self.myppd->SetValueForKey(cfString("*Collate"), cfString(isCollated->value ? "True" : "False"));
    }
}

void TorkaFeaturesPDE::updatePageSizeAndInputSlot() {
    TakeSystemPageSize();
    SelectInputSlot();
    TakeSystemLayout();
}

bool TorkaFeaturesPDE::updateUI() {
    becomeCurrent();
    SelectInputSlot();
    self.myUi_Panel->DrawUserPane();
    // Here the name is refreshed only on failure; when the pane is shown it is refreshed only on success.
    // This is intended.
    CFStringRef name;
    if (PMPrinterGetMakeAndModelName(self.printer, name) != noErr) {
        ShowPrinterName(name);
        if (self.bonjourViewRef) {
            self.bonjourViewRef->setIPAddress();
        }
    }
    return true;
}

bool TorkaFeaturesPDE::shouldHide() {
    if (interface && interface->customizeQuickAccess().validWindowSessionRunning()) {
        interface->customizeQuickAccess().doButtonCancelClicked();
    }
    if (self.bonjourViewRef && self.bonjourViewRef->validWindowSessionRunning()) {
        self.bonjourViewRef->clickedCancel();
    }
    return true;
}

} // namespace torka
