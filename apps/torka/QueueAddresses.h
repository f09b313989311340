#pragma once

#include "apps/torka/Command.h"
#include "connection/ZANCorvianPrinterPList.h"

#include <memory>
#include <string>

namespace torka::tool {

// The address list that a queue of the print server keeps. A queue that keeps none has an empty one.
//
// Saving waits for the queue's filter, with the wait on a terminal's standard error; an interrupt ends it.
class QueueAddresses {
public:
    // Null, with the reason on standard error, when the server has no such queue.
    static std::unique_ptr<QueueAddresses> Open(const std::string& queueName);
    QueueAddresses(const QueueAddresses&) = delete;
    QueueAddresses& operator=(const QueueAddresses&) = delete;
    ~QueueAddresses();

    ZANCorvianPrinterPList& List() { return *list; }
    // Unusable, with the reason told, unless the queue keeps the list as it is now.
    ExitStatus Save();

private:
    QueueAddresses(std::string queueName, QueueAccess queueAccess);

    std::string name;
    QueueAccess access;
    std::unique_ptr<ZANCorvianPrinterPList> list;
};

} // namespace torka::tool
