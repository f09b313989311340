// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The interfaces between a print dialog and its plug-ins.
//
// The dialog loads a bundle, creates one object of its principal class (PDEPlugIn) and asks it for panels. A
// panel asks the dialog through the callback object that came with the request. Everything runs on the
// dialog's main thread.

namespace torka::platform {

class Bundle;
using BundleRef = std::shared_ptr<const Bundle>;

// The panel type of a print dialog, the only type in use.
inline constexpr std::string_view printDialogPanelType = "BDB091F4-E57F-11D3-B5CC-0050E4603277";

// A part of a window. Only the adapter that creates it (platform/qt: a widget) and the host that shows it
// know the toolkit.
class View {
public:
    View() = default;
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View();
};
using ViewRef = std::shared_ptr<View>;

// The dialog's side: the printer, the print settings and the page format. The host implements it. The results
// may change from call to call, for example when the person chooses another printer.
class PDEPlugInCallback {
public:
    PDEPlugInCallback() = default;
    PDEPlugInCallback(const PDEPlugInCallback&) = delete;
    PDEPlugInCallback& operator=(const PDEPlugInCallback&) = delete;
    virtual ~PDEPlugInCallback();
    virtual PMPrintSession printSession() const = 0;
    virtual PMPrintSettings printSettings() const = 0;
    virtual PMPageFormat pageFormat() const = 0;
    virtual std::shared_ptr<Printer> PMPrinter() const = 0;
};
using PDEPlugInCallbackRef = std::shared_ptr<PDEPlugInCallback>;

// One pane of the dialog.
class PDEPanel {
public:
    PDEPanel() = default;
    PDEPanel(const PDEPanel&) = delete;
    PDEPanel& operator=(const PDEPanel&) = delete;
    virtual ~PDEPanel();
    virtual ViewRef panelView() = 0;     // null when the pane cannot be shown
    virtual CFStringRef panelName() = 0; // the tab's title, in the person's language
    virtual CFStringRef panelKind() = 0; // identifies the pane among all plug-ins
    virtual CFArrayRef supportedPPDOptionKeys() = 0;
    virtual bool willShow() = 0;   // called each time before the pane comes to the front
    virtual bool shouldHide() = 0; // false when the pane must stay
    // Copy values between the pane and the print settings. False, with the reason in `error` unless it is
    // null.
    virtual bool saveValuesAndReturnError(std::string* error) = 0;
    virtual bool restoreValuesAndReturnError(std::string* error) = 0;
    virtual bool updateUI() = 0;
    virtual bool shouldShowHelp() = 0; // true when the dialog is to show its own help
    virtual bool shouldPrint() = 0;    // false when the job must not be printed
    virtual void printWindowWillClose() = 0;
    virtual CFArrayRef summaryInfo() = 0; // null when the pane adds nothing to the dialog's summary
    virtual void updateDestinationSheet(const CFDictionaryRef& destination) = 0;
    virtual void printInfoDidChange() = 0;
    virtual void PPDOptionKeyValueDidChange(const CFStringRef& optionKey, const CFStringRef& choice) = 0;
};
using PDEPanelRef = std::shared_ptr<PDEPanel>;

// The principal class of a plug-in bundle.
class PDEPlugIn {
public:
    PDEPlugIn() = default;
    PDEPlugIn(const PDEPlugIn&) = delete;
    PDEPlugIn& operator=(const PDEPlugIn&) = delete;
    virtual ~PDEPlugIn();
    virtual bool initWithBundle(const BundleRef& bundle) = 0;
    // The panels for one type; empty for an unknown type; nullopt when the panel of a known type could not be
    // created.
    virtual std::optional<std::vector<PDEPanelRef>> PDEPanelsForType(const CFStringRef& type,
                                                                     const PDEPlugInCallbackRef& host) = 0;
};

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
