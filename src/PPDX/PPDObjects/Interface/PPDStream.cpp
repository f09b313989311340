// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDStream.h"

#include "PPDX/Utilities/ModelState.h"
#include "platform/Log.h"

#include <algorithm>
#include <cstring>

namespace torka {

namespace {

constexpr std::size_t lineLimit = kLineCapacity - 1;
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

void PPDStream::Setup(const char* bytes, long length) {
    const bool isUsable = bytes != nullptr && length > 0;
    start = cursor = isUsable ? bytes : nullptr;
    end = isUsable ? bytes + length : nullptr;
    status = isUsable ? kStreamGood : kStreamBad;
}

bool PPDStream::GetChar(char& character) {
    const bool hasMore = cursor != end;
    character = hasMore ? *cursor++ : endByte;
    status = hasMore ? kStreamGood : kStreamEndOfFile;
    return hasMore;
}

int PPDStream::PeekChar() const { return cursor != end ? static_cast<signed char>(*cursor) : -1; }

void PPDStream::SkipWhiteSpace() {
    while (cursor != end && (*cursor == ' ' || *cursor == '\t')) {
        ++cursor;
    }
}

void PPDStream::Skip(std::size_t count) { cursor += std::min(count, Remaining().size()); }

bool PPDStream::GetLine(char* line) {
    if (gEndOfPPD) {
        myNSLogC("FIT208051");
        line[0] = '\0';
        lineLength = 0;
        return false;
    }
    return ReadLineInto(line, 0);
}

bool PPDStream::ReadLineInto(char* line, std::size_t used) {
    const std::size_t wanted = lineLimit - used;
    const std::size_t available = std::min(wanted, Remaining().size());
    const char* stop = cursor;
    if (cursor != end) {
        stop = findByte(cursor, cursor + available, '\n');
        stop = mayHoldReturns ? findByte(cursor, stop, '\r') : stop;
        stop = mayHoldEndBytes ? findByte(cursor, stop, endByte) : stop;
    }
    const auto taken = static_cast<std::size_t>(stop - cursor);
    if (used == 0) {
        lineNumber = nextLineNumber;
    }
    std::copy_n(cursor, taken, line + used);
    cursor = stop;
    lineLength = used + taken;
    line[lineLength] = '\0';
    lineWasCut = false;
    if (taken == available) {
        afterReturn = afterReturn && lineLength == 0;
        if (lineLength == lineLimit) {
            status = kStreamGood;
            lineWasCut = cursor == end || (*cursor != '\r' && *cursor != '\n');
        } else {
            status = kStreamEndOfFile;
        }
        return false;
    }
    const char terminator = *cursor++;
    status = kStreamGood;
    if (terminator == endByte) {
        if (loggedBytes++ < maximumLoggedBytes) {
            myNSLogC("PPDStream::GetLine theChar == EOF, i %d \n", static_cast<int>(lineLength));
        }
        afterReturn = false;
        return false;
    }
    EndLine(terminator, lineLength == 0);
    if (std::string_view(line, lineLength).starts_with(endMark)) {
        myNSLogC("%s", line);
        gEndOfPPD = true;
        line[0] = '\0';
        lineLength = 0;
    }
    return true;
}

void PPDStream::EndLine(char terminator, bool isEmpty) {
    const bool endsPair = terminator == '\n' && afterReturn && isEmpty;
    nextLineNumber += endsPair ? 0 : 1;
    afterReturn = terminator == '\r';
}

std::string_view PPDStream::TakeToken(const DelimiterSet& delimiters, bool trim) {
    if (trim) {
        SkipWhiteSpace();
    }
    const char* const first = cursor;
    const char* const limit = cursor + std::min(lineLimit, Remaining().size());
    status = kStreamGood;
    cursor = delimiters.FindEnd({first, static_cast<std::size_t>(limit - first)});
    std::string_view token(first, static_cast<std::size_t>(cursor - first));
    if (cursor != limit) {
        const char terminator = *cursor++;
        const bool isPair = terminator == '\r' && !delimiters.Contains('\r') && PeekChar() == '\n';
        cursor += isPair ? 1 : 0;
    } else if (token.size() < lineLimit) {
        status = kStreamEndOfFile;
    }
    while (trim && !token.empty() && (token.back() == ' ' || token.back() == '\t')) {
        token.remove_suffix(1);
    }
    return token;
}

} // namespace torka
