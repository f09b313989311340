#pragma once

#include "bidi/records/RecordEncoding.h"

#include <string>
#include <string_view>
#include <vector>

typedef struct ppd_file_s ppd_file_t; // of the printing system

namespace torka {

// Records that live in a queue's PPD, one main keyword a chunk.
//
// Writing goes through the spooler: lines that begin with "PPD:" on the standard error stream of a filter,
// each below 1,023 characters, become keywords of the PPD when the job ends. Values are written without
// quotes (a 36-character name leaves no room for them: the PPD format allows 255 characters a line); the end
// mark is the empty quoted value.

// False, with nothing written, when the record is refused (see encodeRecord).
bool ppdxWriteData(std::string_view recordName, const void* data, std::size_t size);
// As CFileHdlr::stringReadData. Keywords are found by the printing system, which ignores letter case.
RecordBlock ppdxReadData(ppd_file_t* ppd, std::string_view recordName, std::size_t* size);
// The names of the records in an open PPD in the order of the file, each once, "QV" included.
std::vector<std::string> ppdxRecordNames(ppd_file_t* ppd);

// One record of a queue's PPD. It is called "QV" and the message name.
class CPPDMsgHdlr {
public:
    CPPDMsgHdlr(std::string path, std::string_view messageName);

    // Send the record: -1 for an empty text, else the length of the record name.
    int Commit(std::wstring_view text) const;
    int Commit(std::string_view text) const;
    // Forgets what was read.
    void Discard();
    // Open the PPD and read the record from it; empty if it is absent or the PPD cannot be opened. The text
    // stays until the next call. A PPD that the print server is replacing is waited for, up to 2 seconds.
    const std::wstring& GetStringData();
    const std::string& GetCStringData();

private:
    RecordBlock Read(std::size_t& size) const;

    std::string ppdPath;
    std::string recordName;
    std::wstring wideData;
    std::string narrowData;
};

} // namespace torka
