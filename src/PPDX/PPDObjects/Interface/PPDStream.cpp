// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDStream.h"

#include "PPDX/Utilities/ModelState.h"
#include "platform/Log.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace torka {

namespace {

constexpr std::string_view endMark = "*% End of PPD file";
constexpr char endByte = '\xFF';
// Keeps a binary file from flooding the log with one line for each byte 0xFF.
constexpr std::uint32_t maximumLoggedBytes = 64;

// Returns the first such byte, or the end.
const char* findByte(const char* from, const char* to, char byte) {
    const void* const found =
        std::memchr(from, static_cast<unsigned char>(byte), static_cast<std::size_t>(to - from));
    return found != nullptr ? static_cast<const char*>(found) : to;
}

} // namespace

bool PPDStream::GetChar(char& character) {
    const bool hasMore = cursor != end;
    character = hasMore ? *cursor++ : endByte;
    status = hasMore ? kStreamGood : kStreamEndOfFile;
    return hasMore;
}

bool PPDStream::GetLine(char* line) {
    std::string_view text;
    const bool isEnded = TakeLine(text);
    *std::copy(text.begin(), text.end(), line) = '\0';
    return isEnded;
}

// Takes the bytes before the line's end, at most `limit`.
inline std::string_view PPDStream::TakePart(std::size_t limit) {
    if (cursor == end) {
        return {};
    }
    const char* const first = cursor;
    cursor = findByte(first, first + std::min(limit, Remaining().size()), '\n');
    if (mayHoldReturns || mayHoldEndBytes) {
        cursor = findByte(first, cursor, '\r');
        cursor = findByte(first, cursor, endByte);
    }
    return {first, static_cast<std::size_t>(cursor - first)};
}

// Takes the end of a line of which TakePart has taken the rest. Returns what TakeLine returns.
inline bool PPDStream::TakeEnd(std::string_view& line) {
    lineWasCut = false;
    if (cursor == end || line.size() == lineLimit) {
        EndUnterminated(line);
        return false;
    }
    const char terminator = *cursor++;
    status = kStreamGood;
    if (terminator == endByte) {
        if (loggedBytes++ < maximumLoggedBytes) {
            myNSLogC("PPDStream::GetLine theChar == EOF, i %d \n", static_cast<int>(line.size()));
        }
        afterReturn = false;
        return false;
    }
    const bool endsPair = terminator == '\n' && afterReturn && line.empty();
    nextLineNumber += endsPair ? 0 : 1;
    afterReturn = terminator == '\r';
    if (line.starts_with(endMark)) {
        EndDescription(line);
    }
    return true;
}

void PPDStream::EndDescription(std::string_view& line) {
    myNSLogC("%s", std::string(line).c_str());
    gEndOfPPD = true;
    line = {};
}

// Ends a line at the limit or at the end of the data.
void PPDStream::EndUnterminated(std::string_view line) {
    const bool isFull = line.size() == lineLimit;
    afterReturn = afterReturn && line.empty();
    status = isFull ? kStreamGood : kStreamEndOfFile;
    lineWasCut = isFull && (cursor == end || (*cursor != '\r' && *cursor != '\n'));
}

bool PPDStream::TakeLine(std::string_view& line) {
    if (gEndOfPPD) {
        myNSLogC("FIT208051");
        line = {};
        return false;
    }
    lineNumber = nextLineNumber;
    line = TakePart(lineLimit);
    return TakeEnd(line);
}

bool PPDStream::ContinueLine(std::string_view& line, char* joined) {
    const std::string_view part = TakePart(lineLimit - line.size());
    part.copy(joined + line.size(), part.size());
    line = {joined, line.size() + part.size()};
    return TakeEnd(line);
}

std::string_view PPDStream::TakeToken(const DelimiterSet& delimiters, bool trim) {
    if (trim) {
        SkipWhiteSpace();
    }
    const char* const first = cursor;
    const std::size_t limit = std::min(lineLimit, Remaining().size());
    const char* last = delimiters.FindEnd({first, limit});
    cursor = last;
    status = kStreamGood;
    if (const auto length = static_cast<std::size_t>(last - first); length != limit) {
        const char terminator = *cursor++;
        const bool isPair = terminator == '\r' && !delimiters.Contains('\r') && PeekChar() == '\n';
        cursor += isPair ? 1 : 0;
    } else if (length < lineLimit) {
        status = kStreamEndOfFile;
    }
    while (trim && last != first && (last[-1] == ' ' || last[-1] == '\t')) {
        --last;
    }
    return {first, static_cast<std::size_t>(last - first)};
}

} // namespace torka
