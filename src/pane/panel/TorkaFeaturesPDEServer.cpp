// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/TorkaFeaturesPDE.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "connection/BonjourModuleController.h"
#include "connection/ConnectionType.h"
#include "pane/data/PDEData.h"
#include "pane/exchange/ServerExchange.h"
#include "pane/panel/UI_Panel.h"

// Requests of server data and the launch of the Job Properties module.

namespace torka {

void TorkaFeaturesPDE::launchFullProperties() {
    constexpr JP_ACTIONS openFullProperties = 0;
    if (gIgnoreButtonEvents || !self.myUi_Panel->isModuleInstalled(true)) {
        return;
    }
    // Waits and the window of the module run the event loop, in which the dialog may release the panel.
    const auto alive = shared_from_this();
    sendDeferredCommands();
    Sync(self.pdePluginCallbackObject);
    if (!self.myPDEData->isBIDIEnabled()) {
        self.myUi_Panel->LaunchJobProperties(openFullProperties);
        return;
    }
    switch (Fetch(ServerExchange::Failures::told)) {
    case ServerExchange::Answer::read:
        self.myUi_Panel->LaunchJobProperties(openFullProperties);
        break;
    case ServerExchange::Answer::withoutData:
        if (self.bonjourViewRef) {
            self.bonjourViewRef->setBIDIStatusON(false);
        }
        // Only the panel model's answer to a failed launch empties the address.
        self.myPDEData->SetCorvianPrinterAddress(self.myPDEData->GetCorvianPrinterAddress(), false);
        self.myUi_Panel->LaunchJobProperties(kJPOpenAgain);
        break;
    case ServerExchange::Answer::stop:
        break;
    }
}

ServerExchange::Answer TorkaFeaturesPDE::Fetch(ServerExchange::Failures failures) {
    const std::string address = utf8Text(self.bonjourViewRef ? self.bonjourViewRef->printerIPField()
                                                             : self.myPDEData->GetCorvianPrinterAddress());
    isFetching = true;
    const auto answer = server->FetchServerData(
        self.printer, address, getDynamicPPDKeys(), [this] { resetJPServerpresetKeys(); }, failures);
    isFetching = false;
    return answer;
}

void TorkaFeaturesPDE::printerAddressStored(bool twoWay) {
    server->Forget(); // the data may be those of another controller
    if (twoWay) {
        requestServerData(ServerExchange::Failures::told);
    }
}

CFStringRef TorkaFeaturesPDE::queueServiceName() const {
    return self.isBonjourPrinter ? breakBonjourURLIntoMeaningFullItems(self.printerURI) : cfString("");
}

CFStringRef TorkaFeaturesPDE::foundPrinterAddress() const { return cfString(server->FoundAddress()); }

void TorkaFeaturesPDE::requestServerData(ServerExchange::Failures failures) {
    if (isFetching || !self.myPDEData->isBIDIEnabled() ||
        CFStringGetLength(self.myPDEData->GetCorvianPrinterAddress()) == 0) {
        return;
    }
    InstallEventLoopTimer(
        GetMainEventLoop(), EventTimerInterval(0), kEventDurationForever,
        [panel = weak_from_this(), failures](const EventLoopTimerRef&) {
            if (const auto alive = panel.lock()) {
                alive->FetchServerData(failures);
            }
        },
        fetchTimer);
}

void TorkaFeaturesPDE::FetchServerData(ServerExchange::Failures failures) {
    // After the timer was set a wait may have begun, or the person may have switched two-way communication
    // off.
    if (isFetching || gIgnoreButtonEvents || !self.myPDEData->isBIDIEnabled()) {
        return;
    }
    becomeCurrent();
    sendDeferredCommands();
    if (Fetch(failures) != ServerExchange::Answer::withoutData) {
        return;
    }
    if (self.bonjourViewRef) {
        self.bonjourViewRef->setBIDIStatusON(false);
    }
    self.myPDEData->SetCorvianPrinterAddress(self.myPDEData->GetCorvianPrinterAddress(), false);
    server->Forget();
}

bool TorkaFeaturesPDE::sendUpdateCommandToCFFWithCommand(std::string_view command) {
    const std::string address = utf8Text(self.myPDEData->GetCorvianPrinterAddress());
    return torka::sendUpdateCommandToCFFWithCommand(self.printer, server->randomStringForBIDIFile(), address,
                                                    server->RequestText(address), command);
}

void TorkaFeaturesPDE::deleteFileCommandToCFF(std::string_view files) {
    torka::deleteFileCommandToCFF(self.printer, files);
}

void TorkaFeaturesPDE::resetJPServerpresetKeys() { self.myUi_Panel->resetJPServerpresetKeys(); }

std::string TorkaFeaturesPDE::getDynamicPPDKeys() const {
    std::vector<std::string> keywords;
    self.myppd->GetControls()->ForEach([&](const PPDXControl* control) {
        if (control->Keyword() != nullptr && control->IsDynamic()) {
            keywords.emplace_back(control->Keyword());
        }
    });
    return dynamicPPDKeys(keywords);
}

} // namespace torka
