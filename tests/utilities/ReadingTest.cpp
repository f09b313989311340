// SPDX-License-Identifier: Apache-2.0
#include "PPDFile.h"
#include "PPDX/PPDObjects/Interface/PPDX.h"
#include "PPDX/Utilities/ModelState.h"
#include "Settings.h"
#include "TextConverter.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace torka {
namespace {

using testing::ElementsAre;

struct Reader : PPDX {
    using PPDX::StartReading;
};

// A description that is read from a temporary file.
class Description {
public:
    explicit Description(std::string_view content)
        : file(FSRef{folder.Write("d.ppd", content)}) {
        EXPECT_TRUE(reader.StartReading(std::make_unique<PPDFileStream>(&file, true)));
    }

    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        while (reader.ReadLine(line)) {
            lines.emplace_back(line);
        }
        return lines;
    }
    tests::TemporaryFolder folder;
    PPDFile file;
    Reader reader;
    std::string_view line;
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
    const std::tuple<std::string, bool, bool, std::uint32_t> lines[] = {
        {"a", true, false, 1},
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
    for (const auto& [read, result, cut, number] : lines) {
        EXPECT_EQ(stream.GetLine(line), result) << read;
        EXPECT_EQ(line, read);
        EXPECT_EQ(stream.LineWasCut(), cut) << read;
        EXPECT_EQ(stream.LineNumber(), number) << read;
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

TEST(PPDFile, FaultsAreTold) {
    const tests::TemporaryFolder folder;
    for (const auto& [path, error] : {std::pair<std::string, OSStatus>{folder / "none", fnfErr},
                                      {folder.Path(), fnOpnErr},
                                      {"/dev/zero", fnOpnErr},
                                      {"", paramErr}}) {
        PPDFile file(FSRef{path});
        EXPECT_TRUE(PPDFileStream(&file, true).Bad()) << path;
        EXPECT_EQ(file.getError(), error) << path;
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

// A description that declares its language and this encoding.
struct Described : PPDX {
    explicit Described(const char* encoding) {
        PPDStream language(std::string_view(" English")), name{std::string_view(encoding)};
        ParsePSKeywords(language, "*LanguageVersion");
        ParsePSKeywords(name, "*LanguageEncoding");
    }
    std::string Converted(std::string_view text) { return utf8Text(Converter()->ConvertToCFString(text)); }
};

std::string dehexed(std::string_view text) {
    std::string out(text.size(), '\0');
    out.resize(TextConverter::DehexBufferFill(text, out.data()));
    return out;
}

TEST(TextConverter, HexadecimalSubstrings) {
    using namespace std::string_view_literals;
    for (const auto& [in, out] : {std::pair<std::string_view, std::string_view>{"a<4142>b<63>", "aABbc"},
                                  {"<4a4B>", "JK"},
                                  {"<>x", "x"},
                                  {"< 41\t4 2\n>", "AB"},
                                  {"<41>b<4>c<42>", "Ab<4>c<42>"},
                                  {"<4g><41>", "<4g><41>"},
                                  {"a<41", "a<41"},
                                  {"a>b", "a>b"},
                                  {"<<41>>", "<<41>>"},
                                  {"<41\0>"sv, "<41\0>"sv},
                                  {"<00>", "\0"sv},
                                  {"", ""}}) {
        EXPECT_EQ(dehexed(in), out) << in;
    }
}

// The platform's test compares the encodings with Python's codecs.
TEST(TextConverter, ReadsTextsInTheirEncodings) {
    for (const auto& [name, text, converted] :
         {std::tuple<const char*, const char*, const char*>{"ISOLatin1", "A\xA4<e4>", "A\u00a4\u00e4"},
          {"ISOLatin2", "A\xA3<b1>", "A\u0141\u0105"},
          {"ISOLatin5", "A\xD0<fe>", "A\u011e\u015f"},
          {"JIS83-RKSJ", "A\x83\x5C\x88\xF3<8dfc 41>\xB1", "A\u30bd\u5370\u5237A\uff71"},
          {"MacStandard", "A\x8E<a0>", "A\u00e9\u2020"},
          {"WindowsANSI", "A\x80<99>", "A\u20ac\u2122"},
          {"UTF-8", "A\xC3\xA9<f09f9880>", "A\u00e9\U0001f600"},
          {"Unheard-of", "A\xC3\xA9<e697a5>", "A\u00e9\u65e5"}}) {
        Described description(name);
        EXPECT_EQ(description.Converter()->ValidConverter(), std::string(name) != "Unheard-of");
        EXPECT_EQ(description.Converted(text), converted) << name;
    }
}

TEST(TextConverter, NeverFailsOutright) {
    Described japanese("JIS83-RKSJ");
    // With a lead byte that lacks its second byte, each two bytes count as one unit, and an odd last byte is
    // left out.
    EXPECT_EQ(japanese.Converter()->ConvertToCFString("x\x81", 256)->units, u"\x8178");
    EXPECT_EQ(japanese.Converter()->ConvertToCFString("xyz\x81 ", 5)->units, u"\x7978\x817A");
    EXPECT_EQ(Described("UTF-8").Converted("a\xFF"), "a\uFFFD");
    Described latin("ISOLatin1");
    EXPECT_EQ(latin.Converted("caf<E9>"), "caf\u00e9");
    EXPECT_EQ(utf8Text(latin.Converter()->ConvertToCFString("abcdef", 3)), "abc");
    EXPECT_EQ(utf8Text(latin.Converter()->ConvertToCFString(nullptr, 3)), "");

    tests::ScopedMemorySystem system;
    system->narrowEncoding = kCFStringEncodingMacRoman;
    char narrow[32];
    EXPECT_TRUE(TextConverter::CFStringToCstring(cfString("caf\u00e9"), narrow, sizeof narrow));
    EXPECT_STREQ(narrow, "caf\x8E");
    EXPECT_FALSE(TextConverter::CFStringToCstring(cfString("\u65e5"), narrow, sizeof narrow));
    EXPECT_STREQ(narrow, "Translation Error");
    EXPECT_FALSE(TextConverter::CFStringToCstring(cfString("too long"), narrow, 6));
    EXPECT_STREQ(narrow, "Trans");
    Described roman("ISOLatin1"); // created while the system's encoding is Mac Roman
    CString text("caf<E9>");
    EXPECT_TRUE(roman.Converter()->ppdStringConvert(text));
    EXPECT_STREQ(text, "caf\x8E");
    EXPECT_TRUE(roman.Converter()->Convert("caf\xE9", narrow, sizeof narrow));
    EXPECT_STREQ(narrow, "caf\x8E");
}

} // namespace
} // namespace torka
