// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/records/CPPDMsgHdlr.h"

#include <memory>

namespace torka {

// The records of a PPD file, for who does not know the printing system's PPDs.
class PPDRecords {
public:
    // Empty when the printing system cannot open the file.
    explicit PPDRecords(const std::string& path);
    bool IsOpen() const { return ppd != nullptr; }
    // As ppdxRecordNames.
    std::vector<std::string> Names() const { return ppdxRecordNames(ppd.get()); }
    // As ppdxReadData.
    RecordBlock Read(std::string_view name, std::size_t* size) const {
        return ppdxReadData(ppd.get(), name, size);
    }

private:
    struct Close {
        void operator()(ppd_file_t* file) const;
    };
    std::unique_ptr<ppd_file_t, Close> ppd;
};

} // namespace torka
