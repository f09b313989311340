// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/LiveSource.h"

#include "connection/ConnectionType.h"
#include "platform/CoreFoundation.h"
#include "platform/NetServices.h"
#include "spooler/filter/DeviceService.h"
#include "spooler/filter/LiveRecords.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cups/cups.h>

namespace torka::filter {

namespace {

constexpr std::chrono::milliseconds lookUpLimit(2000);
constexpr std::chrono::milliseconds deviceLimit(2000);

// Schemes of devices whose URI has something other than a network host in the host's place.
constexpr std::array<std::string_view, 10> schemesWithoutHost = {
    "dnssd", "mdns", "implicitclass", "usb", "parallel", "serial", "bluetooth", "hp", "pap", "file"};

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
    const auto line = std::ranges::find(request, "address", &RequestLine::first);
    const std::string_view numbers = line == request.end() ? std::string_view() : line->second;
    ControllerAnswer answer = stored.Ask(address, request, language);
    if (!meansDevice(address, deviceUri) && (numbers.empty() || !meansDevice(numbers, deviceUri))) {
        return answer;
    }
    const std::optional<PrinterFacts> device = ask.device();
    const PrinterFacts queue = ask.queue().value_or(PrinterFacts());
    if (!device && !answer.isReached && queue.markerNames.empty()) {
        return answer; // no sign that a printer exists there
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

std::string LiveSource::FoundAddress() {
    const std::optional<NetService> service = serviceOfDevice(deviceUri);
    return service && ask.service ? ask.service(*service) : std::string();
}

LiveSource::Asking liveAsking(const std::string& queueName, const std::string& deviceUri) {
    // A filter cannot ask anybody for a password.
    cupsSetPasswordCB2(
        [](const char*, http_t*, const char*, const char*, void*) -> const char* { return nullptr; },
        nullptr);
    return {[queueName] { return queueFacts(queueName); },
            [deviceUri] { return deviceFacts(deviceUri, deviceLimit); }, addressOfService};
}

std::string hostOfDevice(const std::string& uri) {
    const std::string_view scheme = std::string_view(uri).substr(0, uri.find(':'));
    return std::ranges::find(schemesWithoutHost, scheme) != schemesWithoutHost.end()
               ? std::string()
               : utf8Text(CFURLCopyHostName(CFURLCreateWithString(cfString(uri))));
}

bool meansDevice(std::string_view address, const std::string& uri) {
    const std::string host = hostOfDevice(uri);
    HostAddress asked;
    if (address.empty() || host.empty() || isSameAddress(address, host)) {
        return true;
    }
    HostAddress own;
    if (!parseNumericAddress(address, asked) || parseNumericAddress(host, own)) {
        return false;
    }
    const std::vector<HostAddress> addresses = netServices().ResolveHostAddresses(host, lookUpLimit);
    return std::ranges::find(addresses, asked) != addresses.end();
}

std::string addressOfDevice(const std::string& uri) {
    if (uri.starts_with("dnssd:") || uri.starts_with("mdns:")) {
        return utf8Text(breakBonjourURLIntoMeaningFullItems(cfString(uri)));
    }
    return utf8Text(CFURLCopyHostName(CFURLCreateWithString(cfString(uri))));
}

} // namespace torka::filter
