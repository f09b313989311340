// SPDX-License-Identifier: Apache-2.0
// Reads lines, tokens and quoted values from arbitrary bytes, and compares each with a byte-by-byte reader.
//
// Input: the first three bytes choose the size of the pieces, the delimiters and the capacity of values.

#include "PPDFile.h"
#include "PPDX/PPDObjects/Interface/PPDX.h"
#include "PPDX/Utilities/ModelState.h"
#include "fuzz/ReadingOracle.h"
#include "platform/Log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace torka;

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "differs: %s\n", what);
        std::abort();
    }
}

struct Silence : LogSink {
    void Line(std::string_view) override {}
};

// A file in memory with a name that can be opened.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view content)
        : descriptor(memfd_create("description", MFD_CLOEXEC)) {
        require(write(descriptor, content.data(), content.size()) == static_cast<ssize_t>(content.size()),
                "write");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor); }
    FSRef Reference() const { return {"/proc/self/fd/" + std::to_string(descriptor)}; }

private:
    int descriptor;
};

struct Reader : PPDX {
    using PPDX::StartReading;
};

void checkLines(std::string_view content, PPDStream& stream, bool isWholeFile) {
    oracle::Cursor cursor{content};
    char line[kLineCapacity];
    gEndOfPPD = false;
    std::uint32_t number = 0;
    for (bool endOfPPD = false;;) {
        const oracle::Line expected = oracle::readLine(cursor, endOfPPD);
        const bool result = stream.GetLine(line);
        require(result == expected.result, "line result");
        require(expected.text == std::string_view(line, expected.text.size()) &&
                    line[expected.text.size()] == '\0',
                "line");
        require(stream.LineNumber() >= number, "line number");
        number = stream.LineNumber();
        if (expected.atEnd || endOfPPD) {
            require(endOfPPD ? gEndOfPPD : stream.EndOfFile() || !isWholeFile, "end");
            break;
        }
    }
}

void checkTokens(std::string_view content, const char* delimiters, bool trim) {
    oracle::Cursor cursor{content};
    PPDStream stream(content);
    char token[kLineCapacity];
    while (!stream.Remaining().empty()) {
        const std::string expected = oracle::token(cursor, delimiters, trim);
        const bool result = PPDX::NextToken(stream, token, delimiters, trim);
        require(result == !expected.empty(), "token result");
        require(expected == std::string_view(token, expected.size()) && token[expected.size()] == '\0',
                "token");
        require(stream.Remaining() == content.substr(cursor.at), "token position");
        require(stream.EndOfFile() == cursor.atEnd, "token status");
    }
}

void checkValues(std::string_view content, Reader& reader, std::size_t capacity) {
    const std::vector<std::string> lines = oracle::linesToHandle(content);
    const std::unique_ptr<char[]> out(new char[capacity]); // exact size, so that the sanitizer sees overruns
    std::string_view line;
    char token[kLineCapacity];
    for (std::size_t at = 0; reader.ReadLine(line); ++at) {
        require(at < lines.size() && lines[at] == line, "line to handle");
        if (at % 3 == 1) {
            reader.PushBackLine();
            require(reader.ReadLine(line) && lines[at] == line, "line handed back");
        }
        PPDStream stream(line);
        PPDX::NextToken(stream, token, " \t:", true);
        PPDStream header(stream);
        if (at % 5 == 4 && reader.ParsePSKeywords(header, token)) {
            return; // the reader does not report the number of lines of the value
        }
        std::vector<std::string> rest(lines.begin() + static_cast<std::ptrdiff_t>(at), lines.end());
        rest[0] = std::string(stream.Remaining());
        std::size_t last = 0;
        const bool isPostscript = at % 2 == 0;
        const std::string expected = oracle::value(rest, last, capacity, isPostscript);
        const long length = isPostscript
                                ? reader.GetPostscriptString(stream, out.get(), static_cast<long>(capacity))
                                : reader.GetQuotedString(stream, out.get(), static_cast<long>(capacity));
        require(length == (expected.empty() ? 0 : static_cast<long>(expected.size()) + 1), "value length");
        require(expected.empty() || expected == out.get(), "value");
        at += last;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const bool isSilent = (setLogSink(std::make_shared<Silence>()), true);
    static const char* const delimiters[] = {" \t:", "/:", ":", ";()", "|:\"", ""};
    if (!isSilent || size < 4 || size > 65536) {
        return 0;
    }
    const std::string_view content(reinterpret_cast<const char*>(data) + 3, size - 3);
    const long pieceCapacity = 1 + data[0];

    PPDStream whole(content);
    checkLines(content, whole, true);
    checkTokens(content, delimiters[data[1] % 6], data[1] >= 128);
    const MemoryFile file(content);
    PPDFile byPieces(file.Reference());
    PPDFileStream pieces(&byPieces, true, pieceCapacity);
    checkLines(content, pieces, true);
    PPDFile again(file.Reference());
    Reader reader;
    require(reader.StartReading(std::make_unique<PPDFileStream>(&again, true, pieceCapacity)), "start");
    checkValues(content, reader, 1 + data[2]);
    return 0;
}
