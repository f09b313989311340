// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/RecordText.h"
#include "bidi/text/CBuffer.h"
#include "bidi/text/LineReader.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <random>

namespace torka {
namespace {

using ::testing::ElementsAre;

std::string randomBytes(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random()); });
    return bytes;
}

std::string wideLines(int count) {
    CBuffer buffer;
    for (int i = 0; i < count; ++i) {
        buffer.AddCString("Größe@\xE7\xB4\x99");
        buffer.AddInt(i * i);
        buffer.AddString(L"\n");
    }
    return std::string(payloadFromWide(buffer.GetStringData()));
}

std::string written(std::string_view name, const std::string& payload) {
    std::string out;
    EXPECT_TRUE(CFileHdlr::fileWriteData(name, payload.data(), payload.size(), out));
    return out;
}

std::optional<std::string> readFromText(const std::string& text, std::string_view name) {
    std::size_t size = 99;
    const RecordBlock block = CFileHdlr::stringReadData(text, name, &size);
    if (!block) {
        EXPECT_EQ(size, 0U);
        return std::nullopt;
    }
    EXPECT_EQ(block[size], '\0');
    return std::string(block.get(), size);
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

// Reads records with Python's own modules.
constexpr const char* pythonReader = R"(
import base64, sys, zlib
chunks = {}
for line in open(sys.argv[1]):
    name, text = line.rstrip('\n').split(': ')
    assert len(text) <= 212, len(text)
    chunks.setdefault(name[:-4], []).append((name[-4:], text))
for name, parts in chunks.items():
    assert [n for n, _ in parts] == ['%04x' % i for i in range(len(parts))]
    assert parts[-1][1] == '' and all(t for _, t in parts[:-1])
    pieces = [base64.b64decode(t, validate=True) for _, t in parts[:-1]]
    assert all(len(p) == 158 for p in pieces[:-1])
    data = zlib.decompress(b''.join(pieces)) if pieces else b''
    sys.stdout.buffer.write(b'%s %d ' % (name.encode(), len(parts)) + data + b'\n')
)";

