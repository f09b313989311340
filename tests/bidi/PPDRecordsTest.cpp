// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/CPPDMsgHdlr.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/support/SmallPPD.h"
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <cups/ppd.h>
#include <gmock/gmock.h>
#include <map>
#include <random>
#include <sstream>

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka {
namespace {

TEST(PPDRecords, TwoHundredStayReadable) {
    tests::CapturingStreams streams;
    const tests::TemporaryFolder folder;
    const std::string sample =
        tests::readFile(std::string(TORKA_SOURCE_DIR) + "/samples/torka-production.ppd");
    std::mt19937 random(3);
    for (const bool quoted : {false, true}) {
        std::map<std::string, std::wstring> records;
        streams.Clear();
        for (int i = 0; i < 200; ++i) {
            std::string name = "Rec" + std::to_string(i);
            name.resize(i % 2 == 0 && !quoted ? 34 : 12,
                        '_'); // 36 characters with its "QV"; quotes leave no room
            std::wstring& text = records[name];
            text.resize(random() % 500 + 1);
            std::generate(text.begin(), text.end(),
                          [&] { return static_cast<wchar_t>(random() % 0x11000 + 1); });
            EXPECT_EQ(CPPDMsgHdlr("", name).Commit(text), static_cast<int>(name.size()) + 2);
        }
        ASSERT_LT(streams.Errors().size(), 2000U);
        const std::string text = tests::afterMessages(sample, streams.Errors(), quoted);
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            ASSERT_LE(line.size(), 255U);
        }
        const std::string path = folder.Write("queue.ppd", text).string();
        ppd_file_t* ppd = ppdOpenFile(path.c_str());
        ASSERT_NE(ppd, nullptr) << "libcups cannot open it";
        EXPECT_EQ(ppdxRecordNames(ppd).size(), records.size());
        EXPECT_NE(ppdFindOption(ppd, "PageSize"), nullptr);
        for (const auto& [name, wide] : records) {
            std::size_t size = 0;
            const RecordBlock block = ppdxReadData(ppd, "QV" + name, &size);
            EXPECT_EQ(wideFromPayload({block.get(), size}), wide) << name;
        }
        ppdClose(ppd);
        CPPDMsgHdlr handler(path, records.begin()->first);
        EXPECT_EQ(handler.GetStringData(), records.begin()->second);
        EXPECT_EQ(CPPDMsgHdlr(path, "Absent").GetStringData(), L"");
    }
}

TEST(PPDRecords, NarrowEmptyReplacedAndBroken) {
    tests::CapturingStreams streams;
    const tests::TemporaryFolder folder;
    EXPECT_EQ(CPPDMsgHdlr("", "X").Commit(std::string_view()), -1);
    EXPECT_EQ(CPPDMsgHdlr("", "X").Commit(std::wstring_view()), -1);
    EXPECT_TRUE(ppdxWriteData("QVEmpty", nullptr, 0));
    EXPECT_FALSE(ppdxWriteData("QVa b=c", "x", 1));
    EXPECT_THAT(streams.Errors(), ::testing::ElementsAre("PPD: QVEmpty0000=\"\"\n"));

    std::string text = tests::afterMessages(tests::smallPPD, streams.Errors());
    for (const char* answer : {"a longer text than the one that comes", "yes"}) {
        streams.Clear();
        EXPECT_EQ(CPPDMsgHdlr("", "InvalidPrinterAddress").Commit(std::string_view(answer)), 23);
        text = tests::afterMessages(text, streams.Errors());
    }
    const std::string path = folder.Write("q.ppd", text).string();
    CPPDMsgHdlr handler(path, "InvalidPrinterAddress");
    EXPECT_EQ(handler.GetCStringData(), "yes");
    handler.Discard();
    EXPECT_EQ(CPPDMsgHdlr(path, "Empty").GetCStringData(), "");
    folder.Write("q.ppd", "no description");
    EXPECT_EQ(handler.GetCStringData(), "");
    EXPECT_EQ(CPPDMsgHdlr("/nowhere.ppd", "X").GetCStringData(), "");
    EXPECT_EQ(ppdxReadData(nullptr, "QVX", nullptr), nullptr);
}

} // namespace
} // namespace torka
