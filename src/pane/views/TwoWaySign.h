// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/TwoWayNotice.h"
#include "pane/views/PaneContext.h"

#include <QWidget>

class QLabel;

namespace torka {

// Shows the state of two-way communication: a small sign and a few words.
class TwoWaySign final : public QWidget {
public:
    TwoWaySign(const PaneContext& paneContext, QWidget* parent);
    void Show(TwoWayState state);

protected:
    void changeEvent(QEvent* event) override;

private:
    const PaneContext& context;
    TwoWayState shown = TwoWayState::off;
    QLabel* sign;
    QLabel* label;
};

} // namespace torka
