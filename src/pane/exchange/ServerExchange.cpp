// SPDX-License-Identifier: Apache-2.0
#include "pane/exchange/ServerExchange.h"

#include "bidi/module/JobPropertiesState.h"
#include "connection/ConnectionType.h"
#include "pane/exchange/WaitPresenter.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <utility>
#include <vector>

namespace torka {

ServerExchange::ServerExchange(StringLookup strings)
    : failure(std::move(strings))
    , dataFile(std::make_unique<BidiDataFile>(paths, failure, ScopedWait::Observer())) {}

void ServerExchange::SetQueue(std::string_view ppdPath, std::string_view queueName,
                              std::string_view service) {
    serviceName = service;
    fillBidiFilePaths(resolvedPPDPath(std::string(ppdPath)), paths, queueName);
    dataFile = std::make_unique<BidiDataFile>(paths, failure, ScopedWait::Observer());
}

bool ServerExchange::readBidiData() {
    const ScopedWait wait;
    return dataFile->readBidiData();
}

bool ServerExchange::WaitForFileToBeCreated(std::string_view requestId, std::string_view path) {
    const ScopedWait wait;
    return dataFile->WaitForFileToBeCreated(requestId, path);
}

bool ServerExchange::canBiDiDataFileBeAccessed() {
    const ScopedWait wait;
    return dataFile->canBiDiDataFileBeAccessed();
}

bool ServerExchange::isPrinterBusyWithPrinting(const PMPrinter& printer) {
    const ScopedWait wait;
    return failure.isPrinterBusyWithPrinting(printer, ScopedWait::Observer());
}

std::string ServerExchange::RequestText(const std::string& address) const {
    std::vector<RequestLine> lines;
    if (!gServerLanguage.empty()) {
        lines.emplace_back("locale", gServerLanguage);
    }
    const bool isOwnService = !serviceName.empty() && address == serviceName;
    if (const std::string number = isOwnService ? FoundAddress() : numericAddressOf(address);
        !number.empty()) {
        lines.emplace_back("address", number);
    }
    return requestText(lines);
}

ServerExchange::Answer ServerExchange::Chosen() const {
    return printerInBusyState_ContinueBiDiOFF() == BidiChoice::continueBidiOff ? Answer::withoutData
                                                                               : Answer::stop;
}

ServerExchange::Answer ServerExchange::FetchServerData(const PMPrinter& printer, std::string_view address,
                                                       std::string_view dynamicKeys,
                                                       const std::function<void()>& resetKeys,
                                                       Failures failures) {
    failure.SetQuiet(failures == Failures::quiet);
    const Answer answer = Fetch(printer, address, dynamicKeys, resetKeys, failures);
    failure.SetQuiet(false);
    SetState(answer == Answer::read ? State::read : State::failed);
    return answer;
}

void ServerExchange::Forget() { SetState(State::nothing); }

void ServerExchange::SetState(State newState) {
    state = newState;
    for (const auto& listener : listeners) {
        listener();
    }
}

ServerExchange::Answer ServerExchange::Fetch(const PMPrinter& printer, std::string_view address,
                                             std::string_view dynamicKeys,
                                             const std::function<void()>& resetKeys, Failures failures) {
    const ScopedWait wait;
    const WaitObserver observer = ScopedWait::Observer();
    const int shownAtStart = failure.TimesShown();
    if (failure.isPrinterBusyWithPrinting(printer, observer)) {
        if (failure.TimesShown() > shownAtStart) {
            return Chosen();
        }
        if (ScopedWait::IsCancelled() || failures == Failures::quiet) {
            return Answer::stop;
        }
    }
    const ServerDataRequests::Request request =
        requests.Compose(address, RequestText(std::string(address)), dynamicKeys, resetKeys);
    const int shownBefore = failure.TimesShown();
    const ServerDataOutcome outcome = fetchServerData(printer, request.title, request.text,
                                                      randomStringForBIDIFile(), paths, *dataFile, observer);
    if (outcome == ServerDataOutcome::read) {
        return Answer::read;
    }
    myNSLogC("Two-way communication failed: %s.", outcomeText(outcome));
    if (ScopedWait::IsCancelled()) {
        return Answer::stop;
    }
    const bool isBadAddress = outcome == ServerDataOutcome::connectionError &&
                              (isInvalidPrinterAddress() ||
                               fileExists(system().Resolve(connectionErrorFile(randomStringForBIDIFile()))));
    if (failure.TimesShown() == shownBefore) {
        failure.showBiDiError(isBadAddress ? address : std::string_view());
    }
    return Chosen();
}

} // namespace torka
