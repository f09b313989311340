// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/TorkaFeaturesPDE.h"

#include "PPDX/PPDObjects/Interface/UTF8Level.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bidi/commands/CommandJob.h"
#include "bidi/module/JobPropertiesState.h"
#include "connection/BonjourModuleController.h"
#include "pane/data/CutText.h"
#include "pane/data/PDEData.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/data/PresetStore.h"
#include "pane/exchange/DeferredCommands.h"
#include "pane/exchange/ServerExchange.h"
#include "pane/exchange/WaitPresenter.h"
#include "pane/panel/BundleHelpers.h"
#include "pane/panel/PrinterListFile.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

// The start and end of a panel, and which panel of the process is the current one.

namespace torka {

namespace {

constexpr std::size_t maximumLinkBytes = 1023;
constexpr std::size_t minimumLanguageCode = 2;
constexpr std::string_view cachesPrefix = "/Library/Caches/ZAN/";
constexpr std::string_view openFileSuffix = ".pdeopen";

std::vector<TorkaFeaturesPDE*> livingPanels; // in the order of their starts

// The target of a symbolic link; "" when the path is no link.
std::string linkTarget(const std::string& path) {
    std::error_code failure;
    const std::string target = std::filesystem::read_symlink(path, failure).string();
    return failure ? std::string() : target.substr(0, maximumLinkBytes);
}

// Logs the error that ended the reading of a description before its end: settings are missing then. A file of
// another format is the description of a printer without a pane.
bool isReadWhole(ZANPPD& description, const CFURLRef& url) {
    PPDXErrors& errors = *description.Errors();
    const PPDXErrorObj* error = errors.First();
    while (error != nullptr && (!error->IsFatal() || *error == PPDErr_NotPPDFile)) {
        error = errors.Next();
    }
    if (error != nullptr && url) {
        myNSLogC("The description %s is not read to its end (%s): the printer has no features pane.",
                 CFURLCopyFileSystemPath(url).c_str(), ppdErrName(error->Code()));
    }
    return error == nullptr;
}

} // namespace

TorkaFeaturesPDE::TorkaFeaturesPDE(PDEPlugInCallbackRef callback) {
    self.pdePluginCallbackObject = std::move(callback);
}

std::shared_ptr<TorkaFeaturesPDE> TorkaFeaturesPDE::initWithCallback(const PDEPlugInCallbackRef& callback) {
    std::shared_ptr<TorkaFeaturesPDE> panel(new TorkaFeaturesPDE(callback));
    return callback && panel->Start() ? panel : nullptr;
}

bool TorkaFeaturesPDE::Start() {
    KeepStateOfCurrent();
    gVectorWorksFix = 0;
    gEndOfPPD = false;
    RefreshFromCallback();
    const CFURLRef descriptionUrl = TakeDescription();
    resetPopupJobNotes();
    thePMPrinter = &self.printer;
    TakeDeviceUri();
    self.pdeBundle = GetBundleRef();
    currentPrintSession = self.mySession;

    const PrinterListFile list(CreatePDEContentsURL(GetBundleID()));
    const bool isListed =
        list.IsValid() && PPDX::ValidateFileName(descriptionUrl, list.PCFileNames(), nullptr);
    if (!list.IsValid()) {
        myNSLogC("The bundle's PrinterList.plist is missing or broken: no printer has a features pane.");
    }
    BuildModel(descriptionUrl);
    const CString* makerVersion = self.myppd->MakerVersion();
    const bool isWhole = isReadWhole(*self.myppd, descriptionUrl);
    if (!isWhole || !isListed || makerVersion == nullptr || makerVersion->Empty()) {
        return false;
    }
    MakePaneData();
    TakeInstance();
    self.myUi_Panel = std::make_unique<UI_Panel>(self.myPDEData.get(), this);
    queueFileName = sessionQueueName;
    descriptionPath = destinationPPD();
    PublishQueue();
    if (gServerLanguage.size() >= minimumLanguageCode) {
        deferred->language = gServerLanguage;
    }
    lookForPopupJobNotes(*self.myppd);
    readPopupJobNotePreferencesFrom(destinationPPD());

    restoreValuesAndReturnError(nullptr);
    Sync(self.pdePluginCallbackObject);
    self.shouldRestore = true;
    self.isOfThisQueue = true;
    TakeDocumentServer();
    if (hasNoPopupJobNotes()) {
        return true;
    }
    gPopupJobNotesDefaultsButton = 0;
    ObservePopupJobNotes();
    TakeLanguageOfPopupJobNotes();
    return true;
}

void TorkaFeaturesPDE::RefreshFromCallback() {
    self.mySession = self.pdePluginCallbackObject->printSession();
    self.printSettings = self.pdePluginCallbackObject->printSettings();
    self.printer = self.pdePluginCallbackObject->PMPrinter();
}

CFURLRef TorkaFeaturesPDE::TakeDescription() {
    CFURLRef url;
    PMPrinterCopyDescriptionURL(self.printer, cfString("PMPPDDescriptionType"), url);
    const std::string path = CFURLCopyFileSystemPath(url);
    if (!getQueuePPDName(linkTarget(path))) {
        // CUPS gives a path that is no link.
        sessionQueueName =
            cutText(utf8Text(PMPrinterGetName(describedPrinter(self.printer))), sessionQueueNameSize);
    }
    setDestinationPPD(path);
    return url;
}

bool TorkaFeaturesPDE::getQueuePPDName(std::string_view path) {
    constexpr std::string_view suffix = ".ppd";
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || path.substr(slash).find(suffix) == std::string_view::npos) {
        return false;
    }
    std::string name(path.substr(slash + 1));
    for (std::size_t at = 0; (at = name.find(suffix, at)) != std::string::npos;) {
        name.erase(at, suffix.size());
    }
    sessionQueueName = name.substr(0, sessionQueueNameSize - 1);
    return true;
}

