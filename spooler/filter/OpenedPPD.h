// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cups/ppd.h>

#include <memory>
#include <string>

namespace torka::filter {

struct ClosePPD {
    void operator()(ppd_file_t* ppd) const;
};
// A description that libcups has read; null without one.
using OpenedPPD = std::unique_ptr<ppd_file_t, ClosePPD>;

// Reads the PPD at the path. Returns null for an empty path, and, with a line in the server's log, when
// libcups cannot read the file.
OpenedPPD openDescription(const std::string& path);

} // namespace torka::filter
