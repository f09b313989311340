#pragma once

#include "bidi/records/RecordEncoding.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace torka {

// One two-way data file: a buffer of text to be written to it, and the records in it.
//
// Owns the open file. Paths are taken as they are, below no system root.
class CFileHdlr {
public:
    // Opens the file for writing when the path is not empty. What it held is gone then.
    explicit CFileHdlr(std::string filePath);
    // For reading: opens nothing.
    CFileHdlr(std::string filePath, std::string_view mode);
    CFileHdlr(const CFileHdlr&) = delete;
    CFileHdlr& operator=(const CFileHdlr&) = delete;
    ~CFileHdlr();

    // These tell how many characters they added to the buffer.
    int AddString(std::string_view text);
    int AddInt(int value);
    int AddFloat(float value);
    // Writes the buffer and empties it: how many bytes reached the file; -1 without a file or with nothing to
    // write.
    int Commit();
    // Empties the buffer: how many characters it held, -1 for none.
    int Discard();

    // Read a record. The block has a NUL behind the payload, whose size is in `size`, when that is given.
    // None, and size 0, when the name or the source is missing, the file cannot be opened, no line holds the
    // record's first chunk, or memory runs out. A record that is broken ends where it is broken.
    //
    // A chunk stands in the first line that holds its name, looked for behind the line of the chunk before.
    static RecordBlock fileReadData(const std::string& path, std::string_view recordName, std::size_t* size);
    static RecordBlock stringReadData(std::string_view text, std::string_view recordName, std::size_t* size);
    // Appends a record's lines to `out`, and shows them on the standard error stream in blocks of less than
    // 1,024 bytes. False, with nothing done, when the record is refused (see encodeRecord).
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

// A data file longer than this is not read.
inline constexpr std::size_t maximumDataFile = 256U * 1024 * 1024;

} // namespace torka
