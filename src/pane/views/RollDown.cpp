// SPDX-License-Identifier: Apache-2.0
#include "pane/views/RollDown.h"

#include "pane/views/Eliding.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/TabOrder.h"

#include <QKeyEvent>
#include <QToolButton>
#include <QVBoxLayout>

namespace torka {

RollDown::RollDown(const PaneContext& context, const QString& title,
                   std::function<void(QWidget&)> fillContent, QWidget* parent)
    : QWidget(parent)
    , header(new ElidingToolButton(title, this))
    , fill(std::move(fillContent))
    , openWord(context.Say(words::openGroup))
    , closedWord(context.Say(words::closedGroup)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    header->setAutoRaise(true);
    header->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    header->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    header->setFocusPolicy(Qt::StrongFocus);
    header->setIcon(paneIcon(PaneSign::closed));
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    header->installEventFilter(this);
    layout->addWidget(header);
    TellState();
    connect(header, &QToolButton::clicked, this, [this] { SetOpen(!open); });
}

void RollDown::SetOpen(bool nowOpen) {
    if (open == nowOpen) {
        return;
    }
    open = nowOpen;
    header->setIcon(paneIcon(open ? PaneSign::open : PaneSign::closed));
    if (open && content == nullptr) {
        content = new QWidget(this);
        fill(*content);
        chainInTabOrder(header, *content);
        static_cast<QVBoxLayout*>(layout())->addWidget(content);
    }
    // Content made before the page is shown needs no call: it would lay out all rows once more.
    if (content != nullptr && content->isHidden() == open) {
        content->setVisible(open);
    }
    TellState();
}

void RollDown::TellState() { header->setAccessibleDescription(open ? openWord : closedWord); }

// As in a tree, the arrow key towards the content opens and the other one closes.
bool RollDown::eventFilter(QObject* watched, QEvent* event) {
    if (watched == header && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool leftToRight = layoutDirection() == Qt::LeftToRight;
        if (key == (leftToRight ? Qt::Key_Right : Qt::Key_Left) || key == Qt::Key_Plus) {
            SetOpen(true);
            return true;
        }
        if (key == (leftToRight ? Qt::Key_Left : Qt::Key_Right) || key == Qt::Key_Minus) {
            SetOpen(false);
            return true;
        }
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            SetOpen(!open);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace torka
