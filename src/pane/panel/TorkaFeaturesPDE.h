// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/module/JobPropertiesHost.h"
#include "output/FeatureEmission.h"
#include "pane/data/PanelState.h"
#include "pane/exchange/ServerExchange.h"
#include "pane/panel/PaneInterface.h"
#include "pane/panel/PanelServices.h"
#include "platform/EventLoop.h"
#include "platform/PrintDialogExtension.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class BonjourModuleController;
class PDEData;
class PresetStore;
class UI_Panel;
class ZANPPD;
struct DeferredCommands;

// The features pane of one print dialog. It answers the calls of the dialog and joins the description
// (ZANPPD), the data of the pane (PDEData), the panel model (UI_Panel) and the widgets (PaneInterface).
//
// Owns these parts, and shares the callback object of the dialog. Only initWithCallback makes panels. The
// newest panel is sTorkaFeaturesPDE. The other process-wide values belong to the current panel: the newest
// one, until the dialog of another panel calls it or a person turns to that dialog (becomeCurrent). All code
// runs on the main thread of the host.
class TorkaFeaturesPDE final : public PDEPanel,
                               public PanelServices,
                               public JobPropertiesHost,
                               public std::enable_shared_from_this<TorkaFeaturesPDE> {
public:
    // Null when the list of supported descriptions in the bundle is missing or lacks the description of the
    // queue, and when the description has no version of its maker.
    static std::shared_ptr<TorkaFeaturesPDE> initWithCallback(const PDEPlugInCallbackRef& callback);
    ~TorkaFeaturesPDE() override;

    // PDEPanel
    ViewRef panelView() override;
    CFStringRef panelName() override;
    CFStringRef panelKind() override;
    CFArrayRef supportedPPDOptionKeys() override;
    bool willShow() override;
    bool shouldHide() override;
    bool saveValuesAndReturnError(std::string* error) override;
    bool restoreValuesAndReturnError(std::string* error) override;
    bool updateUI() override;
    bool shouldShowHelp() override;
    bool shouldPrint() override;
    void printWindowWillClose() override;
    CFArrayRef summaryInfo() override;
    void updateDestinationSheet(const CFDictionaryRef& destination) override;
    void printInfoDidChange() override;
    void PPDOptionKeyValueDidChange(const CFStringRef& optionKey, const CFStringRef& choice) override;

    // Never null after initWithCallback.
    ZANPPD* getPPDPtr() const { return self.myppd.get(); }
    UI_Panel* GetUI_PanelPtr() const { return self.myUi_Panel.get(); }
    PDEData* GetPDEDataPtr() const { return self.myPDEData.get(); }
    const CFStringRef& bundleVersion() const override { return self.myBundleVersion; }
    // Two-way communication: requests, waits, and the data that were read.
    ServerExchange& Server() const { return *server; }

    // A text of the bundle in the person's language, in UTF-8. Without the key it returns the default.
    std::string LocalizedString(std::string_view key, std::string_view defaultText,
                                std::string_view table = "Localizable") const override;

    void setFullPropertiesButtonStatusON(bool on) override;
    void setCustomizeQuickAccessButtonButtonStatusON(bool on) override;
    void setDefaultsButtonStatusON(bool on) override;
    // Called by the interface. Brings the last window to the front when it is visible, so that a dialog of
    // the pane stays in front after a change of application.
    void applicationDidBecomeActive();
    // Removes the quick-access texts from the pane and closes the gap, when the management template has
    // switched quick access off.
    void enableCustomizedViewForDMT();
    // Sets sessionQueueName from the path of a description. Returns false and leaves the name when the path
    // has no "/" or its last component no ".ppd".
    static bool getQueuePPDName(std::string_view path);
    void fillPDEInstallPath();
    // Whether the management template has switched quick access off.
    bool isQuickAccessOff() const;

    // The panel began with the settings of the person's last job, and they differ from the defaults.
    bool beganWithLastJob() const { return hasLastJob; }

    // The actions of the buttons of the pane.
    void launchFullProperties();
    void defaultsButtonClicked();
    void customizeQuickAccessButtonClicked();

    // Writes the present settings into the print settings.
    void Sync(const PDEPlugInCallbackRef& callback);
    // Empties the job notes that name a server preset, which another server does not know.
    void resetJPServerpresetKeys();
    // The "keys" line of a request; "" when the description has no dynamic control.
    std::string getDynamicPPDKeys() const;

    // PanelServices
    void showPrinterAddress(const CFStringRef& address) override;
    void printerAddressStored(bool twoWay) override;
    CFStringRef queueServiceName() const override;
    CFStringRef foundPrinterAddress() const override;
    void bringToFront() override;
    std::filesystem::path bundlePath() const override;
    void becomeCurrent() override;
    PMPrinter currentPrinter() const override { return self.printer; }
    BidiFailure& bidiFailure() override;

    // JobPropertiesHost
    std::shared_ptr<const std::string> getBidiDataCopy() const override;
    PMPrinter CurrentPrinter() const override { return self.printer; }
    std::string TemplateText() const override;
    std::string WindowTitle() const override;
    WaitObserver Observer() override;

    // Reads the page size and the input tray of the system's panes into the model.
    void updatePageSizeAndInputSlot();
    // Applies the automation presets file (docs/presets.md), once a panel, before its first display. What the
    // management template locks stays as it is.
    void loadAutomationFileAndLoadPrintSetting();

    // Reads the data of the controller from the event loop, when two-way communication is on and an address
    // is known. Does nothing while a reading is under way, and without an event loop.
    void requestServerData(ServerExchange::Failures failures);
    // Sends the commands that were held back until the first painting.
    void sendDeferredCommands();

    // Given interface; no caller here
    const BundleRef& pdeBundle() const { return self.pdeBundle; }
    CFStringRef currentIPAddress() const; // the address field's text
    bool isBonjourPrinter() const { return self.isBonjourPrinter; }
    bool isCustomPageSize() const { return self.customPageSize; }
    const CFStringRef& customPapername() const { return self.customPapername; }
    bool sendUpdateCommandToCFFWithCommand(std::string_view command);
    void deleteFileCommandToCFF(std::string_view files);

private:
    explicit TorkaFeaturesPDE(PDEPlugInCallbackRef callback);

    // The instance variables, in their documented order.
    struct Variables {
        std::unique_ptr<ZANPPD> myppd;
        std::unique_ptr<PDEData> myPDEData;
        std::unique_ptr<UI_Panel> myUi_Panel;

        PDEPlugInCallbackRef pdePluginCallbackObject;
        BundleRef pdeBundle;
        PMPrintSession mySession;
        PMPrintSettings printSettings;
        PMPrinter printer;
        CFURLRef printerURI;
        CFStringRef mBundlePPDID; // null: use the identifier of the bundle
        CFStringRef myBundleVersion;

        bool shouldRestore = false; // the print settings hold values for this description
        bool isOfThisQueue = false; // and for this queue
        bool customPageSize = false;
        bool isBonjourPrinter = false;
        bool isDocumentPrinting = false; // shouldPrint ran
        std::int32_t automationCalled = 0;

        CFStringRef thePDEName;
        CFStringRef customPapername;

        std::shared_ptr<BonjourModuleController> bonjourViewRef;
    };

    bool Start();
    CFURLRef TakeDescription();
    void TakeDeviceUri();
    void BuildModel(const CFURLRef& descriptionUrl);
    void MakePaneData();
    void TakeInstance();
    void LeaveInstance();
    bool IsCurrent() const { return thePMPrinter == &self.printer; }
    static void KeepStateOfCurrent();
    void PublishQueue();
    void PublishAgain();
    void TakeLanguageOfPopupJobNotes();
    void PrefillAccountName();
    void ObservePopupJobNotes();
    bool LoadInterface();

    CFDictionaryRef TakeLastUsed();
    void TakeSideSettings();
    void TakePopupPreferences();
    void NotePopupPreferences();
    void WritePopupPreferences();
    void TakeSystemPageSize();
    void TakeCustomPageSize();
    bool IsListedPaper(const CFStringRef& name) const;
    void SelectInputSlot();
    void TakeSystemLayout();
    void ShowPrinterName(const CFStringRef& name);
    void ShowDiscoveredAddress();
    void StoreTypedAddress();
    void TakeDocumentServer();
    // False when the job must not be printed: memory ran out on the way. The person has been told.
    bool WriteTicket(EmissionPurpose purpose);
    void Tell(const std::string& what, const std::string& why) const;
    bool ConfirmConflicts();
    bool ConfirmBrokenNotes();
    void TellLeftOutNotes();
    std::vector<std::string> LeftOutSettingNames(bool belowZero) const;
    std::vector<std::string> ReducedLists() const;
    void FetchServerData(ServerExchange::Failures failures);
    ServerExchange::Answer Fetch(ServerExchange::Failures failures);
    void RefreshFromCallback();

    Variables self;
    std::unique_ptr<PaneInterface> interface;
    bool interfaceFailed = false; // logged once and not tried again
    std::unique_ptr<PresetStore> presets;
    std::unique_ptr<ServerExchange> server;
    std::shared_ptr<DeferredCommands> deferred;
    EventLoopTimerRef fetchTimer;
    bool isFetching = false;
    bool hasLastJob = false; // beganWithLastJob
    // Of the popup notes, as the queue's record gave them or as they were last written; none before the first
    // restore.
    std::optional<std::string> popupPreferences;
    // These two count while another panel is the current one.
    PopupJobNotesState popupNotesState;
    std::string knownPopupPreferences; // what the queue has stored of them
    std::string queueFileName;         // sessionQueueName as this panel found it
    std::string descriptionPath;       // destinationPPD() as this panel found it
};

} // namespace torka
