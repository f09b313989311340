// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/PPDRecords.h"

#include <cups/ppd.h>

// The library marks its PPD calls as deprecated; there are no others for a PPD's attributes.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka {

PPDRecords::PPDRecords(const std::string& path)
    : ppd(ppdOpenFile(path.c_str())) {}

void PPDRecords::Close::operator()(ppd_file_t* file) const { ppdClose(file); }

} // namespace torka
