// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/OpenedPPD.h"

#include "spooler/filter/ServerMessages.h"

// The library marks its PPD calls as deprecated and has no other calls for a description.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::filter {

void ClosePPD::operator()(ppd_file_t* ppd) const { ppdClose(ppd); }

OpenedPPD openDescription(const std::string& path) {
    OpenedPPD ppd(path.empty() ? nullptr : ppdOpenFile(path.c_str()));
    if (!ppd && !path.empty()) {
        int line = 0;
        const ppd_status_t reason = ppdLastError(&line);
        tellDebug("the queue's description " + path + " cannot be read: " + ppdErrorString(reason) +
                  (line > 0 ? ", line " + std::to_string(line) : ""));
    }
    return ppd;
}

} // namespace torka::filter
