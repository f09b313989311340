#pragma once

#include "platform/Printing.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace torka {

class BidiFailure;

// What the panel model asks of its panel. The panel (TorkaFeaturesPDE) implements it, owns the panel model
// and outlives it; it is also the Job Properties module's host (bidi/module/JobPropertiesHost.h). Calls may
// come before the panel's interface is loaded: what has no widget then does nothing.
class PanelServices {
public:
    PanelServices() = default;
    PanelServices(const PanelServices&) = delete;
    PanelServices& operator=(const PanelServices&) = delete;
    virtual ~PanelServices() = default;

    virtual void setFullPropertiesButtonStatusON(bool on) = 0;
    virtual void setDefaultsButtonStatusON(bool on) = 0;
    virtual void setCustomizeQuickAccessButtonButtonStatusON(bool on) = 0;
    // Shows an address in the pane's own field.
    virtual void showPrinterAddress(const CFStringRef& address) = 0;
    // The instance name of the service that the queue's device URI names, "" for a queue of another kind; and
    // the numeric address that the queue's filter found for it, "" for none.
    virtual CFStringRef queueServiceName() const { return cfString(""); }
    virtual CFStringRef foundPrinterAddress() const { return cfString(""); }
    // The person has stored another address or two-way state.
    virtual void printerAddressStored(bool /*twoWay*/) {}
    // Brings the host application with its last window to the front.
    virtual void bringToFront() = 0;

    // A text of the bundle in the person's language, UTF-8; the default when no table has the key.
    virtual std::string LocalizedString(std::string_view key, std::string_view defaultText,
                                        std::string_view table = "Localizable") const = 0;
    virtual const CFStringRef& bundleVersion() const = 0; // may be null
    // The bundle's folder; the Job Properties module lies beside it. Empty for none.
    virtual std::filesystem::path bundlePath() const = 0;
    // Null without one.
    virtual PMPrinter currentPrinter() const = 0;
    // The failure message of two-way communication, and the person's choice.
    virtual BidiFailure& bidiFailure() = 0;
};

} // namespace torka
