// SPDX-License-Identifier: Apache-2.0
#include "pane/views/GaugePanel.h"

#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"
#include "platform/qt/LetterWidth.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace torka {
namespace {

// As high as its rows while there is room. The list of pages above takes precedence.
class RowsArea final : public QScrollArea {
public:
    using QScrollArea::QScrollArea;
    QSize sizeHint() const override { return {0, widget() == nullptr ? 0 : widget()->sizeHint().height()}; }
    QSize minimumSizeHint() const override {
        constexpr int lines = 4;
        return {0, std::min(sizeHint().height(), fontMetrics().height() * lines)};
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QScrollArea::resizeEvent(event);
        const bool isCut = widget() != nullptr && widget()->minimumSizeHint().height() > viewport()->height();
        setFocusPolicy(isCut ? Qt::StrongFocus : Qt::NoFocus); // so that keys can scroll it
    }
};

// A line that ends in "…" when it is too long. The tooltip of the row has the whole text.
class NameLabel final : public QLabel {
public:
    NameLabel(const QString& name, QWidget* parent)
        : QLabel(parent)
        , whole(name) {
        setTextFormat(Qt::PlainText);
        setMinimumWidth(letterWidth(fontMetrics()) * 4);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        alignLeading(*this);
        setText(name);
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        setText(fontMetrics().elidedText(whole, Qt::ElideRight, width()));
    }

private:
    QString whole;
};

} // namespace

GaugeBar::GaugeBar(QWidget* parent)
    : QProgressBar(parent) {
    setTextVisible(false);
    setRange(0, 100);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize GaugeBar::sizeHint() const {
    if (orientation() == Qt::Vertical) {
        return {letterWidth(fontMetrics()) * 5 / 2, fontMetrics().height() * 3 / 2};
    }
    constexpr int characters = 6;
    return {letterWidth(fontMetrics()) * characters, fontMetrics().height() * 5 / 8};
}

void GaugeBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor edge = palette().color(QPalette::WindowText);
    edge.setAlphaF(0.55F);
    painter.fillRect(frame, palette().color(QPalette::Base));
    QColor inside = fill.isValid() ? fill : palette().color(QPalette::Highlight);
    double part = isUnknown ? 0.0 : value() / 100.0;
    if (hasSome) {
        part = 0.5;
        inside.setAlphaF(0.4F);
    }
    QRectF level = frame;
    QLineF edgeOfLevel;
    if (orientation() == Qt::Vertical) {
        level.setTop(frame.bottom() - frame.height() * part);
        edgeOfLevel = {level.topLeft(), level.topRight()};
    } else {
        level.setWidth(frame.width() * part);
        if (isRightToLeft()) {
            level.moveRight(frame.right());
        }
        const double x = isRightToLeft() ? level.left() : level.right();
        edgeOfLevel = {x, frame.top(), x, frame.bottom()};
    }
    painter.fillRect(level, inside);
    QPen pen(edge, 1);
    pen.setStyle(isUnknown || hasSome ? Qt::DashLine : Qt::SolidLine);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame);
    if (part > 0.0 && part < 1.0) { // shows the level of a white or black supply
        painter.drawLine(edgeOfLevel);
    }
}

GaugePanel::GaugePanel(const PaneContext& paneContext, const GaugeSource& gaugeSource, QWidget* parent)
    : QWidget(parent)
    , context(paneContext)
    , source(gaugeSource)
    , title(new QLabel(this))
    , again(new QToolButton(this))
    , area(new RowsArea(this)) {
    setObjectName(QStringLiteral("gauges"));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(2);
    auto* head = new QHBoxLayout;
    head->addWidget(title, 1);
    head->addWidget(again);
    rows->addLayout(head);
    rows->addWidget(area);
    title->setTextFormat(Qt::PlainText);
    title->setWordWrap(true);
    title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    alignLeading(*title);
    again->setIcon(paneIcon(PaneSign::reset));
    again->setAutoRaise(true);
    again->setFocusPolicy(Qt::StrongFocus);
    again->setObjectName(QStringLiteral("gaugesReadAgain"));
    const QString readAgain = context.Say(words::gaugesReadAgain);
    again->setAccessibleName(readAgain);
    again->setToolTip(plainToolTip(readAgain));
    connect(again, &QToolButton::clicked, this, [this] { source.readAgain(); });
    area->setFrameShape(QFrame::NoFrame);
    area->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setAccessibleName(context.Say(words::gauges));
    source.whenChanged([self = QPointer<GaugePanel>(this)] {
        if (self != nullptr) {
            self->Update();
        }
    });
    Update();
}

// The rows hold signs in the old colours. They are made again when the event has reached all of them.
void GaugePanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && shown != nullptr) {
        QTimer::singleShot(0, this, [this] {
            shown = nullptr;
            Update();
        });
    }
}

void GaugePanel::SetRoom(int height) {
    room = height;
    LimitHeight();
}

