// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/CFileHdlr.h"

#include "bidi/records/RecordText.h"
#include "bidi/records/RecordWriter.h"
#include "bidi/text/NumberText.h"
#include "bidi/text/StandardStreams.h"
#include "platform/System.h"

namespace torka {

CFileHdlr::CFileHdlr(std::string filePath)
    : path(std::move(filePath)) {
    if (!path.empty()) {
        file.reset(std::fopen(path.c_str(), "wbe"));
    }
}

CFileHdlr::CFileHdlr(std::string filePath, std::string_view /*mode*/)
    : path(std::move(filePath)) {}

CFileHdlr::~CFileHdlr() = default;

int CFileHdlr::AddString(std::string_view text) {
    buffer += text;
    return static_cast<int>(text.size());
}

int CFileHdlr::AddInt(int value) { return AddString(std::to_string(value)); }

int CFileHdlr::AddFloat(float value) { return AddString(streamText(value)); }

int CFileHdlr::Commit() {
    if (!file || buffer.empty()) {
        return -1;
    }
    const std::size_t written = std::fwrite(buffer.data(), 1, buffer.size(), file.get());
    const bool arrived = std::fflush(file.get()) == 0;
    buffer.clear();
    return arrived ? static_cast<int>(written) : 0;
}

int CFileHdlr::Discard() {
    if (buffer.empty()) {
        return -1;
    }
    const int length = static_cast<int>(buffer.size());
    buffer.clear();
    return length;
}

RecordBlock CFileHdlr::fileReadData(const std::string& path, std::string_view recordName, std::size_t* size) {
    if (size) {
        *size = 0;
    }
    if (recordName.empty() || path.empty()) {
        return nullptr;
    }
    std::string content;
    if (system().ReadFile(path, maximumDataFile, content)) {
        standardStreams().Output("Failed to open the file.\n");
        return nullptr;
    }
    return stringReadData(content, recordName, size);
}

RecordBlock CFileHdlr::stringReadData(std::string_view text, std::string_view recordName, std::size_t* size) {
    const ChunkName chunk(recordName);
    std::size_t payloadSize = 0;
    RecordBlock payload;
    if (chunk.IsUsable()) {
        payload = readRecordAt(text, findFrom(text, chunk.Text(), 0), chunk, payloadSize);
    }
    if (size) {
        *size = payloadSize;
    }
    return payload;
}

bool CFileHdlr::fileWriteData(std::string_view recordName, const void* data, std::size_t size,
                              std::string& out) {
    PieceGatherer lines({}, {}, [&out](std::string_view block) {
        out += block;
        standardStreams().Error(block);
    });
    std::string line;
    const bool taken =
        encodeRecord(recordName, data, size, [&](std::string_view name, std::string_view text) {
            line.assign(name).append(": ").append(text).append("\n");
            lines.Add(line);
        });
    if (taken) {
        lines.Flush();
    }
    return taken;
}

} // namespace torka
