#include "pane/views/GaugePanel.h"

#include "pane/views/FieldTexts.h"
#include "pane/views/LiveWords.h"
#include "pane/views/PaneIcons.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace torka {
namespace {

constexpr int mostRowsSeen = 7;

// One line that ends in "…" where it is too long; its whole text is the row's tooltip.
class NameLabel final : public QLabel {
public:
    NameLabel(const QString& name, QWidget* parent)
        : QLabel(parent)
        , whole(name) {
        setTextFormat(Qt::PlainText);
        setMinimumWidth(fontMetrics().averageCharWidth() * 4);
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
    constexpr int characters = 8;
    return {fontMetrics().averageCharWidth() * characters, fontMetrics().height() * 5 / 8};
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
    level.setWidth(frame.width() * part);
    if (isRightToLeft()) {
        level.moveRight(frame.right());
    }
    painter.fillRect(level, inside);
    QPen pen(edge, 1);
    pen.setStyle(isUnknown || hasSome ? Qt::DashLine : Qt::SolidLine);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame);
    if (part > 0.0 && part < 1.0) { // a white or black supply is seen by its edge
        const double x = isRightToLeft() ? level.left() : level.right();
        painter.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom()));
    }
}

GaugePanel::GaugePanel(const PaneContext& paneContext, GaugeSource gaugeSource, QWidget* parent)
    : QWidget(parent)
    , context(paneContext)
    , source(std::move(gaugeSource))
    , title(new QLabel(this))
    , again(new QToolButton(this))
    , area(new QScrollArea(this)) {
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
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setAccessibleName(context.Say(words::gauges));
    Update();
}

void GaugePanel::Update() {
    const ServerExchange::State state = source.isOn() ? source.state() : ServerExchange::State::nothing;
    const bool failed = state == ServerExchange::State::failed;
    ServerGauges gauges;
    const auto content = state == ServerExchange::State::read ? source.data() : nullptr;
    if (content != shown) {
        shown = content;
        Fill(content == nullptr ? ServerGauges() : gaugesOf(*content));
    }
    const bool hasRows = area->widget() != nullptr;
    area->setVisible(hasRows);
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
    rows->setAutoFillBackground(false);
    auto* grid = new QGridLayout(rows);
    grid->setContentsMargins(0, 0, 4, 0);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(0, 1);
    for (const TrayGauge& tray : gauges.trays) {
        auto* bar = new GaugeBar(rows);
        bar->isUnknown = !tray.percent;
        bar->hasSome = tray.hasSome;
        bar->setValue(tray.percent.value_or(0));
        AddRow(*grid, qText(tray.name), qText(tray.media), bar, tray.percent == 0);
    }
    if (!gauges.trays.empty() && !gauges.supplies.empty()) {
        grid->setRowMinimumHeight(grid->rowCount(), fontMetrics().height() / 3);
    }
    for (const SupplyGauge& supply : gauges.supplies) {
        auto* bar = new GaugeBar(rows);
        bar->isUnknown = !supply.percent;
        bar->setValue(supply.percent.value_or(0));
        bar->fill = QColor(qText(supply.color));
        AddRow(*grid, qText(supply.name), QString(), bar, supply.needsAttention);
    }
    area->setWidget(rows);
    area->viewport()->setAutoFillBackground(false);
    const int rowHeight = fontMetrics().height() + grid->verticalSpacing();
    const int wanted = rows->sizeHint().height();
    const int seen = std::min(wanted, rowHeight * mostRowsSeen);
    area->setFixedHeight(seen);
    area->setFocusPolicy(wanted > seen ? Qt::StrongFocus : Qt::NoFocus);
}

void GaugePanel::AddRow(QGridLayout& grid, const QString& name, const QString& detail, GaugeBar* bar,
                        bool needsAttention) {
    QWidget* parent = bar->parentWidget();
    const QString whole = detail.isEmpty() ? name : name + QStringLiteral(" – ") + detail;
    QString told = bar->hasSome     ? context.Say(words::gaugeSome, whole)
                   : bar->isUnknown ? context.Say(words::gaugeUnknown, whole)
                                    : context.Say(words::gaugeLevel, whole, QString::number(bar->value()));
    if (needsAttention) {
        told = context.Say(words::gaugeAttention, told);
    }
    auto* label = new NameLabel(whole, parent);
    auto* sign = new QLabel(parent);
    if (needsAttention) {
        const int size = style()->pixelMetric(QStyle::PM_SmallIconSize) * 3 / 4;
        sign->setPixmap(paneIcon(PaneSign::warning).pixmap(QSize(size, size), devicePixelRatioF()));
    }
    bar->setAccessibleName(told);
    for (QWidget* widget :
         {static_cast<QWidget*>(label), static_cast<QWidget*>(bar), static_cast<QWidget*>(sign)}) {
        widget->setToolTip(plainToolTip(told));
    }
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(sign, row, 1);
    grid.addWidget(bar, row, 2);
}

} // namespace torka
