#pragma once

#include <QIcon>

namespace torka {

// Small signs drawn in the palette's text colour, so that they suit dark and high-contrast palettes and every
// size. Those that point follow the layout's direction.
enum class PaneSign { warning, information, reset, undo, redo, search, open, closed, dot, ring, cross };

QIcon paneIcon(PaneSign sign);

} // namespace torka
