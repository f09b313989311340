// SPDX-License-Identifier: Apache-2.0
#include "connection/ConnectionType.h"

#include "bidi/commands/CommandJob.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/connection/RecordPPD.h"

#include <gtest/gtest.h>

namespace torka {
namespace {

TEST(ConnectionType, FollowsTheExactSchemeOfTheDeviceUri) {
    struct Case {
        const char* uri;
        bool usb, appleTalk, bonjour, ip, discovered;
    };
    const auto printer = std::make_shared<MemoryPrinter>();
    const PMPrintSession session = std::make_shared<MemorySession>(printer);
    for (const Case& entry : {Case{"usb://Torka/Fly?serial=1", true, false, false, false, false},
                              Case{"pap://office/Torka", false, true, false, false, false},
                              Case{"mdns://Torka._ipp._tcp.local./", false, false, true, false, true},
                              Case{"dnssd://Torka._ipp._tcp.local./", false, false, false, false, true},
                              Case{"MDNS://Torka._ipp._tcp.local./", false, false, false, false, false},
                              Case{"ipp://10.0.0.7/ipp/print", false, false, false, true, false},
                              Case{"ipps://10.0.0.7/ipp/print", false, false, false, false, false},
                              Case{"", false, false, false, false, false}}) {
        SCOPED_TRACE(entry.uri);
        printer->deviceUri = entry.uri;
        EXPECT_EQ(isUSBPrinterConnection(session), entry.usb);
        EXPECT_EQ(isAppleTalkPrinterConnection(session), entry.appleTalk);
        EXPECT_EQ(isBonjourPrinterConnection(session), entry.bonjour);
        EXPECT_EQ(isIPPrinterConnection(session), entry.ip);
        EXPECT_EQ(isDiscoveredServiceConnection(session), entry.discovered);
    }
    printer->deviceUri = "usb://Torka/Fly";
    EXPECT_EQ(utf8Text(CopyPrinterConnectionType(session)), "usb");
    EXPECT_EQ(utf8Text(GetCurrentPrinterName(session)), "Printer");

    printer->deviceUriResult = kPMGeneralError;
    EXPECT_FALSE(CopyPrinterConnectionType(session));
    EXPECT_FALSE(isUSBPrinterConnection(session));
    for (const PMPrintSession& without :
         {PMPrintSession(), PMPrintSession(std::make_shared<MemorySession>())}) {
        EXPECT_FALSE(GetCurrentPrinterName(without));
        EXPECT_FALSE(CopyPrinterConnectionType(without));
        EXPECT_FALSE(isUSBPrinterConnection(without));
    }
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

} // namespace
} // namespace torka
