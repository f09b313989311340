// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/QueueInstance.h"

#include <cups/cups.h>

#include <algorithm>

namespace torka::platform {

namespace {

JobOptions optionsOf(const std::string& queue, const char* instance) {
    JobOptions options;
    if (cups_dest_t* dest = cupsGetNamedDest(CUPS_HTTP_DEFAULT, queue.c_str(), instance)) {
        for (int i = 0; i < dest->num_options; ++i) {
            options.emplace_back(dest->options[i].name, dest->options[i].value);
        }
        cupsFreeDests(1, dest);
    }
    return options;
}

} // namespace

JobOptions instanceOptions(const std::string& queue, const std::string& instance) {
    const JobOptions common = optionsOf(queue, nullptr);
    JobOptions own = optionsOf(queue, instance.c_str());
    std::erase_if(own, [&common](const auto& option) {
        // What the server tells of the queue is no option of a job; its counters change between two calls.
        const bool isOfQueue = option.first.starts_with("printer-") && option.first != "printer-resolution";
        return isOfQueue || std::ranges::find(common, option) != common.end();
    });
    return own;
}

} // namespace torka::platform
