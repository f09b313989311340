// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/TicketCommands.h"

#include "bidi/commands/SpoolerCommands.h"
#include "platform/TextEncoding.h"

#include <string>

namespace torka {

OSStatus sendTicketAhead(const PMPrinter& printer, const CFStringRef& fileName, const CFDataRef& list) {
    const std::span<const std::uint8_t> bytes = CFDataGetBytes(list);
    const CFStringRef text =
        CFStringCreateWithBytes(reinterpret_cast<const char*>(bytes.data()),
                                static_cast<CFIndex>(bytes.size()), kCFStringEncodingNonLossyASCII);
    if (!fileName || bytes.empty() || !text) {
        return kPMInvalidParameter;
    }
    const std::string path = utf8Text(fileName);
    const CFDictionaryRef options =
        CFDictionaryCreate({{cfString(ticketNameOption), cfString(path.substr(path.rfind('/') + 1))}});
    const OSStatus status = PMPrinterSendCommand(
        printer, fileName, cfString(commandTitle(SpoolerCommand::psTempFileName)), options);
    return status != noErr ? status
                           : PMPrinterSendCommand(
                                 printer, text, cfString(commandTitle(SpoolerCommand::writePSTemp)), options);
}

} // namespace torka
