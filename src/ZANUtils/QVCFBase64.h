#pragma once

#include "platform/CoreFoundation.h"

namespace torka {

// Base64 of the bytes without line breaks; the empty string for no bytes or null.
CFStringRef QVCFBase64CreateEncodedString(const CFDataRef& data);

// The bytes of a Base64 text; never null. A text of fewer than four characters, or null, gives no bytes. One
// or two
// "=" at the end are dropped and the rest gives (length * 3) / 4 bytes. Characters are not checked: one
// outside the alphabet counts as six zero bits.
CFDataRef QVCFBase64CreateDecodedData(const CFStringRef& text);

} // namespace torka
