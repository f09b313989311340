#include "apps/torka/QueueAddresses.h"

#include "bidi/StandardStreams.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsSpooler.h"
#include "platform/posix/PosixSystem.h"

#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace torka::tool {

namespace {

PosixSystem* waiting = nullptr;

void interrupt(int /*signal*/) {
    if (waiting != nullptr) {
        waiting->Cancel();
    }
}

// What the waits tell an engineer is no message of the tool.
class NoStreams final : public StandardStreams {
public:
    void Output(std::string_view /*text*/) override {}
    void Error(std::string_view /*text*/) override {}
};

void showWait(const WaitProgress& progress) {
    if (isatty(STDERR_FILENO) != 0) {
        std::fprintf(stderr, "\r\x1b[KWaiting for the queue's filter: %lld s",
                     static_cast<long long>(progress.waited.count() / 1000));
    }
}

// An interrupt ends the waits while this lives.
class Interruptible {
public:
    Interruptible()
        : before(std::signal(SIGINT, interrupt)) {
        waiting = dynamic_cast<PosixSystem*>(&platform::system());
    }
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;
    ~Interruptible() {
        std::signal(SIGINT, before);
        waiting = nullptr;
        if (isatty(STDERR_FILENO) != 0) {
            std::fputs("\r\x1b[K", stderr);
        }
    }

private:
    void (*before)(int);
};

} // namespace

std::unique_ptr<QueueAddresses> QueueAddresses::Open(const std::string& queueName) {
    const auto session = std::make_shared<CupsSession>(queueName);
    PMPrinter printer;
    if (PMSessionGetCurrentPrinter(session, printer) != noErr) {
        unusable("the print server has no queue " + printable(queueName));
        return nullptr;
    }
    platform::setSpooler(std::make_unique<CupsSpooler>());
    setStandardStreams(std::make_shared<NoStreams>());
    return std::unique_ptr<QueueAddresses>(new QueueAddresses(queueName, {session, showWait}));
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
    const ZANCorvianPrinterPList kept(access);
    if (!CFEqual(CFArrayCreate(kept.Elements()), CFArrayCreate(list->Elements()))) {
        return unusable(name +
                        ": the list was sent, and the queue does not keep it; does it use torkafilter?");
    }
    return ExitStatus::good;
}

} // namespace torka::tool
