// SPDX-License-Identifier: Apache-2.0
#include "connection/ZANCorvianPrinterPList.h"

#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySpooler.h"
#include "tests/connection/RecordPPD.h"
#include "tests/support/ScopedDouble.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

const char* const homeFile = "/home/user/Library/Preferences/ZAN.CorvianPrinterV2.plist";

std::string listXml(const std::string& address) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><array><string>Café</string><string>)" +
           address +
           "</string><true/><string>2</string><string>----- Data End -----</string></array></plist>\n";
}

class ListStoreTest : public ::testing::Test {
protected:
    ListStoreTest() {
        printer->ppdPath = folder / "no-record.ppd";
        spooler->destinations = {{printer->name, destinationStateIdle, true}};
        printer->onSend = [this](const MemoryPrinter::SentCommand& command) {
            spooler->jobs.push_back({++jobs, utf8Text(command.title), printer->name, jobState});
        };
    }

    std::unique_ptr<ZANCorvianPrinterPList> Open() {
        return std::make_unique<ZANCorvianPrinterPList>(QueueAccess{session, {}});
    }

    tests::ScopedMemorySystem system;
    tests::TemporaryFolder folder;
    tests::ScopedDouble<MemorySpooler, setSpooler> spooler;
    std::shared_ptr<MemoryPrinter> printer = std::make_shared<MemoryPrinter>();
    PMPrintSession session = std::make_shared<MemorySession>(printer);
    int jobs = 0;
    int jobState = jobStateCompleted;
};

TEST_F(ListStoreTest, IsReadFromTheQueuesRecordAndSentAsACommand) {
    printer->ppdPath = tests::writeRecordPPD(folder, "QVDriverPreference", listXml("10.0.0.1"), true);
    const auto list = Open();
    EXPECT_TRUE(list->Loaded());
    EXPECT_FALSE(list->CacheFileExists());
    EXPECT_EQ(utf8Text(list->Find(cfString("caf\xC3\x89"))), "10.0.0.1");

    // Without a change nothing is sent, not even when an entry is set to its present value.
    EXPECT_TRUE(list->Save());
    list->Add(cfString("Caf\xC3\xA9"), cfString("10.0.0.1"), true);
    EXPECT_TRUE(list->Save());
    EXPECT_TRUE(printer->sent.empty());

    list->Add(cfString("Caf\xC3\xA9"), cfString("host <&> \xE2\x82\xAC"), false);
    EXPECT_TRUE(list->Save());
    ASSERT_EQ(printer->sent.size(), 1U);
    EXPECT_EQ(utf8Text(printer->sent[0].title), "Command_ZANPrefs00000000-0000-4000-8000-000000000001");
    EXPECT_EQ(tests::runPython("import plistlib, sys\n"
                               "print(ascii(plistlib.loads(sys.stdin.buffer.read())))",
                               {}, utf8Text(printer->sent[0].command)),
              "['Caf\\xe9', 'host <&> \\u20ac', False, '2', '----- Data End -----']\n");
    EXPECT_TRUE(list->Save());
    EXPECT_EQ(printer->sent.size(), 1U);

    // Another person changes the address. A list that cannot be read again is not sent.
    tests::writeRecordPPD(folder, "QVDriverPreference", listXml("10.0.0.2"), true);
    const auto second = Open();
    tests::writeRecordPPD(folder, "QVDriverPreference", listXml("10.0.0.3"), true);
    second->setIPEnabled(cfString("Caf\xC3\xA9"), false);
    printer->descriptionResult = kPMGeneralError;
    EXPECT_FALSE(second->Save());
    EXPECT_EQ(second->Error(), kPMGeneralError);
    EXPECT_EQ(printer->sent.size(), 1U);
    printer->descriptionResult = noErr;
    EXPECT_TRUE(second->Save());
    ASSERT_EQ(printer->sent.size(), 2U);
    EXPECT_THAT(utf8Text(printer->sent[1].command),
                testing::AllOf(testing::HasSubstr("10.0.0.3"), testing::HasSubstr("<false/>")));

    // What another person has stored already is not sent again.
    tests::writeRecordPPD(folder, "QVDriverPreference", listXml("10.0.0.4"), true);
    second->Add(cfString("Caf\xC3\xA9"), cfString("10.0.0.4"), true);
    EXPECT_TRUE(second->Save());
    EXPECT_EQ(printer->sent.size(), 2U);
}

