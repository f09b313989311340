// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/QueueAddresses.h"

#include "apps/torka/Interrupt.h"
#include "bidi/text/StandardStreams.h"
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

} // namespace

Result<std::unique_ptr<QueueAddresses>> QueueAddresses::Open(const std::string& queueName) {
    if (std::string problem = platform::queueProblem(queueName); !problem.empty()) {
        return Fault{std::move(problem)};
    }
    const auto session = std::make_shared<CupsSession>(queueName);
    platform::setSpooler(std::make_unique<CupsSpooler>());
    setStandardStreams(std::make_shared<NoStreams>());
    return std::unique_ptr<QueueAddresses>(
        new QueueAddresses(queueName, {session, showingWait("the queue's filter")}));
}

QueueAddresses::QueueAddresses(std::string queueName, QueueAccess queueAccess)
    : name(std::move(queueName))
    , access(std::move(queueAccess))
    , list(std::make_unique<ZANCorvianPrinterPList>(access)) {}

QueueAddresses::~QueueAddresses() {
    setStandardStreams(nullptr);
    platform::setSpooler(nullptr);
}

ExitStatus QueueAddresses::Save() {
    const Interruptible interruptible;
    if (!list->Save()) {
        return unusable(name + ": " +
                        (list->Error() == PropertyListFile::memFullErr
                             ? "the list holds a text that XML cannot hold"
                             : "the queue takes no command: it is stopped, or rejects jobs"));
    }
    if (!list->Reason().empty()) {
        return unusable(name + ": the queue does not keep the list: " + printable(list->Reason()));
    }
    const ZANCorvianPrinterPList kept(access);
    if (!CFEqual(CFArrayCreate(kept.Elements()), CFArrayCreate(list->Elements()))) {
        return unusable(name +
                        ": the list was sent, and the queue does not keep it; does it use torkafilter?");
    }
    return ExitStatus::good;
}

} // namespace torka::tool
