// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace torka::platform {

// Finds a function in a shared library. Loads the library at the first call; it stays loaded. `library` is
// its name for the loader, with the version of its interface. When the function or its library is missing,
// ends the program with a message and status 1: the package requires both, and the callers have no result
// that would say so. Any thread may call it.
void* onDemand(const char* library, const char* function);

} // namespace torka::platform
