// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace torka {

// Names the settings in conflict, and offers to resolve the conflict and to undo that. Hidden without a
// conflict.
class ConflictBar final : public QFrame {
public:
    explicit ConflictBar(PaneContext& paneContext, QWidget* parent = nullptr);
    void Update(const PaneChange* change);

    // For the tests; no caller here
    QString Text() const;
    QPushButton* ResolveButton() const { return resolve; }
    QPushButton* UndoButton() const { return undo; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void Say(const QString& text, bool warning);
    void ShowSign();
    void TakePalette();

    PaneContext& context;
    QLabel* sign;
    QLabel* message;
    QPushButton* resolve;
    QPushButton* undo;
    QPushButton* close;
    bool isWarning = false;
};

} // namespace torka
