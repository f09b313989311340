// SPDX-License-Identifier: Apache-2.0
#include "spooler/SpliceOutput.h"

#include "spooler/DscComment.h"

namespace torka {

namespace {

constexpr std::size_t gatherLimit =
    std::size_t{64} * 1024; // bytes; about as many as one write to a pipe moves

} // namespace

void SpliceOutput::Pass(std::string_view bytes) {
    if (isMarked) {
        marked.append(bytes);
    } else {
        Write(bytes);
    }
}

void SpliceOutput::Insert(std::string_view bytes, std::string_view lineEnd) {
    if (bytes.empty()) {
        return;
    }
    if (!isLineEnd(lastByte)) {
        Write(lineEnd);
        inserted += lineEnd.size();
    }
    Write(bytes);
    inserted += bytes.size();
}

void SpliceOutput::OpenMark() { isMarked = true; }

bool SpliceOutput::HasCodeSinceMark() const {
    std::string_view rest = marked;
    while (!rest.empty()) {
        const std::size_t first = rest.find_first_not_of(" \t\r\n");
        if (first == std::string_view::npos) {
            break;
        }
        if (rest[first] != '%') {
            return true;
        }
        const std::size_t end = rest.find_first_of("\r\n", first);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end);
    }
    return false;
}

void SpliceOutput::CloseMark(std::string_view insertion, std::string_view lineEnd) {
    if (!isMarked) {
        return;
    }
    isMarked = false;
    Insert(insertion, lineEnd);
    Write(marked);
    marked = std::string();
}

void SpliceOutput::Flush() {
    Send(pending);
    pending.clear();
}

void SpliceOutput::Write(std::string_view bytes) {
    if (bytes.empty()) {
        return;
    }
    lastByte = bytes.back();
    if (pending.size() + bytes.size() > gatherLimit) {
        Flush();
        if (bytes.size() >= gatherLimit / 2) {
            Send(bytes);
            return;
        }
    }
    pending.append(bytes);
}

void SpliceOutput::Send(std::string_view bytes) {
    if (error != 0 || bytes.empty()) {
        return;
    }
    error = sink.Write(bytes);
    if (error == 0) {
        written += bytes.size();
    }
}

} // namespace torka
