#pragma once

#include "platform/NetServices.h"
#include "platform/cups/CupsSupplies.h"
#include "spooler/filter/ControllerSource.h"

#include <functional>
#include <optional>
#include <string>

namespace torka::filter {

// Adds what the queue and its printer tell now to what another source has stored: a stored record stands for
// the live one of its name. docs/spooler-filter.md tells which attributes are asked.
//
// Only the queue's own device is asked, at the URI that its administrator gave it, never an address that came
// in a request. A request for another address than the device's is answered by the stored records alone. A
// device whose URI names no host is meant by every address.
class LiveSource final : public ControllerSource {
public:
    // Where the facts come from; none when nothing answers.
    struct Asking {
        std::function<std::optional<PrinterFacts>()> queue;
        std::function<std::optional<PrinterFacts>()> device;
        std::function<std::string(const NetService&)>
            service; // the address at which it is found, "" for none
    };

    // The stored source is not owned. `ppdPath` is the queue's description, "" for none.
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

// Asks the print server, and the device where it speaks IPP.
LiveSource::Asking liveAsking(const std::string& queueName, const std::string& deviceUri);

// The host that a device's URI names, "" for one that names none: a discovered service, a queue of another
// server, a printer at a cable.
std::string hostOfDevice(const std::string& uri);

// Whether a request for this address means the device. Numbers are held against all addresses of the device's
// host, which is looked up within two seconds; a name against its name alone: no name of a request is ever
// looked up.
// REQUIRES: platform::netServices() is chosen.
bool meansDevice(std::string_view address, const std::string& uri);

// The address at which a device is reached: its URI's host, or, for a discovered service ("dnssd", "mdns"),
// the service's name; "" when it has none.
std::string addressOfDevice(const std::string& uri);

} // namespace torka::filter
