#include "pane/views/ConflictBar.h"

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "pane/views/FieldTexts.h"
#include "pane/views/PaneIcons.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QStyle>

#include <algorithm>

namespace torka {
namespace {

constexpr std::size_t mostConflicts = 2; // named one by one

// Part of a colour laid over another.
QColor blend(const QColor& under, const QColor& over, double share) {
    const auto mix = [share](float a, float b) {
        return static_cast<float>(static_cast<double>(a) * (1 - share) + static_cast<double>(b) * share);
    };
    return QColor::fromRgbF(mix(under.redF(), over.redF()), mix(under.greenF(), over.greenF()),
                            mix(under.blueF(), over.blueF()));
}

} // namespace

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
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    sign->setPixmap(paneIcon(warning ? PaneSign::warning : PaneSign::information)
                        .pixmap(QSize(size, size), devicePixelRatioF()));
    const bool isNew = text != message->text() || isHidden();
    message->setText(text);
    setAccessibleName(text);
    show();
    if (isNew) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ConflictBar::Update(const PaneChange* change) {
    if (!context.editor.Conflicts().empty()) {
        ShowConflicts();
        return;
    }
    if (change == nullptr || change->kind != PaneChange::Kind::resolution) {
        hide();
        return;
    }
    QStringList parts;
    for (const PPDXControl* control : change->controls) {
        parts.append(context.Say(words::setTo, qText(nameOf(*control)),
                                 shownChoice(context, *control, PaneEditor::Value(*control))));
    }
    resolve->hide();
    undo->show();
    close->show();
    Say(context.Say(words::changed, parts.join(QLatin1String(", "))), false);
}

void ConflictBar::ShowConflicts() {
    const auto& conflicts = context.editor.Conflicts();
    QStringList lines;
    for (std::size_t i = 0; i < std::min(conflicts.size(), mostConflicts); ++i) {
        lines.append(context.Say(words::conflict, shownSetting(context, conflicts[i].first),
                                 shownSetting(context, conflicts[i].second)));
    }
    if (conflicts.size() > mostConflicts) {
        lines.append(context.Say(words::conflictsMore, QString::number(conflicts.size() - mostConflicts)));
    }
    const PaneResolution& resolution = context.editor.Resolution();
    const bool solved = resolution.solved && !resolution.changes.empty();
    if (!solved) {
        lines.append(context.Say(words::noResolution));
    }
    resolve->setVisible(solved);
    if (solved) {
        setPlainToolTip(*resolve,
                        context.Say(words::resolveChanges, shownChanges(context, resolution.changes)));
    }
    undo->setVisible(context.editor.CanUndo());
    close->hide();
    Say(lines.join(QLatin1Char('\n')), true);
}

void ConflictBar::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange) {
        TakePalette();
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
