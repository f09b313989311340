// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/QueueServerData.h"

#include "apps/torka/Command.h"
#include "apps/torka/Interrupt.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/BidiDataFile.h"
#include "bidi/text/StandardStreams.h"
#include "connection/ConnectionType.h"
#include "connection/RequestAddress.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"
#include "platform/cups/CupsSpooler.h"

namespace torka::tool {

namespace {

// Drops the diagnostic lines that the waits write: they are no messages of the tool.
class NoStreams final : public StandardStreams {
public:
    void Output(std::string_view /*text*/) override {}
    void Error(std::string_view /*text*/) override {}
};

// Installs the spooler and the silent streams that the waits need, for the object's lifetime.
class Waiting {
public:
    Waiting() {
        platform::setSpooler(std::make_unique<CupsSpooler>());
        setStandardStreams(std::make_shared<NoStreams>());
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    ~Waiting() {
        setStandardStreams(nullptr);
        platform::setSpooler(nullptr);
    }

private:
    Interruptible interruptible;
};

std::string addressLine(const std::string& address) {
    const std::string number = numericAddressOf(address);
    const std::vector<RequestLine> lines{{"address", number}};
    return number.empty() ? std::string() : requestText(lines);
}

} // namespace

Result<std::string> queueServerData(const std::string& queueName, const std::string& address) {
    if (std::string problem = platform::queueProblem(queueName); !problem.empty()) {
        return Fault{std::move(problem)};
    }
    const auto session = std::make_shared<CupsSession>(queueName);
    PMPrinter printer;
    BidiFilePaths paths;
    PMSessionGetCurrentPrinter(session, printer);
    const std::string asked = utf8Text(PMPrinterGetName(describedPrinter(printer)));
    if (!printer || !fillBidiFilePaths("", paths, asked)) {
        return Fault{"the print server has no queue " + queueName};
    }
    const Waiting waiting;
    BidiFailure failure;
    failure.SetQuiet(true);
    const WaitObserver observer = showingWait("the queue's filter");
    BidiDataFile file(paths, failure, observer);
    ServerDataRequests requests;
    const ServerDataRequests::Request request = requests.Compose(address, addressLine(address), "", {});
    const ServerDataOutcome outcome = fetchServerData(
        printer, request.title, request.text, requests.randomStringForBIDIFile(), paths, file, observer);
    if (outcome != ServerDataOutcome::read) {
        const bool isBadAddress = outcome == ServerDataOutcome::connectionError && isInvalidPrinterAddress();
        return Fault{std::string("no server data: ") + outcomeText(outcome) +
                         (isBadAddress && !address.empty() ? " at " + printable(address) : ""),
                     printable(asked)};
    }
    return *file.getBidiDataCopy();
}

} // namespace torka::tool
