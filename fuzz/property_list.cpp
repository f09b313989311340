// SPDX-License-Identifier: Apache-2.0
// Reads arbitrary bytes as a property list. A list that is read equals itself after it is written and read
// again.

#include "platform/PropertyList.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torka::platform;
    std::string error;
    const CFPropertyListRef list = CFPropertyListCreateFromXMLData(CFDataCreate(data, size), &error);
    if (!list) {
        if (error.empty()) {
            std::abort();
        }
        return 0;
    }
    const CFDataRef written = CFPropertyListCreateXMLData(list);
    if (!written || !CFEqual(list, CFPropertyListCreateFromXMLData(written))) {
        std::abort();
    }
    return 0;
}
