#include "pane/TorkaFeaturesPDE.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "connection/BonjourModuleController.h"
#include "pane/PDEData.h"
#include "pane/ServerExchange.h"
#include "pane/UI_Panel.h"

// Requests of server data and the launch of the Job Properties module.

namespace torka {

void TorkaFeaturesPDE::launchFullProperties() {
    constexpr JP_ACTIONS openFullProperties = 0;
    if (gIgnoreButtonEvents || !self.myUi_Panel->isModuleInstalled(true)) {
        return;
    }
    // Waits and the module's window run the event loop, in which the dialog may let go of the panel.
    const auto alive = shared_from_this();
    sendDeferredCommands();
    Sync(self.pdePluginCallbackObject);
    if (!self.myPDEData->isBIDIEnabled()) {
        self.myUi_Panel->LaunchJobProperties(openFullProperties);
        return;
    }
    const std::string address = utf8Text(self.bonjourViewRef ? self.bonjourViewRef->printerIPField()
                                                             : self.myPDEData->GetCorvianPrinterAddress());
    switch (server->FetchServerData(self.printer, address, getDynamicPPDKeys(),
                                    [this] { resetJPServerpresetKeys(); })) {
    case ServerExchange::Answer::read:
        self.myUi_Panel->LaunchJobProperties(openFullProperties);
        break;
    case ServerExchange::Answer::withoutData:
        if (self.bonjourViewRef) {
            self.bonjourViewRef->setBIDIStatusON(false);
        }
        self.myPDEData->SetCorvianPrinterAddress(cfString(""), false);
        self.myUi_Panel->LaunchJobProperties(kJPOpenAgain);
        break;
    case ServerExchange::Answer::stop:
        break;
    }
}

bool TorkaFeaturesPDE::sendUpdateCommandToCFFWithCommand(std::string_view command) {
    return torka::sendUpdateCommandToCFFWithCommand(self.printer, server->randomStringForBIDIFile(),
                                                    utf8Text(self.myPDEData->GetCorvianPrinterAddress()),
                                                    ServerExchange::RequestText(), command);
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
