// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace torka {

class BidiFailure;

// The services of the panel for its panel model. The panel (TorkaFeaturesPDE) implements them, owns the model
// and outlives it. It is also the host of the Job Properties module (bidi/module/JobPropertiesHost.h). Calls
// may come before the interface is loaded; a call for a missing widget does nothing.
class PanelServices {
public:
    PanelServices() = default;
    PanelServices(const PanelServices&) = delete;
    PanelServices& operator=(const PanelServices&) = delete;
    virtual ~PanelServices() = default;

    virtual void setFullPropertiesButtonStatusON(bool on) = 0;
    virtual void setDefaultsButtonStatusON(bool on) = 0;
    virtual void setCustomizeQuickAccessButtonButtonStatusON(bool on) = 0;
    // Shows an address in the address field of the pane.
    virtual void showPrinterAddress(const CFStringRef& address) = 0;
    // The instance name of the service that the device URI of the queue names, "" for a queue of another
    // kind; and the numeric address that the filter of the queue found for it, "" for none.
    virtual CFStringRef queueServiceName() const { return cfString(""); }
    virtual CFStringRef foundPrinterAddress() const { return cfString(""); }
    // Called when the person has stored another address or two-way state.
    virtual void printerAddressStored(bool /*twoWay*/) {}
    // Makes the process-wide values those of this panel, before its settings are read or changed.
    virtual void becomeCurrent() {}
    // Brings the last window of the host application to the front.
    virtual void bringToFront() = 0;

    // A text of the bundle in the person's language, in UTF-8. Without the key it returns the default.
    virtual std::string LocalizedString(std::string_view key, std::string_view defaultText,
                                        std::string_view table = "Localizable") const = 0;
    virtual const CFStringRef& bundleVersion() const = 0; // may be null
    // The folder of the bundle, beside which the Job Properties module lies; empty for none.
    virtual std::filesystem::path bundlePath() const = 0;
    // Null for none.
    virtual PMPrinter currentPrinter() const = 0;
    // The failure message of two-way communication, and the person's answer.
    virtual BidiFailure& bidiFailure() = 0;
};

} // namespace torka
