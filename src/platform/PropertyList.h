// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <string>

// Property lists in their XML form.

namespace torka::platform {

// Writes the list as an XML property list (UTF-8). Null when it holds a value that a property list cannot
// hold, such as a URL.
CFDataRef CFPropertyListCreateXMLData(const CFPropertyListRef& list);

// Reads an XML property list. Refuses dates and UIDs, which the system does not use, nesting deeper than 64
// levels, integers beyond 64 bits, and invalid UTF-8. Null, with the reason in `error`, on failure.
CFPropertyListRef CFPropertyListCreateFromXMLData(const CFDataRef& data, std::string* error = nullptr);

} // namespace torka::platform
