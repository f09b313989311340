// SPDX-License-Identifier: Apache-2.0
#include "connection/ConnectionType.h"

#include "bidi/commands/CommandJob.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "connection/ServiceTypes.h"

#include <string>
#include <string_view>

namespace torka {

namespace {

constexpr std::u16string_view schemeEnd = u"://";

bool hasScheme(const PMPrintSession& session, std::u16string_view scheme) {
    const CFStringRef type = CopyPrinterConnectionType(session);
    return type && type->units == scheme;
}

std::u16string serviceType(std::u16string_view url) {
    for (const std::string_view type : controllerServiceTypes) {
        std::u16string wide(type.begin(), type.end());
        if (url.find(wide) != std::u16string_view::npos) {
            return wide;
        }
    }
    return {};
}

std::u16string_view before(std::u16string_view text, std::u16string_view separator) {
    return text.substr(0, text.find(separator));
}

} // namespace

CFStringRef GetCurrentPrinterName(const PMPrintSession& session) {
    PMPrinter printer;
    return PMSessionGetCurrentPrinter(session, printer) == noErr ? PMPrinterGetName(printer) : nullptr;
}

CFStringRef CopyPrinterConnectionType(const PMPrintSession& session) {
    PMPrinter printer;
    CFURLRef uri;
    const bool known = PMSessionGetCurrentPrinter(session, printer) == noErr &&
                       PMPrinterCopyDeviceURI(printer, uri) == noErr;
    return known ? CFURLCopyScheme(uri) : nullptr;
}

bool isUSBPrinterConnection(const PMPrintSession& session) { return hasScheme(session, u"usb"); }
bool isAppleTalkPrinterConnection(const PMPrintSession& session) { return hasScheme(session, u"pap"); }
bool isBonjourPrinterConnection(const PMPrintSession& session) { return hasScheme(session, u"mdns"); }
bool isIPPrinterConnection(const PMPrintSession& session) { return hasScheme(session, u"ipp"); }

bool isDiscoveredServiceConnection(const PMPrintSession& session) {
    return hasScheme(session, u"mdns") || hasScheme(session, u"dnssd");
}

CFStringRef breakBonjourURLIntoMeaningFullItems(const CFStringRef& url) {
    static const CFStringRef none = CFStringCreateWithCharacters(u"");
    const std::u16string_view text = url ? std::u16string_view(url->units) : std::u16string_view();
    const std::u16string_view scheme = before(text, schemeEnd);
    if (scheme.empty()) {
        return none;
    }
    std::u16string_view name = before(text, u"." + serviceType(text));
    const std::u16string prefix = std::u16string(scheme) + std::u16string(schemeEnd);
    if (name.starts_with(prefix)) {
        name.remove_prefix(prefix.size());
    }
    const CFStringRef plain = CFURLCreateStringByReplacingPercentEscapes(CFStringCreateWithCharacters(name));
    return plain ? plain : none;
}

CFStringRef breakBonjourURLIntoMeaningFullItems(const CFURLRef& url) {
    return breakBonjourURLIntoMeaningFullItems(CFURLGetString(url));
}

bool isInvalidPrinterAddress() {
    return CPPDMsgHdlr(destinationPPD(), "InvalidPrinterAddress").GetCStringData() == "yes";
}

} // namespace torka
