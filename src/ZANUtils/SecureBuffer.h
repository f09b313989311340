#pragma once

#include "platform/SecretMemory.h"

namespace torka {

using platform::wipe;
using platform::WipeGuard;
using platform::wipeValue;
using platform::WipingAllocator;

// Bytes of a key or a plain text; growing wipes the block that is left behind.
//
// Shrinking does not wipe the bytes cut off until the block itself goes; they stay inside this buffer's
// memory.
using SecureBuffer = platform::SecretBytes;

} // namespace torka
