// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/FieldTexts.h"
#include "pane/views/PaneContext.h"

class QWidget;

namespace torka {

// Opens a small window below `place` with the reasons why choices of the control are forbidden. Where changes
// of other settings permit a choice, a button makes them together with the choice as one step. Escape, and a
// click elsewhere, close the window.
void showForbiddenChoices(PaneContext& context, const ForbiddenChoices& forbidden, const PPDXControl& control,
                          QWidget& place);

} // namespace torka
