// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/TorkaFeaturesPDE.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConflictPairs.h"
#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/Utilities/MemoryShortage.h"
#include "bidi/commands/TicketCommands.h"
#include "connection/BonjourModuleController.h"
#include "output/ZANJobTicket.h"
#include "pane/data/PDEData.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/data/PresetStore.h"
#include "pane/exchange/DeferredCommands.h"
#include "pane/exchange/WaitPresenter.h"
#include "pane/panel/BundleHelpers.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Alert.h"
#include "platform/Log.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

// The settings of the model are written into the print settings and into the job, and kept for the next
// dialog.

namespace torka {

namespace {

constexpr int firstVersionWithSentTicket = 7;

} // namespace

void TorkaFeaturesPDE::Sync(const PDEPlugInCallbackRef& callback) {
    const PMPrintSettings settings = callback->printSettings();
    PrintSettingsTicket ticket(callback->printSession(), settings);
    ZANJobTicket(&ticket, settings, CreatePostscriptDataFileKey())
        .SavePPDForAllKeys(self.myppd.get(), GetBundleID());
}

bool TorkaFeaturesPDE::saveValuesAndReturnError(std::string* /*error*/) {
    const auto alive = shared_from_this();
    sendDeferredCommands();
    becomeCurrent();
    self.printSettings = self.pdePluginCallbackObject->printSettings();
    self.myPDEData->SetPrintSettings(self.printSettings);
    // The key of a pair has an asterisk until the Job Properties module names the pair. Only the key without
    // asterisk is sought.
    for (const WideSetting& pair : self.myPDEData->AccountPairs()) {
        if (utf8FromWide(pair.key) == "QVPCName") {
            PMPrintSettingsSetValue(self.printSettings, cfString("*QVPCName"),
                                    cfString(utf8FromWide(pair.value)), false);
            break;
        }
    }
    self.myPDEData->SaveNonPSSettings();
    if (self.myPDEData->isBIDIEnabled()) {
        self.myUi_Panel->makeJobNotesForSpecialControls();
    }
    StoreTypedAddress();
    Sync(self.pdePluginCallbackObject);
    return true;
}

void TorkaFeaturesPDE::StoreTypedAddress() {
    if (interface && self.bonjourViewRef) {
        self.myPDEData->SetCorvianPrinterAddress(interface->stringValue(PaneOutlet::printerAddress),
                                                 self.bonjourViewRef->isBIDIEnabled());
    }
}

void TorkaFeaturesPDE::TakeDocumentServer() {
    const CFStringRef value = self.myppd->CopyValueForKey(cfString("*QVDocServer"));
    gDocumentServer = utf8Text(value) == "True";
}

// Every window and wait on the way runs the event loop, in which a person may turn to another dialog.
bool TorkaFeaturesPDE::shouldPrint() {
    const auto alive = shared_from_this();
    becomeCurrent();
    updatePageSizeAndInputSlot();
    if (!ConfirmConflicts()) {
        return false;
    }
    becomeCurrent();
    if (!hasNoPopupJobNotes() && LoadInterface() && !interface->popupJobNotes().handlePopupJobnoteUI()) {
        return false;
    }
    becomeCurrent();
    if (!ConfirmBrokenNotes()) {
        return false;
    }
    sendDeferredCommands();
    if (!WriteTicket(EmissionPurpose::printJob)) {
        return false;
    }
    becomeCurrent();
    WritePopupPreferences();
    presets->RememberLastUsed();
    self.isDocumentPrinting = true;
    TellLeftOutNotes();
    return true;
}

// The dialog's own tabs choose the page size and the tray without regard to the constraints. Without widgets
// the log names what is in conflict.
bool TorkaFeaturesPDE::ConfirmConflicts() {
    const UIConstraints& constraints = *self.myppd->GetUIConstraints();
    const auto pairs = conflictPairs(constraints, *constraints.GetCurrentSelections());
    if (pairs.empty()) {
        return true;
    }
    if (LoadInterface()) {
        return interface->confirmConflicts();
    }
    const CStringSoup& strings = *constraints.GetConstraintStrings();
    for (const auto& [one, other] : pairs) {
        myNSLogC("%s %s does not go together with %s %s.", strings.Find(one.key), strings.Find(one.option),
                 strings.Find(other.key), strings.Find(other.option));
    }
    return true;
}

// A broken rule stops no print: the person decides. Without widgets the log names the notes.
bool TorkaFeaturesPDE::ConfirmBrokenNotes() {
    std::vector<const PPDXJobNote*> broken;
    self.myppd->GetControls()->ForEach([&](const PPDXControl* control) {
        const auto* note = dynamic_cast<const PPDXJobNote*>(control);
        if (note != nullptr && !note->BrokenRules().empty()) {
            broken.push_back(note);
        }
    });
    if (broken.empty()) {
        return true;
    }
    if (LoadInterface()) {
        return interface->confirmBrokenNotes();
    }
    for (const PPDXJobNote* note : broken) {
        for (const BrokenNoteRule& rule : note->BrokenRules()) {
            myNSLogC("%s %s.", note->Keyword(), rule.Words().c_str());
        }
    }
    return true;
}

bool TorkaFeaturesPDE::WriteTicket(EmissionPurpose purpose) {
    const std::uint64_t shortagesBefore = gMemoryShortages;
    becomeCurrent();
    RefreshFromCallback();
    TakeDocumentServer();
    self.myPDEData->SetPrintSettings(self.printSettings);
    PrintSettingsTicket ticket(self.mySession, self.printSettings);
    ZANJobTicket jobTicket(&ticket, self.printSettings, CreatePostscriptDataFileKey());
    self.myPDEData->OutPostscriptData(jobTicket, self.mySession, purpose);
    jobTicket.SavePPDForAllKeys(self.myppd.get(), GetBundleID());
    const CFDataRef list = jobTicket.Save();
    if (purpose != EmissionPurpose::printJob) {
        return true;
    }
    if (gMemoryShortages != shortagesBefore) {
        Tell(LocalizedString("NOT_PRINTED", "The job is not printed"),
             LocalizedString("NO_MEMORY_INFO", "There is not enough memory for all of its settings."));
        return false;
    }
    OSStatus status = jobTicket.PathStatus();
    if (status == noErr && system().MinorVersion() >= firstVersionWithSentTicket) {
        status = sendTicketAhead(self.printer, jobTicket.FileName(), list);
    }
    if (status != noErr) { // the filter stops the job; another one may print it without its settings
        myNSLogC("Queue %s, error %d:", utf8Text(PMPrinterGetName(self.printer)).c_str(),
                 static_cast<int>(status));
        Tell(LocalizedString("NO_TICKET", "The settings are not sent with this job"),
             LocalizedString("NO_TICKET_INFO", "The print queue did not take them."));
    }
    return true;
}

void TorkaFeaturesPDE::Tell(const std::string& what, const std::string& why) const {
    myNSLogC("%s. %s", what.c_str(), why.c_str());
    if (hasAlerts()) {
        alerts().RunModal({what, why, LocalizedString("OK", "OK"), {}});
    }
}

// Sends only what the person changed. Otherwise the record of the queue stays as it is.
void TorkaFeaturesPDE::WritePopupPreferences() {
    if (hasNoPopupJobNotes()) {
        return;
    }
    const std::string now = popupJobNotePreferences(*self.myppd);
    if (now == popupPreferences) {
        return;
    }
    if (const OSStatus status = QVPDEDataWrite(self.printer, now); status != noErr) {
        myNSLogC("The queue did not take the preferences of the popup notes (error %d).",
                 static_cast<int>(status));
        return;
    }
    popupPreferences = now;
}

// Tells the person which notes stay out of the job because they could not be protected, and which settings
// because their code is too long, their value is below 0 or a job has one choice of their list.
void TorkaFeaturesPDE::TellLeftOutNotes() {
    // One line; "" without names.
    const auto line = [](const std::string& why, const std::vector<std::string>& names) {
        std::string text;
        for (const std::string& name : names) {
            text.append(text.empty() ? std::string_view(why) : ",").append(" ").append(name);
        }
        return text;
    };
    const auto tell = [this](const std::string& what, const std::string& text) {
        if (!text.empty()) {
            Tell(what, text);
        }
    };
    std::vector<std::string> notes;
    std::vector<std::string> mailbox;
    for (const ZANJobNoteList::LeftOutNote& note : self.myPDEData->LeftOutNotes()) {
        auto& list = note.reason == LeftOutReason::plainDestination ? mailbox : notes;
        list.push_back(note.title.empty() ? note.keyword : note.title);
    }
    const std::string unprotected =
        line(LocalizedString("NOTES_LEFT_OUT_INFO",
                             "They must be enciphered, and the key for it could not be read:"),
             notes);
    const std::string unnamed =
        line(LocalizedString("MAILBOX_LEFT_OUT_INFO",
                             "This field must be enciphered, so that the job goes into no mailbox:"),
             mailbox);
    tell(LocalizedString("NOTES_LEFT_OUT", "Some fields are not sent with this job"),
         unprotected + (unprotected.empty() || unnamed.empty() ? "" : "\n") + unnamed);
    const std::string tooLong =
        line(LocalizedString(
                 "SETTINGS_LEFT_OUT_INFO",
                 "Their code is too long for a job. The print system prints them itself where it can:"),
             LeftOutSettingNames(false));
    const std::string belowZero = line(
        LocalizedString("SETTINGS_BELOW_ZERO", "A job takes no value below 0:"), LeftOutSettingNames(true));
    const std::string reduced =
        line(LocalizedString("SETTINGS_ONE_CHOICE",
                             "Of these lists a job has one choice, the one selected or deselected last:"),
             ReducedLists());
    std::string all;
    for (const std::string& each : {tooLong, belowZero, reduced}) {
        all += (all.empty() || each.empty() ? "" : "\n") + each;
    }
    tell(LocalizedString("SETTINGS_LEFT_OUT", "Some settings are not sent with this job"), all);
}

// "NAME (CHOICE)" of each list whose selection is not the one choice that leaves.
std::vector<std::string> TorkaFeaturesPDE::ReducedLists() const {
    std::vector<std::string> lists;
    self.myppd->GetControls()->ForEach([&lists](PPDXControl* control) {
        const auto* popup = dynamic_cast<const PPDXPopupControl*>(control);
        if (popup == nullptr || !popup->CanSelectMultipleItems() || popup->IsInstallableOption()) {
            return;
        }
        int selected = 0;
        popup->ForEachItem([&selected](const _PopupItem& item) { selected += item.selected != 0 ? 1 : 0; });
        const std::string sent(popup->EmittedKeyword());
        if (!sent.empty() && (selected != 1 || !popup->IsKeywordSelected(sent.c_str()))) {
            const CFStringRef choice = popup->GetKeywordCFLocalName(sent.c_str());
            lists.push_back(utf8Text(popup->CFStringUserName()) + " (" + utf8Text(choice) + ")");
        }
    });
    return lists;
}

std::vector<std::string> TorkaFeaturesPDE::LeftOutSettingNames(bool belowZero) const {
    std::vector<std::string> names;
    for (const LeftOutSetting& setting : self.myPDEData->LeftOutSettings()) {
        if (setting.isBelowZero != belowZero) {
            continue;
        }
        const PPDXControl* control = self.myppd->GetPPDXControlForKey(cfString(setting.keyword));
        const std::string name = control == nullptr ? "" : utf8Text(control->CFStringUserName());
        names.push_back(setting.keyword == "watermark"
                            ? LocalizedString("SETTINGS_LEFT_OUT_WATERMARK", "watermark")
                        : name.empty() ? setting.keyword
                                       : name);
    }
    return names;
}

void TorkaFeaturesPDE::printWindowWillClose() {
    const auto alive = shared_from_this();
    if (!self.isDocumentPrinting) {
        // The dialog was cancelled. The settings stay in the print settings.
        WriteTicket(EmissionPurpose::keepSettings);
    }
    // The end of a pane that was never seen must not wait.
    sendDeferred(deferred, {self.mySession, ScopedWait::Observer()}, SavesWait::no);
    StoreTypedAddress();
}

} // namespace torka
