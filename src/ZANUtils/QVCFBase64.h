// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

namespace torka {

// Encodes the bytes as Base64 without line breaks. Returns an empty string for no bytes or null.
CFStringRef QVCFBase64CreateEncodedString(const CFDataRef& data);

// Given interface; no caller here
// Decodes a Base64 text; never returns null. Null, or a text of fewer than four characters, gives no bytes.
// Removes one or two "=" at the end; the rest gives (length * 3) / 4 bytes. Does not check characters: one
// outside the alphabet counts as six zero bits.
CFDataRef QVCFBase64CreateDecodedData(const CFStringRef& text);

} // namespace torka
