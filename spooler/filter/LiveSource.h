// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NetServices.h"
#include "platform/cups/CupsSupplies.h"
#include "spooler/filter/ControllerSource.h"

#include <functional>
#include <optional>
#include <string>

namespace torka::filter {

// Adds the current facts of the queue and its printer to the stored records of another source. A stored
// record takes precedence over a live one of its name. docs/spooler-filter.md lists the attributes that are
// asked.
//
// Asks only the queue's own device, at the URI that its administrator set, never an address from a request.
// The stored records alone answer a request for another address. When the device's URI names no host, every
// address means the device.
class LiveSource final : public ControllerSource {
public:
    // The sources of the facts. Each returns nothing when it gets no answer.
    struct Asking {
        std::function<std::optional<PrinterFacts>()> queue;
        std::function<std::optional<PrinterFacts>()> device;
        std::function<std::string(const NetService&)>
            service; // the address of the service, "" when not found
    };

    // Does not own the stored source. `ppdPath` is the path of the queue's description, "" for none.
    LiveSource(ControllerSource& storedRecords, std::string uri, std::string ppdPath, Asking asking);
    ControllerAnswer Ask(std::string_view address, const std::vector<RequestLine>& request,
                         std::string_view language) override;
    std::string FoundAddress() override;

private:
    ControllerSource& stored;
    std::string deviceUri;
    std::string ppd;
    Asking ask;
};

// Asks the print server, and the device when it speaks IPP.
LiveSource::Asking liveAsking(const std::string& queueName, const std::string& deviceUri);

// Returns the host that a device's URI names. Returns "" for a discovered service, a queue of another server
// and a printer at a cable.
std::string hostOfDevice(const std::string& uri);

// Tells whether a request for this address means the device. Looks up the device's host and compares a
// numeric address with all its addresses. Compares a name with the host's name alone: a name from a request
// is never looked up. REQUIRES: platform::netServices() is chosen.
bool meansDevice(std::string_view address, const std::string& uri);

// Returns the address of a device: its URI's host or, for a discovered service ("dnssd", "mdns"), the name of
// the service; "" when it has none.
std::string addressOfDevice(const std::string& uri);

} // namespace torka::filter
