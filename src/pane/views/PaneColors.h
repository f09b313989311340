// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPalette>

namespace torka {

// The application's colours with a contrast of at least 4.5:1 for quiet texts and 3:1 for disabled ones,
// where the text's own is 12:1. The pane's root and every window of the pane take them: a window inherits no
// palette.
QPalette readableColors();

// A colour mixed with a share (0 to 1) of another that lies over it.
QColor blend(const QColor& under, const QColor& over, double share);

} // namespace torka
