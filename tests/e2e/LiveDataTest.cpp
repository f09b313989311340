// SPDX-License-Identifier: Apache-2.0
#include "tests/e2e/LiveData.h"

#include <gtest/gtest.h>

// Trays and toner as reported by a real server's queue, or by its printer.

namespace torka::tests {

namespace {

TEST_F(LiveData, AQueuesMarkersAreItsToner) {
    AddBackend("marks", R"(echo "ATTR: marker-names='\"Cyan Toner\",\"Black @ 2\",Waste' )"
                        R"(marker-colors=#00FFFF,#000000,none marker-levels=40,-3,12 )"
                        R"(marker-types=toner,toner,waste-toner marker-low-levels=5,5,0 )"
                        R"(marker-high-levels=100,100,90" >&2)");
    const PMPrinter printer = AddQueue("Marked", "marks:/");
    ASSERT_EQ(runTool({"command", "send", "Marked", "Command_LocaleCode", "de"}).status, 0);
    ASSERT_EQ(Ask(printer, ""), ServerDataOutcome::read);
    EXPECT_EQ(Record("TonerInfo"), "3\nCyan Toner@40@5@#00FFFF@100@-1@1\nBlack   2@-3@5@#000000@100@-1@1\n"
                                   "Waste@12@0@NULL@90@-1@3\n");
    EXPECT_TRUE(Record("TrayInfo").starts_with("7\nTray 1@Tray1@EMPTY@EMPTY@EMPTY@EMPTY@-1@-1\n"))
        << Record("TrayInfo");
    EXPECT_EQ(Record("ServerInfo"), "Marked:ServerName\nTorka Production 90, controller 4.2:ProductFamily\n");
    // Stored records replace live ones.
    Give("10.0.0.30", "data", "TrayInfo", "stored");
    ASSERT_EQ(Ask(printer, "10.0.0.30"), ServerDataOutcome::read);
    EXPECT_EQ(Record("TrayInfo"), "stored");
    EXPECT_TRUE(Record("TonerInfo").starts_with("3\n"));
}

TEST_F(LiveData, AnIppPrinterIsAskedItself) {
    AddBackend("ipp", "");
    IppPrinter device;
    const PMPrinter printer = AddQueue("Direct", device.Uri());
    ASSERT_EQ(Ask(printer, "127.0.0.1"), ServerDataOutcome::read) << "the device's host under another name";
    EXPECT_EQ(Record("TonerInfo"), "2\nCyan@25@-1@#00ffff@-1@20000@1\nWaste Box@10@-1@NULL@-1@-1@3\n");
    EXPECT_EQ(Record("TrayInfo"), "2\nTray 1@Tray1@Plain@A4@Plain@Light blue@120@500\n"
                                  "Bypass Tray@Bypass@EMPTY@EMPTY@EMPTY@EMPTY@-3@-1\n");
    EXPECT_EQ(Record("ServerInfo"), "Büro  2:ServerName\n4.2:ServerVersion\nTorka Fly:ProductFamily\n");
    EXPECT_EQ(Ask(printer, "192.0.2.1"), ServerDataOutcome::connectionError) << "another's address";
    device.End();
    EXPECT_EQ(Ask(printer, ""), ServerDataOutcome::connectionError);
    EXPECT_EQ(CPPDMsgHdlr(ppdPath, "InvalidPrinterAddress").GetCStringData(), "yes");
}

} // namespace

} // namespace torka::tests
