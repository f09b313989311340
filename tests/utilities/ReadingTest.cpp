// SPDX-License-Identifier: Apache-2.0
#include "PPDFile.h"
#include "PPDX/PPDObjects/Interface/PPDX.h"
#include "PPDX/Utilities/ModelState.h"
#include "Settings.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace torka {
namespace {

using testing::ElementsAre;

struct Reader : PPDX {
    using PPDX::StartReading;
    using PPDX::StopReading;
};

// A description that is read from a temporary file.
class Description {
public:
    explicit Description(std::string_view content, long pieceCapacity = PPDFileStream::kPieceCapacity)
        : file(FSRef{folder.Write("d.ppd", content)}) {
        isGood = reader.StartReading(std::make_unique<PPDFileStream>(&file, true, pieceCapacity));
    }

    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        while (reader.ReadLine(line)) {
            lines.emplace_back(line);
        }
        return lines;
    }
    // Reads the value on the next line.
    std::string Value(bool isPostscript, long capacity = 256) {
        EXPECT_TRUE(reader.ReadLine(line));
        PPDStream stream(line);
        char out[1024];
        length = isPostscript ? reader.GetPostscriptString(stream, out, capacity)
                              : reader.GetQuotedString(stream, out, capacity);
        return out;
    }

    tests::TemporaryFolder folder;
    PPDFile file;
    Reader reader;
    std::string_view line;
    long length = 0;
    bool isGood = false;
};

TEST(PPDStream, CharactersAndStatus) {
    PPDStream stream(" \tA\xFE", 4);
    char character = 0;
    stream.SkipWhiteSpace();
    EXPECT_TRUE(stream.GetChar(character));
    EXPECT_EQ(stream.PeekChar(), -2);
    PPDStream second(stream);
    EXPECT_TRUE(second.GetChar(character) && second.Good());
    EXPECT_FALSE(second.GetChar(character));
    EXPECT_TRUE(second.EndOfFile() && character == '\xFF' && second.PeekChar() == -1);
    EXPECT_TRUE(stream.Good() && PPDStream(nullptr, 4).Bad() && PPDStream("x", 0).Bad());
    char line[kLineCapacity];
    EXPECT_FALSE(PPDStream().GetLine(line));
}

TEST(PPDStream, LineEndsCutsAndNumbers) {
    gEndOfPPD = false;
    tests::CapturingLog log;
    const std::string text = "a\rb\r\nc\n" + std::string(300, 'x') + "\ny\xFFz\nlast";
    PPDStream stream{std::string_view(text)};
    struct Expected {
        std::string text;
        bool result, cut;
        std::uint32_t number;
    };
    const Expected lines[] = {{"a", true, false, 1},
                              {"b", true, false, 2},
                              {"", true, false, 3}, // the rest of a CR LF
                              {"c", true, false, 3},
                              {std::string(255, 'x'), false, true, 4},
                              {std::string(45, 'x'), true, false, 4},
                              {"y", false, false, 5},
                              {"z", true, false, 5},
                              {"last", false, false, 6},
                              {"", false, false, 6}};
    char line[kLineCapacity];
    for (const Expected& each : lines) {
        EXPECT_EQ(stream.GetLine(line), each.result) << each.text;
        EXPECT_EQ(line, each.text);
        EXPECT_EQ(stream.LineWasCut(), each.cut) << each.text;
        EXPECT_EQ(stream.LineNumber(), each.number) << each.text;
    }
    EXPECT_TRUE(stream.EndOfFile());
    EXPECT_THAT(log.Lines(), ElementsAre("PPDStream::GetLine theChar == EOF, i 1 \n"));
    const std::string binary(100000, '\xFF');
    PPDStream flood{std::string_view(binary)};
    while (!flood.EndOfFile()) {
        flood.GetLine(line);
    }
    EXPECT_LT(log.Lines().size(), 100U);
}

