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

ExitStatus QueueAddresses::Save(const AddressChange& change) {
    const Interruptible interruptible;
    const CFArrayRef former = list->List();
    change(*list);
    if (!list->Save()) {
        return list->Error() == PropertyListFile::memFullErr
                   ? unusable(name + ": the list holds a text that XML cannot hold")
                   : unusable(platform::describedQueue(name).value_or(name) +
                              ": the queue takes no command: it is stopped, or rejects jobs");
    }
    if (!list->Reason().empty()) {
        return unusable(name + ": the queue does not keep the list: " + printable(list->Reason()));
    }
    ZANCorvianPrinterPList kept(access);
    const CFArrayRef stored = CFArrayCreate(kept.Elements());
    change(kept);
    if (CFEqual(stored, CFArrayCreate(kept.Elements()))) {
        return ExitStatus::good;
    }
    const bool isFormer = former ? CFEqual(stored, former) : CFArrayGetCount(stored) == 0;
    return unusable(
        name + (isFormer ? ": the list was sent, and the queue does not keep it; does it use torkafilter?"
                         : ": another change of the list came in between; try again"));
}

} // namespace torka::tool
