#include "spooler/filter/LiveSource.h"

#include "connection/ConnectionType.h"
#include "connection/SimplePing.h"
#include "platform/CoreFoundation.h"
#include "spooler/filter/LiveRecords.h"

#include <algorithm>
#include <chrono>
#include <cups/cups.h>
#include <strings.h>

namespace torka::filter {

namespace {

constexpr std::chrono::milliseconds deviceLimit(2000);

// Told by the same text, or by two that lead to one IPv4 address.
bool isSameHost(const std::string& one, const std::string& other) {
    if (::strcasecmp(one.c_str(), other.c_str()) == 0) {
        return true;
    }
    HostAddress first;
    HostAddress second;
    return LookupHostAddress(one.c_str(), &first) == 0 && LookupHostAddress(other.c_str(), &second) == 0 &&
           first.family == second.family && first.bytes == second.bytes;
}

bool hasRecord(const ControllerAnswer& answer, const std::string& name) {
    return std::ranges::any_of(answer.dataRecords,
                               [&name](const ControllerRecord& record) { return record.name == name; });
}

} // namespace

LiveSource::LiveSource(ControllerSource& storedRecords, std::string uri, std::string ppdPath, Asking asking)
    : stored(storedRecords)
    , deviceUri(std::move(uri))
    , ppd(std::move(ppdPath))
    , ask(std::move(asking)) {}

ControllerAnswer LiveSource::Ask(std::string_view address, const std::vector<RequestLine>& request,
                                 std::string_view language) {
    ControllerAnswer answer = stored.Ask(address, request, language);
    const std::string own = addressOfDevice(deviceUri);
    // A device without an address has one controller only, whatever that is called.
    if (!own.empty() && !address.empty() && !isSameHost(std::string(address), own)) {
        return answer;
    }
    const std::optional<PrinterFacts> device = ask.device();
    const PrinterFacts queue = ask.queue().value_or(PrinterFacts());
    if (!device && !answer.isReached && queue.markerNames.empty()) {
        return answer; // nothing vouches for anybody being there
    }
    answer.isReached = true;
    for (ControllerRecord& record :
         liveRecords(device.value_or(PrinterFacts()), queue, QueueChoices::Read(ppd))) {
        if (!hasRecord(answer, record.name)) {
            answer.dataRecords.push_back(std::move(record));
        }
    }
    return answer;
}

LiveSource::Asking liveAsking(const std::string& queueName, const std::string& deviceUri) {
    // A filter has nobody to ask for a password.
    cupsSetPasswordCB2(
        [](const char*, http_t*, const char*, const char*, void*) -> const char* { return nullptr; },
        nullptr);
    return {[queueName] { return queueFacts(queueName); },
            [deviceUri] { return deviceFacts(deviceUri, deviceLimit); }};
}

std::string addressOfDevice(const std::string& uri) {
    if (uri.starts_with("dnssd:") || uri.starts_with("mdns:")) {
        return utf8Text(breakBonjourURLIntoMeaningFullItems(cfString(uri)));
    }
    return utf8Text(CFURLCopyHostName(CFURLCreateWithString(cfString(uri))));
}

} // namespace torka::filter
