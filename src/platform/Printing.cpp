// SPDX-License-Identifier: Apache-2.0
#include "platform/Printing.h"

#include "platform/Log.h"

namespace torka::platform {

PrintSettings::~PrintSettings() = default;
PageFormat::~PageFormat() = default;
Printer::~Printer() = default;
PrintSession::~PrintSession() = default;

OSStatus PMPrintSettingsGetValue(const PMPrintSettings& settings, const CFStringRef& key, CFTypeRef& value) {
    value = nullptr;
    if (!settings || !key) {
        return kPMInvalidParameter;
    }
    value = settings->Value(key);
    return value ? noErr : kPMKeyNotFound;
}

OSStatus PMPrintSettingsSetValue(const PMPrintSettings& settings, const CFStringRef& key,
                                 const CFTypeRef& value, bool locked) {
    if (!settings || !key) {
        return kPMInvalidParameter;
    }
    const OSStatus status = settings->SetValue(key, value, locked);
    if (status != noErr) { // most callers go on with the next setting
        myNSLogC("The print settings do not take %s (error %d).", utf8Text(key).c_str(),
                 static_cast<int>(status));
    }
    return status;
}

OSStatus PMPrintSettingsCopyAsDictionary(const PMPrintSettings& settings, CFDictionaryRef& dictionary) {
    dictionary = settings ? settings->CopyAsDictionary() : nullptr;
    if (!settings) {
        return kPMInvalidParameter;
    }
    return dictionary ? noErr : kPMGeneralError;
}

OSStatus PMGetCopies(const PMPrintSettings& settings, std::uint32_t& copies) {
    copies = settings ? settings->Copies() : 0;
    return settings ? noErr : kPMInvalidParameter;
}

OSStatus PMGetOrientation(const PMPageFormat& format, std::uint16_t& orientation) {
    orientation = format ? format->Orientation() : std::uint16_t{0};
    return format ? noErr : kPMInvalidParameter;
}

OSStatus PMSessionGetCurrentPrinter(const PMPrintSession& session, PMPrinter& printer) {
    printer = nullptr;
    return session ? session->CurrentPrinter(printer) : kPMInvalidParameter;
}

CFStringRef PMPrinterGetName(const PMPrinter& printer) { return printer ? printer->Name() : nullptr; }

PMPrinter describedPrinter(const PMPrinter& printer) {
    PMPrinter member = printer ? printer->DescribedMember() : nullptr;
    return member ? member : printer;
}

OSStatus PMPrinterCopyDescriptionURL(const PMPrinter& printer, const CFStringRef& type, CFURLRef& url) {
    url = nullptr;
    return printer && type ? printer->CopyDescriptionURL(type, url) : kPMInvalidParameter;
}

OSStatus PMPrinterCopyDeviceURI(const PMPrinter& printer, CFURLRef& uri) {
    uri = nullptr;
    return printer ? printer->CopyDeviceURI(uri) : kPMInvalidParameter;
}

OSStatus PMPrinterCopyHostName(const PMPrinter& printer, CFStringRef& name) {
    name = nullptr;
    return printer ? printer->CopyHostName(name) : kPMInvalidParameter;
}

OSStatus PMPrinterGetMakeAndModelName(const PMPrinter& printer, CFStringRef& name) {
    name = nullptr;
    return printer ? printer->MakeAndModelName(name) : kPMInvalidParameter;
}

OSStatus PMPrinterGetState(const PMPrinter& printer, std::uint16_t& state) {
    state = 0;
    return printer ? printer->State(state) : kPMInvalidParameter;
}

OSStatus PMPrinterCopyState(const PMPrinter& printer, CFDictionaryRef& state) {
    state = nullptr;
    return printer ? printer->CopyState(state) : kPMInvalidParameter;
}

OSStatus PMPrinterGetPaperList(const PMPrinter& printer, std::vector<Paper>& papers) {
    papers.clear();
    return printer ? printer->PaperList(papers) : kPMInvalidParameter;
}

OSStatus PMPrinterSendCommand(const PMPrinter& printer, const CFStringRef& command, const CFStringRef& title,
                              const CFDictionaryRef& options) {
    return printer && command && title ? printer->SendCommand(command, title, options) : kPMInvalidParameter;
}

} // namespace torka::platform