void TorkaFeaturesPDE::TakeDeviceUri() {
    PMPrinterCopyDeviceURI(self.printer, self.printerURI);
    const CFStringRef uri = CFURLGetString(self.printerURI);
    self.isBonjourPrinter = CFStringHasPrefix(uri, u"dnssd") || CFStringHasPrefix(uri, u"mdns");
}

void TorkaFeaturesPDE::BuildModel(const CFURLRef& descriptionUrl) {
    // The popup job notes in memory belong to the queue of the previous panel.
    readPopupJobNotePreferencesFrom({});
    self.myppd = std::make_unique<ZANPPD>(descriptionUrl, kAcceptOrphans | kAcceptHidden, nullptr);
    self.shouldRestore = false;
    self.isOfThisQueue = false;
    const CString* name = self.myppd->PCFileName();
    if (name == nullptr) {
        return;
    }
    // Reads the text that the print settings hold under the key, and puts the panel's own in its place.
    const auto exchange = [this](const char* key, const CFStringRef& own) {
        CFTypeRef kept;
        PMPrintSettingsGetValue(self.printSettings, cfString(key), kept);
        PMPrintSettingsSetValue(self.printSettings, cfString(key), own, false);
        return cfCast<CFString>(kept);
    };
    const CFStringRef ownFile = cfString(name->Buffer());
    const CFStringRef file = exchange("PCFILENAME", ownFile);
    self.shouldRestore = file && CFStringCompare(file, ownFile, kCFCompareCaseInsensitive) == 0;
    const CFStringRef ownQueue = PMPrinterGetName(self.printer);
    const CFStringRef queue = exchange("ZAN.QueueName", ownQueue);
    self.isOfThisQueue = self.shouldRestore && queue && CFEqual(queue, ownQueue);
}

