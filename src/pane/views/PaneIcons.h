// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>

namespace torka {

// Small signs in the text colour of the palette, for dark and high-contrast palettes and for every size.
// Arrows follow the direction of the layout.
enum class PaneSign {
    warning,
    information,
    reset,
    undo,
    redo,
    search,
    open,
    closed,
    dot,
    ring,
    cross,
    sheet
};

QIcon paneIcon(PaneSign sign);

} // namespace torka
