#pragma once

#include "PPDX/PPDObjects/Interface/DelimiterSet.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// A cursor over bytes that belong to someone else, read by character, line or token.
//
// Lines and tokens go into buffers of kLineCapacity bytes: 255 characters and the terminator.
// Not thread-safe; copies are further cursors over the same bytes.

namespace torka {

inline constexpr std::size_t kLineCapacity = 256;

enum PPDStreamStatus : std::int32_t { kStreamGood = 0, kStreamBad = 1, kStreamEndOfFile = 2 };

class PPDStream {
public:
    PPDStream() = default; // bad until it is set up
    PPDStream(const char* bytes, long length) { Setup(bytes, length); }
    explicit PPDStream(std::string_view text) { Setup(text.data(), static_cast<long>(text.size())); }
    PPDStream(const PPDStream&) = default;
    PPDStream& operator=(const PPDStream&) = default;
    virtual ~PPDStream() = default;

    // Bad (status 1) without bytes or with no positive length.
    void Setup(const char* bytes, long length);

    // False at the end, with the character -1 and status 2.
    bool GetChar(char& character);
    // The next byte as a signed value, -1 at the end.
    int PeekChar() const;
    // Blanks and tabs.
    void SkipWhiteSpace();

    // The next line without its end; `line` holds kLineCapacity bytes. True only when CR or LF ended it (each
    // of the two ends a line, so CR LF gives an empty line more). False
    // - after 255 characters, the rest of the line being the next one,
    // - at a byte 0xFF, which is read and not stored; the next call reads on behind it,
    // - at the end of the data, with status 2,
    // - with an empty line, nothing being read, once gEndOfPPD (ModelState.h) is set. The line "*% End of PPD
    // file"
    //   sets it and comes back empty.
    virtual bool GetLine(char* line);

    // A token: characters up to one of `delimiters` (read and not stored), the end of the line (CR, LF or CR
    // LF, read and not stored), the end of the data, or 255 characters. With `trim`, without blanks and tabs
    // at both ends. Points into the stream's bytes; may hold NUL bytes.
    std::string_view TakeToken(const DelimiterSet& delimiters, bool trim);

    // What has not been read yet.
    std::string_view Remaining() const { return {cursor, static_cast<std::size_t>(end - cursor)}; }
    // Passes over `count` bytes, at most all.
    void Skip(std::size_t count);

    PPDStreamStatus Status() const { return status; }
    bool EndOfFile() const { return status == kStreamEndOfFile; }
    bool Good() const { return status == kStreamGood; }
    bool Bad() const { return status == kStreamBad; }

    // The number, from 1, of the physical line on which the line read last began; CR LF ends one line.
    std::uint32_t LineNumber() const { return lineNumber; }
    // Whether the line read last was cut at 255 characters, the next one being its continuation.
    bool LineWasCut() const { return lineWasCut; }

protected:
    // Reads a line into line[used...]; the limit and the end mark count for the whole of `line`.
    bool ReadLineInto(char* line, std::size_t used);
    void EndLine(char terminator, bool isEmpty);

    const char* start = nullptr;
    const char* end = nullptr; // exclusive
    const char* cursor = nullptr;
    PPDStreamStatus status = kStreamBad;

    std::size_t lineLength = 0; // bytes of the line read last
    std::uint32_t nextLineNumber = 1;
    std::uint32_t lineNumber = 0;
    std::uint32_t loggedBytes = 0; // lines logged for bytes 0xFF
    bool mayHoldReturns = true;    // false once the bytes are known to hold no CR
    bool mayHoldEndBytes = true;   // false once they are known to hold no 0xFF
    bool lineWasCut = false;
    bool afterReturn = false; // the byte read last by GetLine was a CR
};

} // namespace torka
