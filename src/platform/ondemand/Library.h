// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace torka::platform {

// A function of a shared library, which is loaded at the first call and stays loaded. library: its name for
// the loader, with the version of its interface. Ends the program with a message and status 1 when the
// library or the function is missing: our package requires both, and the callers have no result that would
// say so. Any thread may call it.
void* onDemand(const char* library, const char* function);

} // namespace torka::platform
