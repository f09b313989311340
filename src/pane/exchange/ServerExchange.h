// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/BidiFailure.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/BidiDataFile.h"
#include "connection/RequestAddress.h"
#include "platform/Printing.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torka {

// Two-way communication of a panel with the filter of its queue: the queue, the data read from it, and how a
// failure is told. docs/commands.md describes the exchange.
//
// The panel owns it. Its waits lie in a ScopedWait, so that a person sees them and can stop them.
class ServerExchange {
public:
    explicit ServerExchange(StringLookup strings);

    // Sets the queue, by the path of its description and its name. `service` is the instance name of the
    // service in its device URI, "" for none.
    void SetQueue(std::string_view ppdPath, std::string_view queueName, std::string_view service = {});
    // The address that the filter of the queue found for that service; "" for none.
    std::string FoundAddress() const { return bonjourAddress(paths); }

    BidiFailure& Failure() { return failure; }
    // Never null; empty before the first reading.
    std::shared_ptr<const std::string> getBidiDataCopy() const { return dataFile->getBidiDataCopy(); }
    BidiChoice printerInBusyState_ContinueBiDiOFF() const {
        return failure.printerInBusyState_ContinueBiDiOFF();
    }
    const std::string& randomStringForBIDIFile() const { return requests.randomStringForBIDIFile(); }

    // The first lines of every request: the language of the answer, and the numeric address when the address
    // is a name.
    std::string RequestText(const std::string& address) const;

    // The result of a request of server data.
    enum class Answer {
        read,        // getBidiDataCopy has the data
        withoutData, // failed; the person continues without two-way communication
        stop,        // failed or stopped; the person gives up
    };
    // Whether a failure is shown as a message, or only kept in State().
    enum class Failures { told, quiet };
    // The result of the last request of server data.
    enum class State { nothing, read, failed };

    // Sends a request and reads its answer. Calls `resetKeys` first when the address has changed.
    Answer FetchServerData(const PMPrinter& printer, std::string_view address, std::string_view dynamicKeys,
                           const std::function<void()>& resetKeys, Failures failures = Failures::told);
    State GetState() const { return state; }
    // Forgets the data: two-way communication is off, or the controller is another one.
    void Forget();
    // Listeners are called after each change of the state and after each reading.
    void AddListener(std::function<void()> listener) { listeners.push_back(std::move(listener)); }

    // Given interface; no caller here
    bool readBidiData();
    bool WaitForFileToBeCreated(std::string_view requestId, std::string_view path);
    bool canBiDiDataFileBeAccessed();
    bool isPrinterBusyWithPrinting(const PMPrinter& printer);

private:
    Answer Chosen() const;
    Answer Fetch(const PMPrinter& printer, std::string_view address, std::string_view dynamicKeys,
                 const std::function<void()>& resetKeys, Failures failures);
    void SetState(State newState);

    BidiFailure failure;
    BidiFilePaths paths;
    std::string serviceName;
    std::unique_ptr<BidiDataFile> dataFile;
    ServerDataRequests requests;
    State state = State::nothing;
    std::vector<std::function<void()>> listeners;
};

} // namespace torka
