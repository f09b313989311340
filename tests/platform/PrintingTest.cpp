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

} // namespace
} // namespace torka
