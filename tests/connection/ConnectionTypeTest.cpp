// SPDX-License-Identifier: Apache-2.0
#include "connection/ConnectionType.h"

#include "bidi/commands/CommandJob.h"
#include "connection/RequestAddress.h"
#include "platform/memory/MemoryNetServices.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/connection/RecordPPD.h"
#include "tests/support/ScopedDouble.h"

#include <gtest/gtest.h>

#include <set>

namespace torka {
namespace {

TEST(ConnectionType, FollowsTheExactSchemeOfTheDeviceUri) {
    const auto printer = std::make_shared<MemoryPrinter>();
    const PMPrintSession session = std::make_shared<MemorySession>(printer);
    const std::pair<std::set<std::string>, bool (*)(const PMPrintSession&)> kinds[] = {
        {{"usb"}, isUSBPrinterConnection},
        {{"pap"}, isAppleTalkPrinterConnection},
        {{"mdns"}, isBonjourPrinterConnection},
        {{"ipp"}, isIPPrinterConnection},
        {{"mdns", "dnssd"}, isDiscoveredServiceConnection}};
    for (const std::string scheme : {"usb", "pap", "mdns", "dnssd", "MDNS", "ipp", "ipps", ""}) {
        printer->deviceUri = scheme.empty() ? "" : scheme + "://Torka._ipp._tcp.local./";
        EXPECT_EQ(utf8Text(CopyPrinterConnectionType(session)), scheme);
        for (const auto& [schemes, isKind] : kinds) {
            EXPECT_EQ(isKind(session), schemes.contains(scheme)) << scheme << " is " << *schemes.begin();
        }
    }
    EXPECT_EQ(utf8Text(GetCurrentPrinterName(session)), "Printer");
    printer->deviceUriResult = kPMGeneralError;
    EXPECT_FALSE(CopyPrinterConnectionType(session));
    EXPECT_FALSE(isUSBPrinterConnection(session));
    EXPECT_FALSE(GetCurrentPrinterName(nullptr));
    EXPECT_FALSE(CopyPrinterConnectionType(std::make_shared<MemorySession>()));
}

TEST(ConnectionType, TakesTheInstanceNameFromAServicesUri) {
    const std::pair<const char*, const char*> cases[] = {
        {"mdns://Office%20Printer._ipp._tcp.local./?bidi", "Office Printer"},
        {"dnssd://B%C3%BCro%20%2F%202._pdl-datastream._tcp.local./?uuid=1", "B\xC3\xBCro / 2"},
        {"mdns://Floor.2._printer._tcp.local.", "Floor.2"},
        {"mdns://A._ipps._tcp.local.", "A"},
        // The order of the list of types decides, not the order in the text.
        {"mdns://A._ipp._tcp.B._printer._tcp.local.", "A._ipp._tcp.B"},
        {"socket://10.20.30.40:9100", "10"},
        {"ipp://controller.example.com/ipp", "controller"},
        {"no scheme at all", "no scheme at all"},
        {"://A._ipp._tcp.local.", ""},
        {"", ""},
        // Escapes that do not decode to UTF-8 give no name.
        {"mdns://100%._ipp._tcp.local.", ""},
        {"mdns://A%00B._ipp._tcp.local.", ""},
        {"mdns://A%FFB._ipp._tcp.local.", ""},
    };
    for (const auto& [uri, name] : cases) {
        EXPECT_EQ(utf8Text(breakBonjourURLIntoMeaningFullItems(cfString(uri))), name) << uri;
    }
    EXPECT_TRUE(breakBonjourURLIntoMeaningFullItems(CFStringRef()));
    EXPECT_EQ(utf8Text(breakBonjourURLIntoMeaningFullItems(
                  CFURLCreateWithString(cfString("dnssd://T%20x._ipp._tcp.local./")))),
              "T x");
}

TEST(ConnectionType, InvalidAddressIsWhatTheFilterWroteDown) {
    const tests::TemporaryFolder folder;
    for (const auto& [text, invalid] :
         {std::pair("yes", true), {"no", false}, {"", false}, {"yes\n", false}, {"YES", false}}) {
        setDestinationPPD(tests::writeRecordPPD(folder, "QVInvalidPrinterAddress", text, false));
        EXPECT_EQ(isInvalidPrinterAddress(), invalid) << text;
    }
    setDestinationPPD(tests::writeRecordPPD(folder, "QVOther", "yes", false));
    EXPECT_FALSE(isInvalidPrinterAddress());
    setDestinationPPD("");
    EXPECT_FALSE(isInvalidPrinterAddress());
}

TEST(RequestAddress, LooksUpHostNamesOnly) {
    const tests::ScopedDouble<MemoryNetServices, setNetServices> services;
    for (const char* name : {"press-2.Example", "press_2", "10.0.0.7", "press 2", "\u00fc.example"}) {
        parseNumericAddress("10.0.0.5", services->hosts[name]);
    }
    parseNumericAddress("2001:db8::1", services->hosts["six"]);
    EXPECT_EQ(numericAddressOf("press-2.Example"), "10.0.0.5");
    EXPECT_EQ(numericAddressOf("six"), "2001:db8::1");
    for (const char* none : {"press_2", "10.0.0.7", "press 2", "\u00fc.example", "unknown", ""}) {
        EXPECT_EQ(numericAddressOf(none), "") << none;
    }
}

} // namespace
} // namespace torka
