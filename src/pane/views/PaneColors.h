// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPalette>

class QWidget;

namespace torka {

// The application's colours with a contrast of at least 4.5:1 for quiet texts and 3:1 for disabled ones,
// where the text's own is 12:1. The pane's root and every window of the pane take them: a window inherits no
// palette.
QPalette readableColors();

// Gives the control the palette object that all controls of the same colours share, in every pane of the
// process. The style keeps its drawings of a control under the identity of the palette, so that equal
// controls share them. Qt gives an inheriting child of PaneRoot an identity of its own, and keeps the names
// of drawings for ever.
// REQUIRES: the control stands in its parent, whose colours it takes now and whenever they change.
void shareColors(QWidget& control);

// The same for all buttons, popups, numbers and sliders below a place that have no palette of their own.
void shareColorsBelow(QWidget& place);

// A colour mixed with a share (0 to 1) of another that lies over it.
QColor blend(const QColor& under, const QColor& over, double share);

} // namespace torka
