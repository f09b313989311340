#pragma once

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
// in a request. A request for another address than the device's is answered by the stored records alone.
class LiveSource final : public ControllerSource {
public:
    // Where the facts come from; none when nothing answers.
    struct Asking {
        std::function<std::optional<PrinterFacts>()> queue;
        std::function<std::optional<PrinterFacts>()> device;
    };

    // The stored source is not owned. `ppdPath` is the queue's description, "" for none.
    LiveSource(ControllerSource& storedRecords, std::string uri, std::string ppdPath, Asking asking);
    ControllerAnswer Ask(std::string_view address, const std::vector<RequestLine>& request,
                         std::string_view language) override;

private:
    ControllerSource& stored;
    std::string deviceUri;
    std::string ppd;
    Asking ask;
};

// Asks the print server, and the device where it speaks IPP.
LiveSource::Asking liveAsking(const std::string& queueName, const std::string& deviceUri);

// The address at which a device is reached: its URI's host, or, for a discovered service ("dnssd", "mdns"),
// the service's name; "" when it has none.
std::string addressOfDevice(const std::string& uri);

} // namespace torka::filter
