#pragma once

#include "platform/Printing.h"

// How the session's current queue reaches its device, and what its device URI tells of a discovered service.
//
// The tests answer false when there is no printer or its URI cannot be had. Schemes are compared exactly,
// with their case.

namespace torka {

// Null when the session has no current printer.
CFStringRef GetCurrentPrinterName(const PMPrintSession& session);
// The scheme of the current printer's device URI; null when there is none.
CFStringRef CopyPrinterConnectionType(const PMPrintSession& session);

bool isUSBPrinterConnection(const PMPrintSession& session);       // "usb"
bool isAppleTalkPrinterConnection(const PMPrintSession& session); // "pap"
bool isBonjourPrinterConnection(const PMPrintSession& session);   // "mdns" alone
bool isIPPrinterConnection(const PMPrintSession& session);        // "ipp"

// Whether the device URI names a service that was discovered ("dnssd" or "mdns"), so that its host part is no
// network address. The question wherever an address is derived from a queue.
bool isDiscoveredServiceConnection(const PMPrintSession& session);

// The instance name of the service that a device URI names: what stands between the scheme and the service
// type (the first of the controllerServiceTypes that it holds), percent escapes undone. Without a service
// type the name ends at the first ".". "" for a URI without a scheme and for escapes that are not UTF-8 text;
// never null.
CFStringRef breakBonjourURLIntoMeaningFullItems(const CFStringRef& url);
CFStringRef breakBonjourURLIntoMeaningFullItems(const CFURLRef& url);

// Whether the spooler's filter could not reach the queue's configured address: the record
// "QVInvalidPrinterAddress" of destinationPPD() holds "yes".
bool isInvalidPrinterAddress();

} // namespace torka