TEST(Records, PythonReadsWhatIsWritten) {
    const tests::CapturingStreams streams;
    const tests::TemporaryFolder folder;
    const std::vector<std::pair<std::string, std::string>> records = {
        {"TrayInfo", wideLines(40)},
        {"Empty", ""},
        {"One", "x"},
        {"WholeChunk", randomBytes(147, 1)}, // a stream of 158 bytes: zlib adds 11
        {"TwoChunks", randomBytes(158 + 147, 2)},
        {"Random", randomBytes(100'000, 3)},
        {std::string(36, 'n'), wideLines(2)},
    };
    std::string file;
    std::string expected;
    for (const auto& [name, payload] : records) {
        const std::string lines = written(name, payload);
        file += lines;
        expected += name + " " + std::to_string(linesOf(lines).size()) + " " + payload + "\n";
    }
    const std::filesystem::path path = folder.Write("data", file);
    EXPECT_TRUE(tests::runPython(pythonReader, {path.string()}) == expected);
    EXPECT_EQ(linesOf(written("WholeChunk", records[3].second)).size(), 2U);
    EXPECT_EQ(written("Empty", ""), "Empty0000: \n");

    // Everything written was also sent to the standard error stream, in blocks of whole lines below 1,024
    // bytes.
    std::string echoed;
    for (const std::string& block : streams.Errors()) {
        EXPECT_LT(block.size(), 1022U);
        EXPECT_TRUE(block.ends_with("\n"));
        echoed += block;
    }
    EXPECT_TRUE(echoed.starts_with(file));
}

// An empty record "Other" and a record "Rec" with the payload.
std::string writtenByPython(const std::string& payload) {
    return tests::runPython(R"(
import base64, sys, zlib
stream = zlib.compress(sys.stdin.buffer.read(), 1)
chunks = [stream[i:i + 158] for i in range(0, len(stream), 158)] + [b'']
print('Other0000: eJwDAAAAAAE=\nOther0001: ')
print('\n'.join('Rec%04x: ' % i + base64.b64encode(c).decode() for i, c in enumerate(chunks)), end='')
)",
                            {}, payload);
}

TEST(Records, WhatPythonWritesIsRead) {
    const tests::ScopedMemorySystem system;
    const std::string payload = wideLines(3000);
    const std::vector<std::string> lines = linesOf(writtenByPython(payload));
    for (const char* lineEnd : {"\n", "\r", "\r\n"}) {
        std::string text;
        for (const std::string& line : lines) {
            text += (text.empty() ? "" : lineEnd) + line;
        }
        EXPECT_EQ(readFromText(text, "Rec"), payload) << lineEnd;
        EXPECT_EQ(readFromText(text, "Other"), "") << lineEnd;
        EXPECT_EQ(readFromText(withPlainLineEnds(text), "Rec"), payload) << lineEnd;
        EXPECT_THAT(RecordText(text).Names(), ElementsAre("Other", "Rec")) << lineEnd;
        system->files["/two-way"].content = text;
        std::size_t size = 0;
        const RecordBlock block = CFileHdlr::fileReadData("/two-way", "Rec", &size);
        EXPECT_EQ(std::string_view(block.get(), size), payload) << lineEnd;
    }
    EXPECT_EQ(wideFromPayload(payload).substr(0, 5), L"Größe");
}

TEST(Records, StreamsThatAreNoneEndQuietly) {
    const tests::CapturingStreams streams;
    // Chunks behind a broken stream do not continue it.
    EXPECT_EQ(readFromText("Rec0000: /////w==\nRec0001: AAAA\n", "Rec"), "");
    EXPECT_THAT(streams.Errors(), ElementsAre("ERROR: inflate returned -3 (incorrect header check)\n"));
    // A stream that requires a preset dictionary (RFC 1950) neither loops nor fails.
    EXPECT_EQ(readFromText("Rec0000: ePkAAAAB\nRec0001: AAAA\n", "Rec"), "");
}

// The fuzz target record_reader compares the index and the reader with a slow reader.
TEST(Records, AreFoundWithoutAnIndexToo) {
    const tests::CapturingStreams streams;
    std::string text(100'000, '0'); // too many places where a record could begin for an index
    EXPECT_EQ(readFromText(text, "A"), std::nullopt);
    for (int i = 0; i < 70'000; ++i) {
        text += "A0ffff";
    }
    text += "\n" + written("Rec", wideLines(20)) + written("A", "x");
    const RecordText unindexed(text);
    for (const char* name : {"Rec", "A"}) {
        std::size_t size = 0;
        const RecordBlock block = unindexed.Read(name, &size);
        ASSERT_TRUE(block);
        EXPECT_EQ(std::string(block.get(), size), readFromText(text, name));
    }
    for (const auto& [name, length] : unindexed.Sizes()) {
        EXPECT_EQ(length, readFromText(text, name).value_or("").size()) << name;
    }
}

TEST(Records, LimitsHold) {
    const tests::CapturingStreams streams;
    std::string out;
    const std::string largest(0x1000001, 'z');
    EXPECT_FALSE(CFileHdlr::fileWriteData("Rec", largest.data(), 0x1000001, out));
    EXPECT_FALSE(CFileHdlr::fileWriteData("Rec", nullptr, 1, out));
    for (const char* name : {"", "a b", "a:b", "a=b", "a\nb", "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"}) {
        EXPECT_FALSE(CFileHdlr::fileWriteData(name, "x", 1, out)) << name;
    }
    EXPECT_EQ(out, "");
    // Chunks beyond 0xffff have five digits, for which a name of 36 characters leaves no room.
    const std::string incompressible = randomBytes(65'536 * 158, 5);
    EXPECT_FALSE(
        CFileHdlr::fileWriteData(std::string(36, 'n'), incompressible.data(), incompressible.size(), out));
    EXPECT_TRUE(
        CFileHdlr::fileWriteData(std::string(35, 'n'), incompressible.data(), incompressible.size(), out));
    EXPECT_TRUE(readFromText(out, std::string(35, 'n')) == incompressible);

    EXPECT_TRUE(CFileHdlr::fileWriteData("Rec", largest.data(), 0x1000000, out));
    EXPECT_TRUE(readFromText(out, "Rec") == largest.substr(0, 0xFFFFFF));
    EXPECT_EQ(readFromText("Rec0000: \n", std::string(37, 'n')), std::nullopt);
    EXPECT_EQ(readFromText("", "Rec"), std::nullopt);

    const std::string bomb = writtenByPython(std::string(64U << 20U, '\0'));
    EXPECT_EQ(readFromText(bomb, "Rec")->size(), 0xFFFFFFU);
}

TEST(FileHandler, CollectsAndWrites) {
    const tests::ScopedMemorySystem system;
    const tests::TemporaryFolder folder;
    const std::string path = (folder / "out").string();
    CFileHdlr file(path);
    EXPECT_EQ(file.Commit(), -1);
    file.AddString("abc");
    EXPECT_EQ(file.AddInt(-12) + file.AddFloat(1e20F), 8);
    EXPECT_EQ(file.Commit(), 11);
    file.AddString("gone");
    EXPECT_EQ(file.Discard(), 4);
    EXPECT_EQ(tests::readFile(path), "abc-121e+20");
    CFileHdlr full("/dev/full");
    full.AddString("x");
    EXPECT_EQ(full.Commit(), 0);
    std::size_t none = 7;
    EXPECT_EQ(CFileHdlr::fileReadData("/nowhere", "Rec", &none), nullptr);
    EXPECT_EQ(none, 0U);
}

TEST(Lines, EndInAnyWay) {
    std::istringstream stream("a\r\n\rb\n\nc");
    std::vector<std::string> lines;
    for (std::string line; safeGetline(stream, line);) {
        lines.push_back(line);
    }
    EXPECT_THAT(lines, ElementsAre("a", "", "b", "", "c"));
    EXPECT_TRUE(stream.fail());
    EXPECT_EQ(withPlainLineEnds("a\r\n\rb\n\nc"), "a\n\nb\n\nc\n");
    EXPECT_EQ(withPlainLineEnds(""), "");
}

} // namespace
} // namespace torka
