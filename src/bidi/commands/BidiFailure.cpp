// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/BidiFailure.h"

#include "bidi/commands/BidiFilePaths.h"
#include "platform/Alert.h"
#include "platform/System.h"

namespace torka {

namespace {

constexpr int idleChecks = 180;
constexpr std::chrono::milliseconds idleInterval{100};

std::uint16_t stateOf(const PMPrinter& printer) {
    std::uint16_t state = 0;
    PMPrinterGetState(printer, state);
    return state;
}

bool hasStateMessage(const PMPrinter& printer) {
    CFDictionaryRef attributes;
    PMPrinterCopyState(printer, attributes);
    return CFStringGetLength(cfCast<CFString>(CFDictionaryGetValue(attributes, u"printer-state-message"))) !=
           0;
}

} // namespace

std::string BidiFailure::Text(std::string_view key, std::string_view defaultText) const {
    return strings ? strings("BidiStrings", key, defaultText) : std::string(defaultText);
}

void BidiFailure::showBiDiError(std::string_view badAddress) {
    if (quiet) {
        choice = BidiChoice::cancel;
        return;
    }
    ++timesShown;
    std::string named;
    if (!badAddress.empty()) {
        constexpr std::string_view placeholder = "{address}";
        named = "\n\n" + Text("BIDI_NO_ANSWER", "The controller does not answer at the address {address}.");
        for (std::size_t at = named.find(placeholder); at != std::string::npos;
             at = named.find(placeholder, at + badAddress.size())) {
            named.replace(at, placeholder.size(), badAddress);
        }
    }
    const AlertButton pressed = alerts().RunModal({
        Text("BIDI_SPOOLER_DELAY_S", "Two-Way Communication with the Torka controller cannot be established"),
        Text("BIDI_SPOOLER_DELAY_L",
             "Select Continue to access Torka options without Two-Way Communication. Select Cancel to exit "
             "and try your connection again later.") +
            named,
        Text("CONTINUE", "Continue"),
        Text("CANCEL", "Cancel"),
    });
    choice = pressed == AlertButton::defaultButton ? BidiChoice::continueBidiOff : BidiChoice::cancel;
}

bool BidiFailure::isPrinterBusyWithPrinting(const PMPrinter& sessionPrinter, const WaitObserver& observer) {
    const PMPrinter printer = describedPrinter(sessionPrinter); // gets the request
    const std::uint16_t state = stateOf(printer);
    if (state == kPMPrinterIdle) {
        return false;
    }
    if (state != kPMPrinterProcessing) {
        return true;
    }
    if (!hasStateMessage(printer)) {
        // Each check follows a sleep: stateOf has just reported that the printer is processing.
        for (int check = 0; check < idleChecks; ++check) {
            if (observer) {
                observer({WaitFor::idlePrinter, check * idleInterval, idleChecks * idleInterval});
            }
            if (!system().Sleep(idleInterval)) {
                choice = BidiChoice::cancel;
                return true;
            }
            if (stateOf(printer) == kPMPrinterIdle) {
                return false;
            }
        }
    }
    choice = BidiChoice::printerStayedBusy;
    if (!timeoutOverridden()) {
        showBiDiError();
    }
    return true;
}

} // namespace torka
