#pragma once

#include "bidi/BidiDataFile.h"
#include "bidi/BidiFailure.h"
#include "bidi/SpoolerCommands.h"
#include "platform/Printing.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace torka {

// The panel's two-way communication with its queue's filter: one queue, the data that were read of it, and
// how a failure is told. docs/commands.md describes the exchange.
//
// The panel owns it. Its waits lie in a ScopedWait, so that a person sees and can stop them.
class ServerExchange {
public:
    explicit ServerExchange(StringLookup strings);

    // The queue whose two-way files are meant from now on, by its description's path and its name.
    void SetQueue(std::string_view ppdPath, std::string_view queueName);

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

    // The lines that every request begins with: the language of the answer's texts.
    static std::string RequestText();

    // How a request of server data ended, for whoever goes on from there.
    enum class Answer {
        read,        // getBidiDataCopy has it
        withoutData, // failed, and the person goes on without two-way communication
        stop,        // failed or stopped, and the person gives up
    };
    // Sends a request and reads its answer. `resetKeys` is called first when the address is another than
    // before. A failure shows its message.
    Answer FetchServerData(const PMPrinter& printer, std::string_view address, std::string_view dynamicKeys,
                           const std::function<void()>& resetKeys);

private:
    Answer Chosen() const;

    BidiFailure failure;
    BidiFilePaths paths;
    std::unique_ptr<BidiDataFile> dataFile;
    ServerDataRequests requests;
};

} // namespace torka
