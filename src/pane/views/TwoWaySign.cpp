// SPDX-License-Identifier: Apache-2.0
#include "pane/views/TwoWaySign.h"

#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

namespace torka {

TwoWaySign::TwoWaySign(const PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext)
    , sign(new QLabel(this))
    , label(new QLabel(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(sign);
    layout->addWidget(label);
    label->setTextFormat(Qt::PlainText);
    Show(TwoWayState::off);
}

void TwoWaySign::Show(TwoWayState state) {
    shown = state;
    const TwoWayNotice notice = twoWayNotice(context.texts, state);
    const PaneSign picture = state == TwoWayState::off  ? PaneSign::ring
                             : state == TwoWayState::on ? PaneSign::dot
                                                        : PaneSign::warning;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    sign->setPixmap(paneIcon(picture).pixmap(QSize(size, size), devicePixelRatioF()));
    label->setText(qText(notice.text));
    label->setForegroundRole(state == TwoWayState::off ? QPalette::PlaceholderText : QPalette::WindowText);
    setPlainToolTip(*this, qText(notice.hint));
    setAccessibleName(qText(notice.spoken));
}

void TwoWaySign::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        Show(shown); // the picture has the old colours
    }
}

} // namespace torka