TEST(PPDStream, NothingIsReadBehindTheEndOfTheDescriptionUntilAParseStarts) {
    tests::CapturingLog log;
    {
        Description first("a\n*% End of PPD file, really\nnever\n");
        EXPECT_THAT(first.Lines(), ElementsAre("a", ""));
        EXPECT_TRUE(gEndOfPPD);
        PPDStream other(std::string_view("more\n"));
        EXPECT_FALSE(other.TakeLine(first.line));
        EXPECT_EQ(first.line, "");
        EXPECT_EQ(other.Remaining(), "more\n");
    }
    EXPECT_THAT(log.Lines(), ElementsAre("*% End of PPD file, really", "FIT208051", "FIT208051"));
    EXPECT_THAT(Description("b\n").Lines(), ElementsAre("b"));
}

// The fuzz target ppd_tokens compares the lines with a byte-by-byte reader.
TEST(PPDFileStream, LinesDoNotShowWhereThePiecesEnd) {
    std::mt19937 random(5);
    std::string content;
    while (content.size() < 20'000) {
        content += std::string(random() % 16 == 0 ? random() % 600 : random() % 90, 'x');
        content += std::array{"\r\n", "\r", "\n", "\xFF"}[random() % 4];
    }
    content += "\n*% End of PPD file\nlost\n";
    const std::vector<std::string> lines = Description(content, 1'000'000).Lines();
    EXPECT_GT(lines.size(), 200U);
    for (const long capacity : {1L, 2L, 7L, 255L, 256L, 1000L}) {
        EXPECT_EQ(Description(content, capacity).Lines(), lines) << capacity;
    }
}

TEST(PPDFileStream, LinesAreHandedBackWithAllThatWasTrueOfThem) {
    Description description("a\nlast", 3);
    std::string_view line;
    EXPECT_TRUE(description.reader.ReadLine(line) && description.reader.ReadLine(line));
    EXPECT_EQ(line, "last");
    EXPECT_EQ(description.reader.LineNumber(), 2U);
    description.reader.PushBackLine();
    line = {};
    EXPECT_TRUE(description.reader.ReadLine(line));
    EXPECT_EQ(line, "last");
    EXPECT_EQ(description.reader.LineNumber(), 2U);
    EXPECT_FALSE(description.reader.ReadLine(line));
}

TEST(PPDX, Tokens) {
    struct Case {
        std::string_view text;
        const char* delimiters;
        bool trim;
        std::vector<std::string> tokens;
    };
    const std::string longText(300, 'n');
    const Case cases[] = {
        {"*UIConstraints: *A  x\t*B", " \t:", true, {"*UIConstraints", "*A", "x", "*B"}},
        {"*Key/A name : Boolean", "/:", false, {"*Key", "A name ", " Boolean"}},
        {" a \r\n\tb\rc", "", true, {"a", "b", "c"}},
        {"a||b", "|", false, {"a", "", "b"}},
        {longText, ":", false, {longText.substr(0, 255), longText.substr(255)}},
    };
    for (const Case& each : cases) {
        PPDStream stream(each.text);
        for (const std::string& expected : each.tokens) {
            char token[kLineCapacity];
            EXPECT_EQ(PPDX::NextToken(stream, token, each.delimiters, each.trim), !expected.empty())
                << each.text;
            EXPECT_EQ(token, expected) << each.text;
        }
        EXPECT_TRUE(stream.Remaining().empty() && stream.EndOfFile()) << each.text;
    }
}

