// SPDX-License-Identifier: Apache-2.0
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

// The interface through which the controller asks the pane. The panel model implements it and outlives the
// controller.
class BonjourModuleOwner {
public:
    BonjourModuleOwner() = default;
    BonjourModuleOwner(const BonjourModuleOwner&) = delete;
    BonjourModuleOwner& operator=(const BonjourModuleOwner&) = delete;
    virtual ~BonjourModuleOwner();

    // The controller of this panel model; null when it has none.
    virtual BonjourModuleController* GetsBonjourModuleController() const = 0;
    virtual void setsBonjourModuleController(BonjourModuleController* controller) = 0;

    // The address in the printer's entry of the address list. Null or "" for no address.
    virtual CFStringRef storedPrinterAddress() = 0;
    // The instance name of the service that the queue's device URI names; "" for a queue of another kind.
    virtual CFStringRef queueServiceName() { return cfString(""); }
    // The numeric address that the queue's filter found for that service; "" for none.
    virtual CFStringRef foundPrinterAddress() { return cfString(""); }
    // Puts both values into the address list and saves the list. Values that could not be saved still hold
    // for this dialog.
    virtual bool storePrinterAddress(const CFStringRef& address, bool twoWay) = 0;
    // Shows an address in the pane's own field.
    virtual void showPrinterAddress(const CFStringRef& address) = 0;
    // The key's text in the bundle's table "BidiStrings"; `english` when the table lacks the key.
    virtual CFStringRef bidiString(std::string_view key, std::string_view english) = 0;
};

// Drives the address sheet: the controllers that the local network announces, the address field, and the
// printer's two-way state. docs/address-list.md describes what is stored at which time.
//
// The pane owns it; the panel model refers to it. Uses platform::serviceDirectory(),
// platform::GetMainEventLoop() for time limits, and platform::alerts(). Without a directory or event loop the
// person can still type an address.
class BonjourModuleController final : public std::enable_shared_from_this<BonjourModuleController>,
                                      public BonjourModuleViewDelegate,
                                      private ControllerListObserver,
                                      private ServiceResolutionDelegate {
public:
    // Returns the owner's controller. Creates it and sets it in the owner when the owner has none.
    static std::shared_ptr<BonjourModuleController> init(BonjourModuleOwner& owner, BonjourModuleView& view);
    ~BonjourModuleController() override;

    // The printer's accepted address, shown in the sheet and in the pane. setprinterIPField removes a
    // service's domain at its end ("._printer._tcp.local.", "._pdl-datastream._tcp.local.").
    void setprinterIPField(const CFStringRef& address);
    CFStringRef printerIPField() const { return printerAddress; } // never null
    // Takes over the stored address. When it is a service's name, resolves the service and stores the address
    // found. When the queue's own service does not answer, stores the address that the queue's filter found.
    // A text that is an address, or could be a host name, counts as a service's name only if it names the
    // queue's own service: otherwise anybody could announce a service under that name and receive the
    // requests.
    void setIPAddress();
    // Sets the state without storing it. Enables the configure button only with two-way communication on.
    void setBIDIStatusON(bool on);
    bool isBIDIEnabled() const { return twoWay; }
    // Disable and enable the widgets while the Job Properties module runs.
    void setBIDICheckBoxEnabled(bool enabled);
    void setConfigureButtonEnabled(bool enabled);
    // True while the sheet is open.
    bool validWindowSessionRunning() const { return sessionRunning; }

    // Whether the field's text is a usable address; otherwise an alert gives the reason. True for any text
    // with two-way communication off.
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
    // The address of the selected row, or of the listed controller whose service the text names. Without
    // either, the text without a service's domain.
    CFStringRef AddressNamedBy(const CFStringRef& text) const;
    bool NamesService(const CFStringRef& text) const;
    // A sentence with both addresses when the selected row would change the stored address; else "".
    CFStringRef ChangeText() const;
    void UseFoundAddress(const std::string& address);

    void listDidChange() override;
    void netServiceDidResolveAddress(const NetService& service, const ResolvedService& resolved) override;
    void didNotResolve(const NetService& service, const std::string& reason) override;

    BonjourModuleOwner& owner;
    BonjourModuleView& view;
    CFStringRef printerAddress; // the last accepted address
    bool isServiceName = false; // printerAddress names a service and is no address
    bool twoWay = false;        // the last accepted state
    bool sessionRunning = false;
    bool firstCallOfTable = true; // no row was selected since the sheet opened
    bool tableNeedsReload = false;
    bool ascendingSort = true;
    std::optional<ControllerColumn> sortColumn; // nullopt: in the order of discovery
    std::unique_ptr<ControllerList> list;       // exists while the sheet is open
    std::vector<FoundController> shown;
    std::vector<ControllerRow> rows; // their rows in the table
    std::optional<NetService> selectedService;
    CFStringRef selectedText;                       // the text that the selection put into the field
    bool isAddressSelected = false;                 // selectedText is an address, not a service's name
    std::unique_ptr<NetServiceActivity> resolution; // of the selected service
    bool resolutionFailed = false;
    std::unique_ptr<BonjourIPDiscovery> discovery; // of setIPAddress
    EventLoopTimerRef progressTimer;
    EventLoopTimerRef reloadTimer;
    EventLoopTimerRef searchTimer; // searches again after every search failed to start
};

// Compares two numbers: −1, 0 or 1.
int intSort(std::int64_t left, std::int64_t right);

} // namespace torka
