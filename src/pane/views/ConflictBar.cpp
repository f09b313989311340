// SPDX-License-Identifier: Apache-2.0
#include "pane/views/ConflictBar.h"

#include "pane/presentation/ConflictNotice.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PaneIcons.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace torka {

ConflictBar::ConflictBar(PaneContext& paneContext, QWidget* parent)
    : QFrame(parent)
    , context(paneContext)
    , sign(new QLabel(this))
    , message(new QLabel(this))
    , resolve(new QPushButton(context.Say(words::resolve), this))
    , undo(new QPushButton(context.Say(words::undo), this))
    , close(new QPushButton(this)) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    message->setTextFormat(Qt::PlainText);
    message->setWordWrap(true);
    alignLeading(*message);
    close->setIcon(paneIcon(PaneSign::cross));
    close->setFlat(true);
    const QString closeName = context.Say(words::close);
    close->setAccessibleName(closeName);
    close->setToolTip(plainToolTip(closeName));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 6);
    layout->addWidget(sign);
    layout->addWidget(message, 1);
    for (QPushButton* button : {resolve, undo, close}) {
        button->setAutoDefault(false);
        layout->addWidget(button);
    }
    connect(resolve, &QPushButton::clicked, this, [this] { context.editor.Resolve(); });
    connect(undo, &QPushButton::clicked, this, [this] { context.editor.Undo(); });
    connect(close, &QPushButton::clicked, this, [this] { hide(); });
    TakePalette();
    hide();
}

QString ConflictBar::Text() const { return message->text(); }

void ConflictBar::Say(const QString& text, bool warning) {
    isWarning = warning;
    ShowSign();
    const bool isNew = text != message->text() || isHidden();
    message->setText(text);
    setAccessibleName(text);
    show();
    if (isNew) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ConflictBar::ShowSign() {
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    sign->setPixmap(paneIcon(isWarning ? PaneSign::warning : PaneSign::information)
                        .pixmap(QSize(size, size), devicePixelRatioF()));
}

void ConflictBar::Update(const PaneChange* change) {
    const auto notice = conflictNotice(context.texts, change);
    if (!notice) {
        hide();
        return;
    }
    resolve->setVisible(notice->CanResolve());
    setPlainToolTip(*resolve, qText(notice->resolveTip));
    undo->setVisible(notice->canUndo);
    close->setVisible(!notice->isConflict);
    Say(qText(notice->text), notice->isConflict);
}

void ConflictBar::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    // Only windows hear of the application's colours; the bar hears that its own change with them.
    if (event->type() == QEvent::PaletteChange) {
        TakePalette(); // sends no event when nothing changes
        ShowSign();
    }
}

void ConflictBar::TakePalette() {
    QPalette colors = QPalette();
    constexpr double tint = 0.18;
    colors.setColor(QPalette::Window,
                    blend(colors.color(QPalette::Window), colors.color(QPalette::Highlight), tint));
    setPalette(colors);
}

} // namespace torka
