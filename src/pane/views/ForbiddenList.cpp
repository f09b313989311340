// SPDX-License-Identifier: Apache-2.0
#include "pane/views/ForbiddenList.h"

#include "pane/views/PlainTexts.h"
#include "platform/qt/LetterWidth.h"

#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace torka {
namespace {

QLabel* plainLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setWordWrap(true);
    alignLeading(*label);
    return label;
}

QWidget* listOf(PaneContext& context, const ForbiddenChoices& forbidden, const PPDXControl& control,
                QWidget& window) {
    auto* list = new QWidget;
    auto* rows = new QGridLayout(list);
    rows->setColumnStretch(0, 1);
    constexpr int characters = 46; // of a line
    rows->setColumnMinimumWidth(0, letterWidth(list->fontMetrics()) * characters);
    int row = 0;
    for (const ForbiddenChoice& choice : forbidden.choices) {
        rows->addWidget(plainLabel(qText(choice.why), list), row, 0);
        if (!choice.changes.empty()) {
            auto* button = new QPushButton(context.Say(*choice.button), list);
            const QString changes = qText(choice.changes);
            button->setToolTip(plainToolTip(changes));
            button->setAccessibleDescription(qText(choice.why) + QLatin1Char(' ') + changes);
            rows->addWidget(button, row, 1, Qt::AlignVCenter);
            QObject::connect(button, &QPushButton::clicked, &window,
                             [&context, &window, &control, keyword = choice.keyword] {
                                 window.close();
                                 context.editor.ChangeWithOthers(control, keyword);
                             });
        }
        ++row;
    }
    if (!forbidden.more.empty()) {
        rows->addWidget(plainLabel(qText(forbidden.more), list), row, 0);
    }
    return list;
}

} // namespace

void showForbiddenChoices(PaneContext& context, const ForbiddenChoices& forbidden, const PPDXControl& control,
                          QWidget& place) {
    auto* window = new QFrame(&place, Qt::Popup);
    window->setObjectName(QStringLiteral("forbiddenChoices"));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setFrameShape(QFrame::StyledPanel);
    window->setAccessibleName(context.Say(words::whyForbidden));
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* area = new QScrollArea(window);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    QWidget* list = listOf(context, forbidden, control, *window);
    area->setWidget(list);
    layout->addWidget(area);
    const QRect screen = place.screen()->availableGeometry();
    const int width = list->sizeHint().width() + area->verticalScrollBar()->sizeHint().width();
    const int needed = std::max(list->heightForWidth(list->sizeHint().width()), list->sizeHint().height());
    window->resize(width, std::min(needed + 2 * window->frameWidth(), screen.height() / 2));
    QRect shown(place.mapToGlobal(place.rect().bottomLeft()), window->size());
    shown.moveLeft(std::clamp(shown.left(), screen.left(), std::max(screen.left(), screen.right() - width)));
    if (shown.bottom() > screen.bottom()) {
        shown.moveBottom(place.mapToGlobal(QPoint()).y());
    }
    window->move(shown.topLeft());
    window->show();
    if (auto* first = window->findChild<QPushButton*>()) {
        first->setFocus(Qt::PopupFocusReason);
    }
}

} // namespace torka
