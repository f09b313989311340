#include "platform/Log.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torka {
namespace {

using ::testing::ElementsAre;

TEST(Log, WritesItsFormats) {
    tests::CapturingLog log;
    const std::string name = "50%s";
    myNSLog("a %d b");
    myNSLog(nullptr);
    myNSLog("");
    myNSLogC("%s=%d", name.c_str(), 7);
    myNSLogC("%s", std::string(5000, 'x').c_str());
    myNSLog8(cfString("\xC3\xA9"));
    myNSLog8(nullptr);
    EXPECT_THAT(log.Lines(),
                ElementsAre("myNSLog msg 'a %d b'", "myNSLog msg nil", "myNSLog msg [empty]", "50%s=7",
                            std::string(4095, 'x'), "myNSLog8 '\xC3\xA9'", "myNSLog8 nil"));
    EXPECT_DEATH(TORKA_ASSERT(name.empty(), "a test"), "");
}

TEST(Printing, NullHandlesAreInvalidAndEmptyTheAnswer) {
    const CFStringRef key = cfString("key");
    CFTypeRef value = key;
    CFURLRef url = CFURLCreateWithFileSystemPath("/x");
    CFStringRef name = key;
    std::uint16_t number = 9;
    std::uint32_t copies = 9;
    PMPrinter printer = std::make_shared<MemoryPrinter>();
    EXPECT_EQ(PMPrintSettingsGetValue(nullptr, key, value), kPMInvalidParameter);
    EXPECT_EQ(PMPrintSettingsSetValue(nullptr, key, key, false), kPMInvalidParameter);
    EXPECT_EQ(PMGetCopies(nullptr, copies), kPMInvalidParameter);
    EXPECT_EQ(PMGetOrientation(nullptr, number), kPMInvalidParameter);
    EXPECT_EQ(PMPrinterCopyDeviceURI(nullptr, url), kPMInvalidParameter);
    EXPECT_EQ(PMPrinterCopyHostName(nullptr, name), kPMInvalidParameter);
    EXPECT_EQ(PMPrinterSendCommand(nullptr, key, key, nullptr), kPMInvalidParameter);
    EXPECT_EQ(PMPrinterSendCommand(printer, nullptr, key, nullptr), kPMInvalidParameter);
    EXPECT_EQ(PMSessionGetCurrentPrinter(nullptr, printer), kPMInvalidParameter);
    EXPECT_FALSE(value || url || name || printer || number || copies);
}

TEST(MemoryPrinting, SettingsKeepOrderAndLocks) {
    const auto settings = std::make_shared<MemoryPrintSettings>();
    const PMPrintSettings handle = settings;
    for (const char* key : {"b", "a", "c"}) {
        EXPECT_EQ(PMPrintSettingsSetValue(handle, cfString(key), cfString("1"), *key == 'a'), noErr);
    }
    EXPECT_EQ(PMPrintSettingsSetValue(handle, cfString("b"), cfString("2"), false), noErr);
    EXPECT_EQ(PMPrintSettingsSetValue(handle, cfString("c"), nullptr, false), noErr);
    settings->setResult = kPMGeneralError;
    EXPECT_EQ(PMPrintSettingsSetValue(handle, cfString("d"), cfString("1"), false), kPMGeneralError);
    CFDictionaryRef all;
    EXPECT_EQ(PMPrintSettingsCopyAsDictionary(handle, all), noErr);
    std::string listed;
    for (const auto& [key, value] : all->Pairs()) {
        listed += utf8Text(key) + utf8Text(cfCast<CFString>(value));
    }
    EXPECT_EQ(listed, "b2a1");
    EXPECT_TRUE(settings->IsLocked(cfString("a")) && !settings->IsLocked(cfString("b")));
    CFTypeRef value;
    EXPECT_EQ(PMPrintSettingsGetValue(handle, cfString("c"), value), kPMKeyNotFound);
}

TEST(MemoryPrinting, PrinterAnswersAsToldAndRecordsCommands) {
    const auto printer = std::make_shared<MemoryPrinter>();
    PMPrinter handle;
    EXPECT_EQ(PMSessionGetCurrentPrinter(std::make_shared<MemorySession>(), handle), kPMGeneralError);
    EXPECT_EQ(PMSessionGetCurrentPrinter(std::make_shared<MemorySession>(printer), handle), noErr);
    CFURLRef url;
    const CFStringRef type = cfString("PMPPDDescriptionType");
    EXPECT_EQ(PMPrinterCopyDescriptionURL(handle, type, url), kPMGeneralError);
    printer->ppdPath = "/etc/cups/ppd/a.ppd";
    EXPECT_EQ(PMPrinterCopyDescriptionURL(handle, type, url), noErr);
    EXPECT_EQ(CFURLCopyFileSystemPath(url), printer->ppdPath);
    EXPECT_EQ(PMPrinterCopyDescriptionURL(handle, cfString("other"), url), kPMInvalidParameter);
    EXPECT_EQ(PMPrinterCopyDeviceURI(handle, url), kPMGeneralError);
    printer->deviceUri = "socket://h";
    EXPECT_EQ(PMPrinterCopyDeviceURI(handle, url), noErr);
    printer->onStateAsked = [&printer] { printer->state = kPMPrinterProcessing; };
    std::uint16_t state = 0;
    EXPECT_EQ(PMPrinterGetState(handle, state), noErr);
    EXPECT_EQ(state, kPMPrinterProcessing);
    printer->onSend = [&printer](const MemoryPrinter::SentCommand&) {
        printer->sendResult = kPMGeneralError;
    };
    EXPECT_EQ(PMPrinterSendCommand(handle, cfString("text"), cfString("Command_X"), nullptr),
              kPMGeneralError);
    ASSERT_EQ(printer->sent.size(), 1U);
    EXPECT_EQ(utf8Text(printer->sent[0].title), "Command_X");
}

} // namespace
} // namespace torka