TEST(PPDX, QuotedValues) {
    struct Case {
        const char* text;
        bool isPostscript;
        long capacity;
        const char* value;
        const char* nextLine; // null at the end
    };
    const Case cases[] = {
        {"*A: \"one\"\nnext", false, 256, "one", "next"},
        {"*A: \"one\r\n two\r\nthree\" rest\r\nnext", false, 256, "one twothree", ""},
        {"*A: \"one\n two\nthree\"\nnext", true, 256, "one\n two\nthree\n", "next"},
        {"*A: \"one\n\n*%two\n*% End\"\nnext", true, 256, "one\ntwo\n End\n", "next"},
        {"*A: \"one\n*% two\"\n", false, 256, "one", "*% two\""},
        {"*A: \"one\ntwo\n*B: x\n", true, 256, "one\ntwo\n", "*B: x"},
        {"*A: \"one\ntwo", false, 256, "onetwo", nullptr},
        {"*A: \"one\ntwo", true, 256, "", nullptr},
        {"*A: \"\"\nnext", false, 256, "", "next"},
        {"*A: \"\"\nnext", true, 256, "", "next"},
        {"*A: none\n\"x\"", true, 256, "", "\"x\""},
        {"*A: \"0123456789\nabc\"\nnext", false, 8, "0123456", "next"},
        {"*A: \"0123456789\nabc\"\nnext", true, 8, "012345\n", "next"},
        {"*A: \"one\"", true, 2, "", nullptr},
    };
    for (const Case& each : cases) {
        Description description(each.text);
        EXPECT_EQ(description.Value(each.isPostscript, each.capacity), each.value) << each.text;
        const auto length = static_cast<long>(std::string_view(each.value).size());
        EXPECT_EQ(description.length, length > 0 ? length + 1 : 0) << each.text;
        EXPECT_EQ(description.reader.ReadLine(description.line), each.nextLine != nullptr) << each.text;
        EXPECT_EQ(description.line, each.nextLine != nullptr ? each.nextLine : "") << each.text;
    }
}

TEST(PPDFile, FaultsAreTold) {
    const tests::TemporaryFolder folder;
    struct Case {
        std::string path;
        OSStatus error;
    };
    for (const Case& each : {Case{folder / "none", fnfErr}, Case{folder.Path(), fnOpnErr},
                             Case{"/dev/zero", fnOpnErr}, Case{"", paramErr}}) {
        PPDFile file(FSRef{each.path});
        EXPECT_TRUE(PPDFileStream(&file, true).Bad()) << each.path;
        EXPECT_EQ(file.getError(), each.error) << each.path;
    }
    PPDFile empty(FSRef{folder.Write("empty", "")});
    PPDFileStream stream(&empty, true);
    EXPECT_FALSE(stream.Good());
    PPDFile notAFile(CFURLCreateWithString(cfString("http://host/x")));
    EXPECT_TRUE(!notAFile.valid() && PPDFileStream(&notAFile, true).Bad() &&
                PPDFileStream(nullptr, true).Bad());
}

TEST(PPDFile, ReadsWritesAndDescribes) {
    const tests::TemporaryFolder folder;
    PPDFile file("", folder.Path().string(), "new.ppd");
    EXPECT_TRUE(file.valid() && !file.exists() && file.createDataFork() && file.exists());
    EXPECT_EQ(file.getFileName(), "new.ppd");
    long count = 6;
    EXPECT_TRUE(file.openDataFork(fsRdWrPerm) && file.dataForkWrite("abcdef", count) == noErr);
    char text[8] = {};
    count = 8;
    EXPECT_EQ(file.dataForkReadWithOffset(text, count, 2), eofErr);
    EXPECT_EQ(std::string(text) + std::to_string(count), "cdef4");
    FileInfo info;
    EXPECT_TRUE(file.getFileInfo(info) && info.size == 6 && file.dataForkSize() == 6 && !info.isFolder);
    EXPECT_TRUE(file.closeDataFork() && !file.dataForkOpen() && !file.closeDataFork());
    EXPECT_TRUE(!file.OpenResourceFork(fsRdPerm) && file.getError() == resFNotFound);
}

TEST(Settings, ComeBackFromTheirDictionary) {
    Settings settings;
    settings.Set("text", "caf\u00e9 \"x\"\n");
    settings.SetInteger("integer", INT64_MIN);
    settings.SetReal("real", 0.1);
    settings.Set("gone", "x");
    settings.Remove("gone");
    const Settings back(settings.CopyAsDictionary());
    EXPECT_EQ(back.Values(), settings.Values());
    EXPECT_EQ(back.GetInteger("integer"), INT64_MIN);
    EXPECT_EQ(back.GetReal("real"), 0.1);
    EXPECT_FALSE(back.GetInteger("text") || back.Get("gone") || back.Has("gone"));
}

} // namespace
} // namespace torka