TEST_F(ListStoreTest, WithoutARecordThereIsNoList) {
    printer->ppdPath = tests::writeRecordPPD(folder, "QVOther", listXml("a"), true);
    system->files["/var/cache/torka/ZAN/ZAN.CorvianPrinterV2.plist"] = {};
    system->files[homeFile] = {listXml("from the file"), 0600}; // unused on this system version
    const auto list = Open();
    EXPECT_FALSE(list->Loaded());
    EXPECT_TRUE(list->CacheFileExists());
    EXPECT_TRUE(list->Elements().empty());
    EXPECT_TRUE(list->Save()); // an empty list equals a missing one
    EXPECT_TRUE(printer->sent.empty());
    printer->descriptionResult = kPMGeneralError;
    EXPECT_FALSE(Open()->Loaded());
}

TEST_F(ListStoreTest, ACommandThatCannotBeSentFails) {
    const auto list = Open();
    list->Add(cfString("P"), cfString("a"), true);
    const auto start = system->now;
    spooler->destinations[0].state = destinationStateStopped;
    EXPECT_FALSE(list->Save());
    spooler->destinations[0] = {printer->name, destinationStateIdle, false};
    EXPECT_FALSE(list->Save());
    EXPECT_TRUE(printer->sent.empty());
    EXPECT_EQ(system->now, start); // without a wait
    spooler->destinations[0].acceptsJobs = true;
    printer->sendResult = kPMGeneralError;
    printer->onSend = nullptr;
    EXPECT_FALSE(list->Save());
    EXPECT_NE(list->Error(), noErr);
    EXPECT_TRUE(list->Changed());

    ZANCorvianPrinterPList homeless{QueueAccess{}};
    homeless.Add(cfString("P"), cfString("a"), true);
    EXPECT_FALSE(homeless.Save());
    EXPECT_EQ(homeless.Error(), kPMInvalidParameter);
}

TEST_F(ListStoreTest, ACommandThatDidNotCompleteIsSentAgain) {
    const auto list = Open();
    list->Add(cfString("P"), cfString("a"), true);
    jobState = jobStatePending;
    EXPECT_TRUE(list->Save()); // it was sent
    jobState = jobStateCompleted;
    EXPECT_TRUE(list->Save());
    EXPECT_TRUE(list->Save());
    ASSERT_EQ(printer->sent.size(), 2U);
    EXPECT_EQ(utf8Text(printer->sent[0].command), utf8Text(printer->sent[1].command));
}

TEST_F(ListStoreTest, OldSystemsKeepAFile) {
    system->minorVersion = 6;
    EXPECT_FALSE(Open()->Loaded());
    system->files[homeFile] = {listXml("10.0.0.1"), 0644};
    const auto list = Open();
    EXPECT_EQ(utf8Text(list->Find(cfString("Caf\xC3\xA9"))), "10.0.0.1");
    list->Add(cfString("Caf\xC3\xA9"), cfString("10.0.0.2"), true);

    system->writeFailure = [](const std::filesystem::path&) {
        return std::make_error_code(std::errc::no_space_on_device);
    };
    EXPECT_FALSE(list->Save());
    EXPECT_EQ(list->Error(), ENOSPC);
    EXPECT_EQ(system->files[homeFile].content, listXml("10.0.0.1"));
    system->writeFailure = nullptr;
    EXPECT_TRUE(list->Save());
    EXPECT_EQ(system->files[homeFile].mode, 0600U);
    EXPECT_EQ(utf8Text(Open()->Find(cfString("Caf\xC3\xA9"))), "10.0.0.2");
    EXPECT_TRUE(printer->sent.empty());

    // Before that version, the list is read from the file, and changes go to the spooler.
    system->minorVersion = 5;
    const auto older = Open();
    EXPECT_EQ(utf8Text(older->Find(cfString("Caf\xC3\xA9"))), "10.0.0.2");
    older->setIPEnabled(cfString("Caf\xC3\xA9"), false);
    EXPECT_TRUE(older->Save());
    older->Add(cfString("P"), cfString("a"), true);
    EXPECT_TRUE(older->Save());
    ASSERT_EQ(printer->sent.size(), 2U);
    EXPECT_THAT(utf8Text(printer->sent[1].command), testing::HasSubstr("<false/>")) << "the first change";
    EXPECT_EQ(utf8Text(Open()->Find(cfString("Caf\xC3\xA9"))), "10.0.0.2");
}

TEST_F(ListStoreTest, ADescriptionIsOnlyRead) {
    const std::string ppd = tests::writeRecordPPD(folder, "QVDriverPreference", listXml("10.0.0.1"), true);
    ZANCorvianPrinterPList list(std::make_unique<DescriptionPropertyListStore>(ppd));
    EXPECT_EQ(utf8Text(list.Find(cfString("Caf\xC3\xA9"))), "10.0.0.1");
    list.setIPEnabled(cfString("Caf\xC3\xA9"), false);
    EXPECT_FALSE(list.Save());
    EXPECT_EQ(list.Error(), EROFS);
}

} // namespace
} // namespace torka
