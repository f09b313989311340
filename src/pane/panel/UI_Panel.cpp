// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/UI_Panel.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bidi/commands/BidiFailure.h"
#include "bidi/module/JobPropertiesSession.h"
#include "bidi/module/JobPropertiesState.h"
#include "pane/data/CutText.h"
#include "pane/data/PDEData.h"
#include "pane/panel/PanelServices.h"
#include "platform/Alert.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <utility>

// Construction, what is shown, and the course of a launch of the Job Properties module.

namespace torka {

ZANPPD* UI_Panel::mPPD = nullptr;
PPDTree UI_Panel::Tree;
UI_Panel* sUiPanelOnJPReturn = nullptr;
SharedMemoryList* sSharedList = nullptr;
int gSharedMemoryFileDescriptor = -1;
bool gIgnoreButtonEvents = false;
bool sLoadingHelper = false;
std::chrono::steady_clock::time_point sLoadingTime;

namespace {

constexpr EventTimerInterval returnCheckDelay{0.01};
constexpr std::size_t addressSize = 256; // bytes with terminator
constexpr const char* bidiTable = "BidiStrings";

// Status of the record.
constexpr std::string_view moduleRuns = "-1";
constexpr std::string_view accepted = "0";
constexpr std::string_view cancelled = "1";

EventLoopTimerRef returnTimer;

// Forgets the last answer of the module when nothing is compared with it any more.
void forgetModuleSettings() {
    gotSharedListFromJP = false;
    sharedListCopyFromJP.reset();
}

std::string_view headerText(const CString* value) {
    return value && value->Buffer() ? std::string_view(value->Buffer()) : std::string_view();
}

// The version to tell the module: only 4.4 and later versions that begin with "4."; "" for others.
std::string_view versionForModule(std::string_view version) {
    if (!version.starts_with("4.")) {
        return {};
    }
    for (const std::string_view old : {"4", "4.0", "4.1", "4.2", "4.3"}) {
        if (version == old) {
            return {};
        }
    }
    return version;
}

} // namespace

UI_Panel::UI_Panel(PDEData* pdeData, PanelServices* services)
    : mPDEData(pdeData)
    , mCustomizePane(std::make_unique<CustomizePaneController>(pdeData->PPDModel()))
    , mSharedList(newSharedMemoryList())
    , panel(services)
    , model(pdeData->PPDModel()) {
    mCustomizePane->SetServerPresetReset([this] { resetJPServerpresetKeys(); });
    mPDEData->SetPageOrientation(mPDEData->GetPageOrientationFromOS());
    Publish();
    const bool isFromSystem = GetOSPageSize();
    mPDEData->SetPageSizeFromOS(isFromSystem);
    PPDXPopupControl* printSize = model->GetControls()->FindPopup("*QVPrintSize", true);
    if (!isFromSystem && printSize) {
        printSize->SetValue(1);
    }
    mPDEData->Watermarks().Clear();
    handed.sideListEntries.fill(SIZE_MAX);

    bool ipEnabled = false;
    CFStringRef address = mPDEData->GetCorvianPrinterAddress(&ipEnabled);
    if (!address) {
        address = cfString("");
        mPDEData->SetCorvianPrinterAddress(address, false); // the discovery controller does not exist yet
    }
    WriteTwoWayState(ipEnabled, address);
    mPDEData->GetWatermarksFromPreferences();
    GetWatermarks(*mSharedList);
    KeyValueList list;
    GetDefaultSettings(list);
    writeSettings(*mSharedList, list.List());
    setField(mSharedList->ppdCopyPath, mPDEData->PPDCopyPath());
    LoadHelperModule();
    gServerLanguage.clear();
    getCurrentLocaleCode();
}

UI_Panel::~UI_Panel() {
    if (sUiPanelOnJPReturn == this) {
        sUiPanelOnJPReturn = nullptr;
        Tree = {};
        mPPD = nullptr;
    }
    if (sSharedList == mSharedList.get()) {
        sSharedList = nullptr;
        forgetModuleSettings();
    }
}

void UI_Panel::KeepTree() { mKeptTree = std::exchange(Tree, {}); }

// A kept tree is not read again: what another dialog has stored since would count as known to this one.
void UI_Panel::Publish() {
    mPPD = model;
    if (mKeptTree) {
        Tree = *std::exchange(mKeptTree, std::nullopt);
    } else {
        PopulatePPDTreeStructure();
    }
    sUiPanelOnJPReturn = this;
    sSharedList = mSharedList.get();
}

void UI_Panel::DrawUserPane() { mCustomizePane->drawControlsInTree(Tree); }

void UI_Panel::Show() {
    bool ipEnabled = false;
    const CFStringRef address = mPDEData->GetCorvianPrinterAddress(&ipEnabled);
    if (mBonjourModuleController) {
        mBonjourModuleController->setprinterIPField(address);
        mBonjourModuleController->setBIDIStatusON(ipEnabled && CFStringGetLength(address) != 0);
    }
}

void UI_Panel::LoadHelperModule() {
    sLoadingHelper = true;
    sLoadingTime = platform::system().Now();
    const std::string_view plugIn = model->PathToPDE();
    if (plugIn.empty()) {
        return;
    }
    setField(mSharedList->osVersion, versionForModule(headerText(model->MakerVersion())));
    std::string_view name = plugIn.substr(plugIn.rfind('/') + 1);
    name = name.substr(0, name.find(' '));
    setField(mSharedList->plugInName, name);
    setField(mSharedList->driverVersion, panel ? utf8Text(panel->bundleVersion()) : std::string());
}

bool UI_Panel::isPylon3() const {
    const std::string_view version = headerText(model->MakerVersion());
    return version.find("4.2") != std::string_view::npos || version.find("4.3") != std::string_view::npos;
}

bool UI_Panel::isModuleInstalled(bool tell) {
    if (!panel) {
        return false;
    }
    const ModuleAvailability module = loadJobPropertiesLibrary(moduleBesideBundle(panel->bundlePath()));
    if (module.status == ModuleStatus::loaded) {
        return true;
    }
    if (!module.reason.empty()) {
        myNSLogC("The Job Properties module does not load: %s", module.reason.c_str());
    }
    if (tell) {
        TellPerson(
            Text("JP_NOT_INSTALLED", "The full properties are not installed", bidiTable),
            Text("JP_NOT_INSTALLED_L",
                 "The Job Properties module is missing or cannot be loaded. The settings of this pane can be "
                 "used without it. Install the driver again to get the full properties.",
                 bidiTable));
    }
    return false;
}

void UI_Panel::ShowInvalidAddress() {
    TellPerson(Text("INVALID_IP_ADDRESS", "You have entered an invalid IP Address or DNS Name", bidiTable),
               Text("PRESS_OKAY", "Press OK to enter a new IP Address or DNS Name.", bidiTable));
}

// Writes and returns whether the module may use two-way communication. It needs an address.
bool UI_Panel::WriteTwoWayState(bool twoWay, const CFStringRef& address) {
    const std::string text = cutText(utf8Text(address), addressSize);
    const bool isOn = twoWay && !text.empty();
    setField(mSharedList->bidiEnabled, isOn ? "1" : "0");
    if (isOn) {
        setField(mSharedList->printerAddress, text);
    }
    return isOn;
}

bool CheckRemote(bool twoWay) {
    return twoWay && sSharedList && !fieldText(sSharedList->printerAddress).empty();
}

void UI_Panel::LaunchJobProperties(JP_ACTIONS action) {
    if (gIgnoreButtonEvents) {
        return;
    }
    const bool twoWay = mPDEData->isBIDIEnabled();
    if (action == kJPInvalidAddress) {
        if (twoWay) {
            ShowInvalidAddress();
        }
        return;
    }
    if (!isModuleInstalled(true)) {
        return;
    }
    BecomeCurrent();
    // The module gets the values of the colour controls from their notes.
    makeJobNotesForSpecialControls();
    KeyValueList list;
    GetDefaultSettings(list);
    GetWatermarks(*mSharedList);
    setField(mSharedList->ppdCopyPath, mPDEData->PPDCopyPath());
    WriteTwoWayState(twoWay, mBonjourModuleController ? mBonjourModuleController->printerIPField()
                                                      : mPDEData->GetCorvianPrinterAddress());
    EnableLaunching(false);
    presetAtLaunch = CurrentServerPreset();
    writeSettings(*mSharedList, list.List());
    FreeSDMList(list);
    setField(mSharedList->jpResult, moduleRuns);

    // mainJP runs the event loop of the window. The record must live until the module has ended, even if the
    // panel ends before. A launch around this one holds the record too.
    const std::shared_ptr<SharedMemoryList> record = mSharedList;
    const std::weak_ptr<const bool> panelLives = life;
    gIgnoreButtonEvents = true;
    sharedList = record.get();
    mainJP();
    sharedList = nullptr;
    gIgnoreButtonEvents = false;
    if (!panelLives.expired()) {
        OnJPReturn();
    } else {
        forgetModuleSettings();
    }
}

void UI_Panel::EnableLaunching(bool on) {
    if (panel) {
        panel->setFullPropertiesButtonStatusON(on);
        panel->setDefaultsButtonStatusON(on);
        panel->setCustomizeQuickAccessButtonButtonStatusON(on);
    }
    mCustomizePane->greyoutShortcutControls(!on);
    if (mBonjourModuleController) {
        mBonjourModuleController->setConfigureButtonEnabled(on && mPDEData->isBIDIEnabled());
        mBonjourModuleController->setBIDICheckBoxEnabled(on);
    }
}

void UI_Panel::BecomeCurrent() {
    if (panel) {
        panel->becomeCurrent();
    }
}

void UI_Panel::OnJPReturn() {
    BecomeCurrent();
    writeLocalJPPresetsToDynamicPPD();
    mReturnFromJP = 1;
    if (panel) {
        panel->bringToFront();
    }
    EnableLaunching(true);
    const std::string status(fieldText(mSharedList->jpResult));
    if (status == moduleRuns) {
        if (LaunchAgainWithoutTwoWay()) {
            return;
        }
    } else if (status == accepted) {
        TakeAnswer();
    } else if (status != cancelled && mPDEData->isBIDIEnabled()) {
        ShowInvalidAddress();
        return;
    } else if (!compareJPServerPresets()) {
        revertBackJPServerPresets();
    }
    DrawUserPane();
}

void UI_Panel::TakeAnswer() {
    KeyValueList list;
    Create_SDMList_From_SharedMemoryList(list, *mSharedList);
    UpdateWatermarks(*mSharedList);
    SetUpdatedSettings(list.List());
    if (mPDEData->Watermarks().Count() == 0) {
        mPDEData->ForgetWatermarkPreferences(); // the module deleted the last one
    } else {
        mPDEData->SaveWatermarksToPreferences();
    }
    FreeSDMList(list);
}

// Called when no session could begin. Without two-way communication a second launch would fail as well, so
// the person is told and the module is not opened again.
bool UI_Panel::LaunchAgainWithoutTwoWay() {
    if (!panel) {
        return false;
    }
    panel->bidiFailure().showBiDiError();
    if (panel->bidiFailure().printerInBusyState_ContinueBiDiOFF() != BidiChoice::continueBidiOff ||
        !mPDEData->isBIDIEnabled()) {
        return false;
    }
    if (mBonjourModuleController) {
        mBonjourModuleController->setBIDIStatusON(false);
    }
    mPDEData->SetCorvianPrinterAddress(cfString(""), false);
    LaunchJobProperties(kJPOpenAgain);
    return true;
}

void TimerCheckForJPReturn(const EventLoopTimerRef& timer, void*) {
    RemoveEventLoopTimer(timer);
    if (sSharedList && fieldText(sSharedList->jpResult) == moduleRuns) {
        SetTimerCheckForJPReturn();
        return;
    }
    gIgnoreButtonEvents = false;
    if (sUiPanelOnJPReturn) {
        sUiPanelOnJPReturn->OnJPReturn();
    }
}

void SetTimerCheckForJPReturn() {
    // Without a timer nothing would enable the buttons again.
    gIgnoreButtonEvents = InstallEventLoopTimer(
                              GetMainEventLoop(), returnCheckDelay, kEventDurationForever,
                              [](const EventLoopTimerRef& timer) { TimerCheckForJPReturn(timer, nullptr); },
                              returnTimer) == noErr;
}

void UI_Panel::setsBonjourModuleController(BonjourModuleController* controller) {
    mBonjourModuleController = controller;
}

CFStringRef UI_Panel::storedPrinterAddress() { return mPDEData->GetCorvianPrinterAddress(); }

CFStringRef UI_Panel::queueServiceName() { return panel ? panel->queueServiceName() : cfString(""); }

CFStringRef UI_Panel::foundPrinterAddress() { return panel ? panel->foundPrinterAddress() : cfString(""); }

bool UI_Panel::storePrinterAddress(const CFStringRef& address, bool twoWay) {
    const bool stored = mPDEData->SetCorvianPrinterAddress(address, twoWay);
    if (const std::string reason = mPDEData->AddressListReason(); !reason.empty()) {
        TellPerson(Text("ADDRESS_NOT_KEPT", "The printer's address could not be kept", bidiTable),
                   Text("ADDRESS_NOT_KEPT_TEXT", "The queue keeps the address that it had.", bidiTable) +
                       "\n\n" + reason);
    }
    if (panel) {
        panel->printerAddressStored(twoWay);
    }
    return stored;
}

void UI_Panel::showPrinterAddress(const CFStringRef& address) {
    if (panel) {
        panel->showPrinterAddress(address);
    }
}

CFStringRef UI_Panel::bidiString(std::string_view key, std::string_view english) {
    return cfString(Text(key, english, bidiTable));
}

void UI_Panel::TellPerson(const std::string& title, const std::string& information) const {
    if (hasAlerts()) {
        alerts().RunModal({title, information, Text("OK", "OK", bidiTable), {}});
    }
}

std::string UI_Panel::Text(std::string_view key, std::string_view english, std::string_view table) const {
    return panel ? panel->LocalizedString(key, english, table) : std::string(english);
}

} // namespace torka