void TorkaFeaturesPDE::MakePaneData() {
    deferred = std::make_shared<DeferredCommands>();
    const QueueAccess queue{self.mySession, ScopedWait::Observer()};
    self.myPDEData = std::make_unique<PDEData>(
        self.myppd.get(), PMPrinterGetName(self.printer), queue,
        [queue, held = deferred] { return std::make_unique<PaneAddressStore>(queue, held); });
    self.myPDEData->SetPageFormat(self.pdePluginCallbackObject->pageFormat());
    self.myPDEData->SetPrintSettings(self.printSettings);
    self.myPDEData->SetBundle(self.pdeBundle);
    if (const BundleRef bundle = GetBundleRef()) {
        self.myBundleVersion = cfCast<CFString>(bundle->InfoValue(u"CFBundleVersion"));
    }
    presets = std::make_unique<PresetStore>(PMPrinterGetName(self.printer), *self.myppd, *self.myPDEData);
    server = std::make_unique<ServerExchange>(
        [bundle = self.pdeBundle](std::string_view table, std::string_view key, std::string_view text) {
            return bundle ? utf8Text(bundle->LocalizedString(cfString(key), cfString(text), table))
                          : std::string(text);
        });
    server->SetQueue(destinationPPD(), utf8Text(PMPrinterGetName(describedPrinter(self.printer))),
                     utf8Text(queueServiceName()));
}

// Sets the process-wide variables that name the session and the files of the panel's queue.
void TorkaFeaturesPDE::PublishQueue() {
    thePMPrinter = &self.printer;
    currentPrintSession = self.mySession;
    sessionQueueName = queueFileName;
    setDestinationPPD(descriptionPath);
    cachesPDEOpenFilePath = std::string(cachesPrefix) + sessionQueueName + std::string(openFileSuffix);
    cachesPDEOpenFilePath.resize(std::min(cachesPDEOpenFilePath.size(), cachesPDEOpenFilePathSize - 1));
    fillPDEInstallPath();
}

// Before another panel takes over what is process-wide.
void TorkaFeaturesPDE::KeepStateOfCurrent() {
    const auto current = std::ranges::find_if(livingPanels, &TorkaFeaturesPDE::IsCurrent);
    if (current != livingPanels.end()) {
        (*current)->popupNotesState = popupJobNotesState();
        (*current)->knownPopupPreferences = knownPopupJobNotePreferences();
        (*current)->self.myUi_Panel->KeepTree();
    }
}

// Everything process-wide belonged to another panel. The texts of notes are bytes in the encoding of their
// own description: in another one they would be read, typed and printed as other letters.
void TorkaFeaturesPDE::PublishAgain() {
    PublishQueue();
    self.myUi_Panel->Publish();
    SetApplicationTextEncoding(self.myppd->TextEncoding());
    refreshUTF8Level(self.myppd->GetControls());
    TakeDocumentServer();
    resetPopupJobNotes();
    setPopupJobNotesState(popupNotesState);
    readPopupJobNotePreferencesFrom(destinationPPD());
    setKnownPopupJobNotePreferences(knownPopupPreferences);
}

void TorkaFeaturesPDE::becomeCurrent() {
    if (std::ranges::find(livingPanels, this) == livingPanels.end()) {
        return; // it is about to end
    }
    if (!gIgnoreButtonEvents) { // a module that runs keeps its host
        setJobPropertiesHost(this);
    }
    if (!IsCurrent()) {
        KeepStateOfCurrent();
        PublishAgain();
    }
}

void TorkaFeaturesPDE::TakeLanguageOfPopupJobNotes() {
    const CString* language = self.myppd->LanguageVersion();
    gPopupJobNotesLangIsJapanese = language != nullptr && *language == "Japanese";
}

// For a third panel while two exist: the end of the first panel must leave the pointers, which name the other
// two.
void TorkaFeaturesPDE::TakeInstance() {
    invalidDeallocCall = sTorkaFeaturesPDEsaved != nullptr;
    if (sTorkaFeaturesPDE != nullptr) {
        sTorkaFeaturesPDEsaved = sTorkaFeaturesPDE;
    }
    sTorkaFeaturesPDE = this;
    livingPanels.push_back(this);
    if (!gIgnoreButtonEvents) {
        setJobPropertiesHost(this);
    }
}

