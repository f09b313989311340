// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/records/RecordEncoding.h"

#include <string>
#include <string_view>
#include <vector>

typedef struct ppd_file_s ppd_file_t; // from libcups

namespace torka {

// Records in a queue's PPD. Each chunk is one main keyword.
//
// The spooler writes them: a filter sends lines of less than 1,023 characters that begin with "PPD:" to its
// standard error stream, and the spooler makes keywords of them when the job ends. Values have no quotes,
// because the PPD format allows 255 characters a line and a 36-character name leaves no room for them. The
// end mark is the empty quoted value.

// As CFileHdlr::stringReadData. libcups looks up the keywords; it ignores letter case.
RecordBlock ppdxReadData(ppd_file_t* ppd, std::string_view recordName, std::size_t* size);
// The names of the records in an open PPD in the order of the file, each once, "QV" included.
std::vector<std::string> ppdxRecordNames(ppd_file_t* ppd);

// One record of a queue's PPD. The record's name is "QV" followed by the message name.
class CPPDMsgHdlr {
public:
    CPPDMsgHdlr(std::string path, std::string_view messageName);

    // Open the PPD and read the record. Empty when the record is absent or the PPD cannot be opened. The
    // reference stays valid until the next call. Wait up to 2 seconds for a PPD that the print server is
    // replacing.
    const std::wstring& GetStringData();
    const std::string& GetCStringData();

    // Given interface; no caller here
    // Send the record. Return -1 for an empty text, else the length of the record name.
    int Commit(std::wstring_view text) const;
    int Commit(std::string_view text) const;
    // Forgets the text that was read.
    void Discard();

private:
    RecordBlock Read(std::size_t& size) const;

    std::string ppdPath;
    std::string recordName;
    std::wstring wideData;
    std::string narrowData;
};

// Given interface; no caller here
// False, with nothing written, when encodeRecord refuses the record.
bool ppdxWriteData(std::string_view recordName, const void* data, std::size_t size);

} // namespace torka
