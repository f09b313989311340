// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QWidget>

namespace torka {

// Tells that the dialog began with the settings of the person's last job, and offers the defaults. Gone for
// good once the person changes a setting or chooses a preset.
class LastJobLine final : public QWidget {
public:
    explicit LastJobLine(PaneContext& paneContext, QWidget* parent);
    // `hasNoPreset`: a preset's name already tells where the settings come from.
    void Show(bool hasNoPreset);
    void Follow(const PaneChange& change);

private:
    PaneContext& context;
    bool isOver = false;
};

} // namespace torka
