// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QDialog>

namespace torka {

// Names the settings in conflict before a job is printed. Accepted: the person prints, after a resolution or
// all the same. Rejected: the person cancelled.
class ConflictDialog final : public QDialog {
public:
    // REQUIRES: there is a conflict.
    ConflictDialog(const PaneContext& context, QWidget* parent);

    // The person wants the conflicts resolved first.
    bool IsToResolve() const { return isToResolve; }

private:
    QString Consequence() const;

    const PaneContext& context;
    bool isToResolve = false;
};

} // namespace torka
