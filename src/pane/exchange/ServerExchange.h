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

// The panel's two-way communication with its queue's filter: one queue, the data that were read of it, and
// how a failure is told. docs/commands.md describes the exchange.
//
// The panel owns it. Its waits lie in a ScopedWait, so that a person sees and can stop them.
class ServerExchange {
public:
    explicit ServerExchange(StringLookup strings);

    // The queue whose two-way files are meant from now on, by its description's path and its name. `service`
    // is the instance name of the service that its device URI names, "" for none.
    void SetQueue(std::string_view ppdPath, std::string_view queueName, std::string_view service = {});
    // The address that the queue's filter found for that service; "" for none.
    std::string FoundAddress() const { return bonjourAddress(paths); }

    BidiFailure& Failure() { return failure; }
    bool readBidiData();
    // Never null; empty before the first reading.
    std::shared_ptr<const std::string> getBidiDataCopy() const { return dataFile->getBidiDataCopy(); }
    bool WaitForFileToBeCreated(std::string_view requestId, std::string_view path);
    bool canBiDiDataFileBeAccessed();
    bool isPrinterBusyWithPrinting(const PMPrinter& printer);
    BidiChoice printerInBusyState_ContinueBiDiOFF() const {
        return failure.printerInBusyState_ContinueBiDiOFF();
    }
    const std::string& randomStringForBIDIFile() const { return requests.randomStringForBIDIFile(); }

    // The lines that every request begins with: the language of the answer's texts, and the numbers of an
    // address that is none in numbers.
    std::string RequestText(const std::string& address) const;

    // How a request of server data ended, for whoever goes on from there.
    enum class Answer {
        read,        // getBidiDataCopy has it
        withoutData, // failed, and the person goes on without two-way communication
        stop,        // failed or stopped, and the person gives up
    };
    // Whether a failure is shown as a message, or left to whoever looks at State().
    enum class Failures { told, quiet };
    // What the last request of server data came to.
    enum class State { nothing, read, failed };

    // Sends a request and reads its answer. `resetKeys` is called first when the address is another than
    // before.
    Answer FetchServerData(const PMPrinter& printer, std::string_view address, std::string_view dynamicKeys,
                           const std::function<void()>& resetKeys, Failures failures = Failures::told);
    State GetState() const { return state; }
    // Nothing is known of the controller any more: two-way communication is off, or with another one.
    void Forget();
    // Called after each change of the state and each reading.
    void AddListener(std::function<void()> listener) { listeners.push_back(std::move(listener)); }

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
