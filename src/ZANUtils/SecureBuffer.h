// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/SecretMemory.h"

namespace torka {

using platform::wipe;
using platform::WipeGuard;
using platform::wipeValue;
using platform::WipingAllocator;

// Bytes of a key or a plain text. Growing wipes the old block.
//
// Shrinking does not wipe the bytes cut off. The block is wiped when it is freed.
using SecureBuffer = platform::SecretBytes;

} // namespace torka