// Updates the process-wide pointers at the end of a panel. When invalidDeallocCall is set, the end only
// clears it and leaves the pointers that name other panels. No pointer may name a panel that has ended,
// whatever the order in which panels end. While any panel lives, one is the current one.
void TorkaFeaturesPDE::LeaveInstance() {
    if (self.myPDEData == nullptr) {
        return; // it never was the newest panel
    }
    std::erase(livingPanels, this);
    if (invalidDeallocCall) {
        invalidDeallocCall = false;
    } else if (sTorkaFeaturesPDEsaved != nullptr) {
        sTorkaFeaturesPDEsaved = nullptr;
    } else {
        sTorkaFeaturesPDE = nullptr;
    }
    if (sTorkaFeaturesPDEsaved == this) {
        sTorkaFeaturesPDEsaved = nullptr;
    }
    if (sTorkaFeaturesPDE == this || sTorkaFeaturesPDE == nullptr) {
        sTorkaFeaturesPDE = livingPanels.empty() ? nullptr : livingPanels.back();
        sTorkaFeaturesPDEsaved = nullptr;
    }
    if (jobPropertiesHost() == this) {
        setJobPropertiesHost(sTorkaFeaturesPDE);
    }
}

TorkaFeaturesPDE::~TorkaFeaturesPDE() {
    LeaveInstance();
    if (IsCurrent()) {
        thePMPrinter = nullptr;
        currentPrintSession = nullptr;
        if (sTorkaFeaturesPDE != nullptr) {
            sTorkaFeaturesPDE->PublishAgain();
        }
    }
    ViewRef outputBinsView;
    if (interface) {
        if (interface->customizeQuickAccess().validWindowSessionRunning()) {
            interface->customizeQuickAccess().doButtonCancelClicked();
        }
        outputBinsView = interface->outputBinsView();
    }
    // Widgets and their controllers refer to the model and end first. The root view may live on with the
    // dialog.
    if (self.myUi_Panel) {
        self.myUi_Panel->GetCustomizePane().setView(nullptr);
    }
    self.bonjourViewRef.reset();
    interface.reset();
    self.myUi_Panel.reset();
    presets.reset();
    self.myppd.reset();
    self.myPDEData.reset();
}

void TorkaFeaturesPDE::fillPDEInstallPath() {
    sessionPDEPath.clear();
    const std::filesystem::path installed(self.myppd->PathToPDE());
    const std::filesystem::path folder = installed.parent_path();
    std::error_code ignored;
    if (!folder.empty() && std::filesystem::is_directory(system().Resolve(folder.string()), ignored)) {
        sessionPDEPath = (folder.string() + "/").substr(0, sessionPDEPathSize - 1);
    }
}

bool TorkaFeaturesPDE::LoadInterface() {
    if (interface || interfaceFailed) {
        return interface != nullptr;
    }
    if (!paneInterfaceLoader()) {
        myNSLogC("The features pane has no widgets: its interface has no loader.");
    } else {
        interface = paneInterfaceLoader()(*this, self.pdeBundle);
    }
    if (!interface) {
        interfaceFailed = true;
        return false;
    }
    self.myUi_Panel->GetCustomizePane().setView(&interface->customizePane());
    self.bonjourViewRef = BonjourModuleController::init(*self.myUi_Panel, interface->addressSheet());
    // The address is shown at the start, not only when the pane is first seen: a dialog that ends before
    // stores the text of the field.
    self.myUi_Panel->Show();
    if (isQuickAccessOff()) {
        enableCustomizedViewForDMT();
    }
    interface->whenFirstPainted([panel = weak_from_this()] {
        if (const auto alive = panel.lock()) {
            alive->sendDeferredCommands();
            alive->requestServerData(ServerExchange::Failures::quiet);
        }
    });
    return true;
}

// The fields of the popup job-note dialog. Row n has n fields of each kind; plain fields come first.
void TorkaFeaturesPDE::ObservePopupJobNotes() {
    if (!LoadInterface()) {
        return;
    }
    for (const char* kind : {"popupJobNoteVal", "popupJobNoteSec"}) {
        for (char row = '1'; row <= '5'; ++row) {
            for (char column = '1'; column <= row; ++column) {
                interface->popupJobNotes().observeControlTextDidChange(std::string(kind) + row + column);
            }
        }
    }
}

void TorkaFeaturesPDE::sendDeferredCommands() {
    if (deferred) {
        // A wait runs the event loop, in which the dialog may release the panel.
        const auto alive = shared_from_this();
        sendDeferred(deferred, {self.mySession, ScopedWait::Observer()}, SavesWait::yes);
    }
}

} // namespace torka
