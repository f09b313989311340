#pragma once

#include "platform/CoreFoundation.h"

#include <string>

// Property lists in their XML form.

namespace torka::platform {

// The list as an XML property list (UTF-8). Null when it holds a value that a property list cannot hold, such
// as a URL.
CFDataRef CFPropertyListCreateXMLData(const CFPropertyListRef& list);

// Reads an XML property list; dates and UIDs are not used by the system and make the list unreadable. Nesting
// deeper than 64 levels, an integer beyond 64 bits and text that is not UTF-8 are refused. Null on failure,
// `error` then says why.
CFPropertyListRef CFPropertyListCreateFromXMLData(const CFDataRef& data, std::string* error = nullptr);

} // namespace torka::platform
