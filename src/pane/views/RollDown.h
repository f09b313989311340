// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QString>
#include <QWidget>

#include <functional>

class QToolButton;

namespace torka {

// A group of fields with a header that opens and closes it. The content is made when the group first opens.
class RollDown final : public QWidget {
public:
    // `fillContent` makes the content and gives its parent a layout. It is called once.
    RollDown(const PaneContext& context, const QString& title, std::function<void(QWidget&)> fillContent,
             QWidget* parent);

    void SetOpen(bool nowOpen);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void TellState(); // to assistive technology

    QToolButton* header;
    QWidget* content = nullptr;
    std::function<void(QWidget&)> fill;
    QString openWord;
    QString closedWord;
    bool open = false;
};

} // namespace torka
