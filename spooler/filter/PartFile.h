// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/filter/PrivateFolder.h"

#include <string>
#include <string_view>
#include <system_error>

namespace torka::filter {

// A file of the filter's folder that is not whole yet, open for reading and writing, of mode 0600.
//
// It has no name where the file system allows that (O_TMPFILE), so that nothing of it is left when its
// process is ended. Elsewhere it has a temporary name, which the destructor removes.
class PartFile {
public:
    static FileResult<PartFile> Create();
    PartFile(PartFile&&) = default;
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    PartFile& operator=(PartFile&&) = delete;
    ~PartFile();

    int Descriptor() const { return file.Descriptor(); }
    // Writes the whole of another file behind what was written.
    std::error_code Append(int source) const;
    // Gives the file its name, which another file then loses. REQUIRES: no other process does the same.
    std::error_code TakeName(std::string_view name);

private:
    PartFile(OpenFile opened, std::string temporaryPath);
    static FileResult<PartFile> CreateNamed();

    OpenFile file;
    std::string temporary; // "" when it has none
};

} // namespace torka::filter
