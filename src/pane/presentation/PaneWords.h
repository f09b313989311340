#pragma once

#include <array>

// The texts of the pane. A person's language has them in the bundle's table "Pane"; the English ones serve
// where that table lacks a key. PaneWords.inc is the one place where a word stands.

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
