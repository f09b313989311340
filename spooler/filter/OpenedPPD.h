// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cups/ppd.h>

#include <memory>

namespace torka::filter {

struct ClosePPD {
    void operator()(ppd_file_t* ppd) const {
// The library marks its PPD calls as deprecated and has no other calls for a description.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        ppdClose(ppd);
#pragma GCC diagnostic pop
    }
};
// A description that libcups has read; null without one.
using OpenedPPD = std::unique_ptr<ppd_file_t, ClosePPD>;

} // namespace torka::filter
