// SPDX-License-Identifier: Apache-2.0
// Reads a device URI of arbitrary bytes, as text and as the URL of a queue. It is of at most one kind, and
// the name taken from it can be shown. Also reads the bytes as a service's name.

#include "connection/BonjourIPDiscovery.h"
#include "connection/ConnectionType.h"
#include "connection/ControllerList.h"
#include "platform/memory/MemoryPrinting.h"

#include <cstdlib>

namespace {

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torka;
    const std::string uri(reinterpret_cast<const char*>(data), size);
    const CFStringRef text = cfString(uri);
    const CFStringRef name = breakBonjourURLIntoMeaningFullItems(text);
    check(name != nullptr && CFStringGetLength(name) <= CFStringGetLength(text));

    const auto printer = std::make_shared<MemoryPrinter>();
    printer->deviceUri = uri;
    const PMPrintSession session = std::make_shared<MemorySession>(printer);
    const int kinds = int{isUSBPrinterConnection(session)} + int{isAppleTalkPrinterConnection(session)} +
                      int{isBonjourPrinterConnection(session)} + int{isIPPrinterConnection(session)};
    check(kinds <= 1 && (CopyPrinterConnectionType(session) || kinds == 0));
    check(isDiscoveredServiceConnection(session) || !isBonjourPrinterConnection(session));
    const CFURLRef url = CFURLCreateWithString(text);
    check(!url || CFEqual(breakBonjourURLIntoMeaningFullItems(url), name));
    const CFStringRef host = CFURLCopyHostName(url);
    check(!host || CFStringGetLength(host) > 0);

    const auto discovery = BonjourIPDiscovery::initWithPrinterBonjourURL(url);
    check(discovery->instanceName().size() <= uri.size() && discovery->printAddress() == "NO");
    const CFStringRef shown = plainServiceName(uri);
    check(CFStringGetLength(shown) <= 255 && utf8Text(shown).find('\n') == std::string::npos);
    return 0;
}
