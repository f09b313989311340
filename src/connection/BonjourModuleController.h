#pragma once

#include "connection/BonjourModuleView.h"
#include "connection/ControllerList.h"
#include "platform/EventLoop.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class BonjourIPDiscovery;
class BonjourModuleController;

// What the controller asks of the pane. Implemented by the pane's panel model, which outlives the controller.
class BonjourModuleOwner {
public:
    BonjourModuleOwner() = default;
    BonjourModuleOwner(const BonjourModuleOwner&) = delete;
    BonjourModuleOwner& operator=(const BonjourModuleOwner&) = delete;
    virtual ~BonjourModuleOwner();

    // The controller of this panel model, null when there is none (any more).
    virtual BonjourModuleController* GetsBonjourModuleController() const = 0;
    virtual void setsBonjourModuleController(BonjourModuleController* controller) = 0;

    // The printer's entry in the address list. Null or "" for no address.
    virtual CFStringRef storedPrinterAddress() = 0;
    // The instance name of the service that the queue's device URI names; "" for a queue of another kind.
    virtual CFStringRef queueServiceName() { return cfString(""); }
    // The numeric address that the queue's filter found for that service; "" for none.
    virtual CFStringRef foundPrinterAddress() { return cfString(""); }
    // Puts both into the address list and saves it. What could not be saved counts for this dialog all the
    // same.
    virtual bool storePrinterAddress(const CFStringRef& address, bool twoWay) = 0;
    // Shows an address in the pane's own field.
    virtual void showPrinterAddress(const CFStringRef& address) = 0;
    // The text of the bundle's table "BidiStrings", `english` when it has none.
    virtual CFStringRef bidiString(std::string_view key, std::string_view english) = 0;
};

// Drives the address sheet: the controllers that the local net announces, the address field, and the two-way
// state of the printer (docs/address-list.md tells what is stored when).
//
// The pane owns it; the panel model knows it. The directory of services is platform::serviceDirectory(), the
// clock for time limits platform::GetMainEventLoop(), alerts go through platform::alerts(). Without a
// directory or loop the sheet works with what is typed.
class BonjourModuleController final : public std::enable_shared_from_this<BonjourModuleController>,
                                      public BonjourModuleViewDelegate,
                                      private ControllerListObserver,
                                      private ServiceResolutionDelegate {
public:
    // The owner's controller when it has one, else a new one that is given to it.
    static std::shared_ptr<BonjourModuleController> init(BonjourModuleOwner& owner, BonjourModuleView& view);
    ~BonjourModuleController() override;

    // The printer's address, as far as it was accepted. Shown in the sheet and in the pane; a service's
    // domain at its end ("._printer._tcp.local.", "._pdl-datastream._tcp.local.") is left out.
    void setprinterIPField(const CFStringRef& address);
    CFStringRef printerIPField() const { return printerAddress; } // never null
    // Takes the stored address over. Where it is the name of a service, as a queue's device URI gives it, the
    // service's address is looked for and replaces it; where nothing answers, the one that the queue's filter
    // found does. A text that is an address, or could be a host name, is no service's name unless it is the
    // one of the queue's own service: whoever announces a service by that name does not come into it.
    void setIPAddress();
    // The configure button can be used only with two-way communication on. Stores nothing.
    void setBIDIStatusON(bool on);
    bool isBIDIEnabled() const { return twoWay; }
    // While the Job Properties module runs.
    void setBIDICheckBoxEnabled(bool enabled);
    void setConfigureButtonEnabled(bool enabled);
    // The sheet is open.
    bool validWindowSessionRunning() const { return sessionRunning; }

    // Whether the field's text can be used; an alert says why not. Any text can with two-way communication
    // off.
    bool validatePrinterAddress();

    void OKClicked() override;
    void clickedCancel() override;
    void configureButtonClicked() override;
    void BIDICheckBoxClicked() override;
    void UpOrDownArrowKeySelection() override;
    void didClickTableColumn(ControllerColumn column) override;

private:
    BonjourModuleController(BonjourModuleOwner& panelModel, BonjourModuleView& widgets);

    void OpenSheet();
    void CloseSheet();
    void Search();
    void InitServiceResolve();
    void timerFireMethod();
    void EndResolution();
    void ReloadTable();
    void SortShown();
    std::optional<std::size_t> SelectedPlace();
    void Select(const FoundController& controller);
    void ShowStatus();
    void Alert(std::string_view key, std::string_view english);
    // The address of the chosen row, or of the listed controller whose service the text names; else the text
    // without a service's domain.
    CFStringRef AddressNamedBy(const CFStringRef& text) const;
    bool NamesService(const CFStringRef& text) const;
    // Both addresses where the chosen row would change the stored one; "" where it would not.
    CFStringRef ChangeText() const;
    void UseFoundAddress(const std::string& address);

    void listDidChange() override;
    void netServiceDidResolveAddress(const NetService& service, const ResolvedService& resolved) override;
    void didNotResolve(const NetService& service, const std::string& reason) override;

    BonjourModuleOwner& owner;
    BonjourModuleView& view;
    CFStringRef printerAddress; // the one accepted last
    bool isServiceName = false; // it names a service, and is no address
    bool twoWay = false;        // likewise
    bool sessionRunning = false;
    bool firstCallOfTable = true; // no row was selected since the sheet was opened
    bool tableNeedsReload = false;
    bool ascendingSort = true;
    std::optional<ControllerColumn> sortColumn; // none: in the order of finding
    std::unique_ptr<ControllerList> list;       // while the sheet is open
    std::vector<FoundController> shown;
    std::vector<ControllerRow> rows; // what the table shows of them
    std::optional<NetService> selectedService;
    CFStringRef selectedText;                       // what selecting it put into the field
    bool isAddressSelected = false;                 // that is its address, no longer its name
    std::unique_ptr<NetServiceActivity> resolution; // of the selected service
    bool resolutionFailed = false;
    std::unique_ptr<BonjourIPDiscovery> discovery; // of setIPAddress
    EventLoopTimerRef progressTimer;
    EventLoopTimerRef reloadTimer;
    EventLoopTimerRef searchTimer; // searches again when no search could be begun
};

// −1, 0 or 1.
int intSort(std::int64_t left, std::int64_t right);

} // namespace torka
