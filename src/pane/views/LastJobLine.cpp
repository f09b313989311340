// SPDX-License-Identifier: Apache-2.0
#include "pane/views/LastJobLine.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace torka {

LastJobLine::LastJobLine(PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext) {
    setObjectName(QStringLiteral("lastJob"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* text = new QLabel(context.Say(words::lastJob), this);
    text->setTextFormat(Qt::PlainText);
    layout->addWidget(text);
    auto* defaults = new QToolButton(this);
    defaults->setText(context.Say(words::useDefaults));
    defaults->setFocusPolicy(Qt::StrongFocus);
    connect(defaults, &QToolButton::clicked, this, [this] { context.useDefaults(); });
    layout->addWidget(defaults);
    layout->addStretch(1);
    hide();
}

void LastJobLine::Show(bool hasNoPreset) {
    isOver = isOver || !hasNoPreset;
    setVisible(!isOver && context.beganWithLastJob && context.beganWithLastJob());
}

void LastJobLine::Follow(const PaneChange& change) {
    if (change.kind != PaneChange::Kind::outside) {
        isOver = true;
        hide();
    }
}

} // namespace torka
