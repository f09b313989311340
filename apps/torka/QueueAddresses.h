// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/Command.h"
#include "connection/ZANCorvianPrinterPList.h"

#include <functional>
#include <memory>
#include <string>

namespace torka::tool {

// A change of a list; it may be made in several lists.
using AddressChange = std::function<void(ZANCorvianPrinterPList&)>;

// The address list that a queue of the print server keeps. The list is empty for a queue that keeps none.
//
// Save waits for the queue's filter. Standard error shows the wait when it is a terminal. An interrupt ends
// the wait.
class QueueAddresses {
public:
    // Fails when the server cannot be reached or has no such queue.
    static Result<std::unique_ptr<QueueAddresses>> Open(const std::string& queueName);
    QueueAddresses(const QueueAddresses&) = delete;
    QueueAddresses& operator=(const QueueAddresses&) = delete;
    ~QueueAddresses();

    ZANCorvianPrinterPList& List() { return *list; }
    // Makes the change, sends the list and reads it back. `unusable`, with the reason on standard error, when
    // the queue does not keep the change.
    ExitStatus Save(const AddressChange& change);

private:
    QueueAddresses(std::string queueName, QueueAccess queueAccess);

    std::string name;
    QueueAccess access;
    std::unique_ptr<ZANCorvianPrinterPList> list;
};

} // namespace torka::tool
