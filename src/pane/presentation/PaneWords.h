// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>

// The words of the pane. The table "Pane" of the bundle has them in the person's language; the English text
// is the default for a missing key. PaneWords.inc is their only table.

namespace torka {

struct PaneWord {
    const char* key;
    const char* english; // UTF-8
};

namespace words {

#define PANE_WORD(name, key, english) inline constexpr PaneWord name{key, english};
#include "pane/presentation/PaneWords.inc"
#undef PANE_WORD

} // namespace words

inline constexpr std::array paneWords{
#define PANE_WORD(name, key, english) words::name,
#include "pane/presentation/PaneWords.inc"
#undef PANE_WORD
};

} // namespace torka
