// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/DelimiterSet.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

// A cursor over bytes that another object owns. Reads by character, line or token.
//
// Lines and tokens have at most 255 characters: with a terminator they fit into buffers of kLineCapacity
// bytes. Not thread-safe. A copy is an independent cursor over the same bytes.

namespace torka {

inline constexpr std::size_t kLineCapacity = 256;

enum PPDStreamStatus : std::int32_t { kStreamGood = 0, kStreamBad = 1, kStreamEndOfFile = 2 };

class PPDStream {
public:
    PPDStream() = default; // bad until it is set up
    explicit PPDStream(std::string_view text) { Setup(text.data(), static_cast<long>(text.size())); }
    PPDStream(const PPDStream&) = default;
    PPDStream& operator=(const PPDStream&) = default;
    virtual ~PPDStream() = default;

    // The status becomes bad (1) without bytes or with a length that is not positive.
    void Setup(const char* bytes, long length) {
        const bool isUsable = bytes != nullptr && length > 0;
        start = cursor = isUsable ? bytes : nullptr;
        end = isUsable ? bytes + length : nullptr;
        status = isUsable ? kStreamGood : kStreamBad;
    }

    // Returns the next byte as a signed value, -1 at the end.
    int PeekChar() const { return cursor != end ? static_cast<signed char>(*cursor) : -1; }
    // Skips blanks and tabs.
    void SkipWhiteSpace() {
        while (cursor != end && (*cursor == ' ' || *cursor == '\t')) {
            ++cursor;
        }
    }

    // Takes the next line without its end. `line` gets a view of the stream's bytes, valid until the next
    // line is taken. Returns true only when CR or LF ended the line. Each of the two ends a line, so CR LF
    // gives an additional empty line. Returns false
    // - after 255 characters; the rest of the line is then the next line,
    // - at a byte 0xFF, which is skipped; the next call continues behind it,
    // - at the end of the data, with status 2,
    // - with an empty line, without reading, once gEndOfPPD (ModelState.h) is set.
    //
    // The line "*% End of PPD file" sets gEndOfPPD and is returned as an empty line.
    virtual bool TakeLine(std::string_view& line);

    // Reads a token. It ends at one of `delimiters`, at a line end (CR, LF or CR LF), at the end of the data,
    // or after 255 characters. Skips the delimiter or line end. With `trim`, removes blanks and tabs at both
    // ends. The token is a view of the stream's bytes and may hold NUL bytes.
    std::string_view TakeToken(const DelimiterSet& delimiters, bool trim);

    // Returns the bytes not read yet.
    std::string_view Remaining() const { return {cursor, static_cast<std::size_t>(end - cursor)}; }
    // Skips `count` bytes, at most all.
    void Skip(std::size_t count) { cursor += std::min(count, Remaining().size()); }

    bool EndOfFile() const { return status == kStreamEndOfFile; }
    bool Good() const { return status == kStreamGood; }
    bool Bad() const { return status == kStreamBad; }

    // Returns the number, from 1, of the physical line on which the last line read began; CR LF ends one
    // line.
    std::uint32_t LineNumber() const { return lineNumber; }

    // Given interface; no caller here
    PPDStream(const char* bytes, long length) { Setup(bytes, length); }
    // Does the same as TakeLine, and copies the line with a terminator; `line` holds kLineCapacity bytes.
    bool GetLine(char* line);
    // Returns false at the end, with the character -1 and status 2.
    bool GetChar(char& character);
    PPDStreamStatus Status() const { return status; }

    // For the tests; no caller here
    // Tells whether the last line was cut at 255 characters and continues in the next one.
    bool LineWasCut() const { return lineWasCut; }

protected:
    static constexpr std::size_t lineLimit = kLineCapacity - 1;

    // Continues a line whose beginning is in `joined`, a buffer of lineLimit bytes. Returns what TakeLine
    // returns.
    bool ContinueLine(std::string_view& line, char* joined);

    const char* start = nullptr;
    const char* end = nullptr; // exclusive
    const char* cursor = nullptr;
    PPDStreamStatus status = kStreamBad;

    std::uint32_t nextLineNumber = 1;
    std::uint32_t lineNumber = 0;
    std::uint32_t loggedBytes = 0; // lines logged for bytes 0xFF
    bool mayHoldReturns = true;    // false when the bytes hold no CR
    bool mayHoldEndBytes = true;   // false when they hold no 0xFF
    bool lineWasCut = false;
    bool afterReturn = false; // the last byte that TakeLine read was a CR

private:
    std::string_view TakePart(std::size_t limit);
    bool TakeEnd(std::string_view& line);
    void EndUnterminated(std::string_view line);
    static void EndDescription(std::string_view& line);
};

} // namespace torka