void GaugePanel::LimitHeight() {
    const int head = again->sizeHint().height() + layout()->spacing();
    const int rows = std::max(0, room - head);
    area->setMaximumHeight(rows);
    area->setVisible(area->widget() != nullptr && rows >= area->minimumSizeHint().height());
}

void GaugePanel::Update() {
    const ServerExchange::State state = source.isOn() ? source.state() : ServerExchange::State::nothing;
    const bool failed = state == ServerExchange::State::failed;
    const auto content = state == ServerExchange::State::read ? source.data() : nullptr;
    if (content != shown) {
        shown = content;
        Fill(content == nullptr ? ServerGauges() : gaugesOf(*content));
    }
    const bool hasRows = area->widget() != nullptr;
    LimitHeight();
    title->setText(context.Say(failed ? words::gaugesFailed : words::gauges));
    title->setForegroundRole(failed ? QPalette::PlaceholderText : QPalette::WindowText);
    setVisible(hasRows || failed);
}

void GaugePanel::Fill(const ServerGauges& gauges) {
    delete area->takeWidget();
    if (gauges.Empty()) {
        return;
    }
    auto* rows = new QWidget;
    auto* lines = new QVBoxLayout(rows);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(1);
    AddSupplies(*lines, gauges.supplies, rows);
    for (const TrayGauge& tray : gauges.trays) {
        AddRow(*lines, shownGauge(tray), MakeBar(shownGauge(tray), rows));
    }
    lines->addStretch(1);
    area->setWidget(rows);
    rows->setAutoFillBackground(false);
    area->viewport()->setAutoFillBackground(false);
}

// Up to six supplies stand side by side, each above the first letter of its name. More supplies are rows like
// the trays.
void GaugePanel::AddSupplies(QVBoxLayout& lines, const std::vector<SupplyGauge>& supplies, QWidget* parent) {
    constexpr std::size_t maximumSideBySide = 6;
    auto* line = supplies.empty() || supplies.size() > maximumSideBySide ? nullptr : new QHBoxLayout;
    for (const SupplyGauge& supply : supplies) {
        const ShownGauge gauge = shownGauge(supply);
        GaugeBar* bar = MakeBar(gauge, parent);
        if (line == nullptr) {
            AddRow(lines, gauge, bar);
            continue;
        }
        bar->setOrientation(Qt::Vertical);
        auto* column = new QWidget(parent);
        column->setToolTip(plainToolTip(bar->accessibleName()));
        auto* grid = new QGridLayout(column);
        grid->setContentsMargins(0, 0, 0, 0);
        grid->setSpacing(1);
        grid->addWidget(bar, 0, 0, Qt::AlignHCenter);
        auto* letter = new QLabel(labelText(qText(gauge.Initial())), column);
        letter->setTextFormat(Qt::PlainText);
        grid->addWidget(letter, 1, 0, Qt::AlignHCenter);
        if (gauge.needsAttention) {
            grid->addWidget(MakeSign(column), 0, 1, Qt::AlignBottom);
        }
        line->addWidget(column);
    }
    if (line != nullptr) {
        line->setSpacing(6);
        line->addStretch(1);
        lines.addLayout(line);
        lines.addSpacing(fontMetrics().height() / 4);
    }
}

QLabel* GaugePanel::MakeSign(QWidget* parent) const {
    auto* sign = new QLabel(parent);
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize) * 3 / 4;
    sign->setPixmap(paneIcon(PaneSign::warning).pixmap(QSize(size, size), devicePixelRatioF()));
    return sign;
}

// The accessible name of the bar is also the tooltip of its row.
GaugeBar* GaugePanel::MakeBar(const ShownGauge& gauge, QWidget* parent) const {
    auto* bar = new GaugeBar(parent);
    bar->isUnknown = !gauge.percent;
    bar->hasSome = gauge.hasSome;
    bar->setValue(gauge.percent.value_or(0));
    bar->fill = QColor(qText(gauge.color));
    bar->setAccessibleName(qText(gaugeSentence(context.texts, gauge)));
    return bar;
}

void GaugePanel::AddRow(QVBoxLayout& lines, const ShownGauge& gauge, GaugeBar* bar) {
    auto* row = new QWidget(bar->parentWidget()); // one tooltip for the whole row
    row->setToolTip(plainToolTip(bar->accessibleName()));
    auto* line = new QHBoxLayout;
    line->setSpacing(4);
    line->addWidget(new NameLabel(qText(gauge.name), row), 1);
    if (gauge.needsAttention) {
        line->addWidget(MakeSign(row));
    }
    line->addWidget(bar);
    auto* both = new QVBoxLayout(row);
    both->setContentsMargins(0, 0, 0, 0);
    both->setSpacing(0);
    both->addLayout(line);
    if (!gauge.detail.empty()) {
        auto* loaded = new NameLabel(qText(gauge.detail), row);
        loaded->setForegroundRole(QPalette::PlaceholderText);
        QFont font = loaded->font();
        font.setPointSizeF(font.pointSizeF() * 0.85);
        loaded->setFont(font);
        both->addWidget(loaded);
    }
    lines.addWidget(row);
}

} // namespace torka
