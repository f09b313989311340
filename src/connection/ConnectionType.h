// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

// The connection of the session's current queue to its device, and the service that its device URI names.
//
// The predicates return false when there is no printer or its URI is unknown. They compare schemes exactly,
// letter case included.

namespace torka {

// The scheme of the current printer's device URI; null without one.
CFStringRef CopyPrinterConnectionType(const PMPrintSession& session);

bool isAppleTalkPrinterConnection(const PMPrintSession& session); // "pap"

// Whether the device URI names a discovered service ("dnssd" or "mdns"); its host part is then no network
// address. Check this before deriving an address from a queue.
bool isDiscoveredServiceConnection(const PMPrintSession& session);

// The instance name of the service that a device URI names: the text between the scheme and the service type,
// with percent escapes decoded. The service type is the first of "_printer._tcp", "_ipp._tcp", "_ipps._tcp"
// and "_pdl-datastream._tcp" that the URI holds. Without a service type the name ends at the first ".". ""
// for a URI without a scheme and for escapes that do not decode to UTF-8. Never null.
CFStringRef breakBonjourURLIntoMeaningFullItems(const CFStringRef& url);
CFStringRef breakBonjourURLIntoMeaningFullItems(const CFURLRef& url);
// Whether the queue's filter could not reach the queue's configured address: the record
// "QVInvalidPrinterAddress" of destinationPPD() then holds "yes".
bool isInvalidPrinterAddress();

// Given interface; no caller here
// Null when the session has no current printer.
CFStringRef GetCurrentPrinterName(const PMPrintSession& session);
bool isUSBPrinterConnection(const PMPrintSession& session);     // "usb"
bool isBonjourPrinterConnection(const PMPrintSession& session); // "mdns", not "dnssd"
bool isIPPrinterConnection(const PMPrintSession& session);      // "ipp"

} // namespace torka
