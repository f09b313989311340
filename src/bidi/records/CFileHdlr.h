// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/records/RecordEncoding.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace torka {

// One two-way data file: a buffer for text to write, and functions that read and write its records.
//
// Owns the open file. Uses paths as given, without the system root.
class CFileHdlr {
public:
    CFileHdlr(const CFileHdlr&) = delete;
    CFileHdlr& operator=(const CFileHdlr&) = delete;
    ~CFileHdlr();

    // Reads a record. The block has a NUL behind the payload. `size`, unless null, receives the payload's
    // size. Null and size 0 when the name or the text is empty, no line holds the record's first
    // chunk, or memory runs out. A broken record ends at its first fault.
    //
    // The line of a chunk is the first line that holds the chunk's name, behind the line of the chunk before.
    static RecordBlock stringReadData(std::string_view text, std::string_view recordName, std::size_t* size);

    // Given interface; no caller here
    // Opens the file for writing when the path is not empty, and empties it.
    explicit CFileHdlr(std::string filePath);
    // For reading. Opens nothing.
    CFileHdlr(std::string filePath, std::string_view mode);
    // Append to the buffer and return the number of characters added.
    int AddString(std::string_view text);
    int AddInt(int value);
    int AddFloat(float value);
    // Writes the buffer and empties it. Returns the number of bytes written; -1 without a file or with an
    // empty buffer.
    int Commit();
    // Empties the buffer. Returns the number of characters it held; -1 for none.
    int Discard();
    // As stringReadData, of a file. Null also when the file cannot be opened.
    static RecordBlock fileReadData(const std::string& path, std::string_view recordName, std::size_t* size);
    // Appends a record's lines to `out`, and writes them to the standard error stream in blocks of less than
    // 1,024 bytes. False, without effect, when encodeRecord refuses the record.
    static bool fileWriteData(std::string_view recordName, const void* data, std::size_t size,
                              std::string& out);

private:
    struct CloseFile {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    std::unique_ptr<std::FILE, CloseFile> file;
    std::string path;
    std::string buffer;
};

// In bytes. Readers refuse a longer data file.
inline constexpr std::size_t maximumDataFile = 256U * 1024 * 1024;

} // namespace torka
