// SPDX-License-Identifier: Apache-2.0
#include "platform/ondemand/Library.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace torka::platform {

void* onDemand(const char* library, const char* function) {
    void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL); // counted; loaded once
    void* const found = handle == nullptr ? nullptr : dlsym(handle, function);
    if (found == nullptr) {
        std::fprintf(stderr, "cannot use %s: %s\n", library, dlerror());
        std::exit(EXIT_FAILURE);
    }
    return found;
}

} // namespace torka::platform
