// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/WatermarkEditor.h"

#include "jobproperties/window/WatermarkPreview.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QVBoxLayout>

namespace torka::jobproperties {

namespace {

constexpr std::string_view printedKey = "*QV_WATERMARK";
// Maximum points that a field offers. Values beyond stay in the definition until they are edited.
constexpr int maximumPoints = 20000;

QString labelOf(const std::string& definition) {
    const QString text = QString::fromStdString(Watermark::FromDefinition(definition).text).simplified();
    return text.isEmpty() ? WatermarkEditor::tr("(no text)") : text;
}

QSpinBox* pointsBox(int least) {
    auto* box = new QSpinBox;
    box->setRange(least, maximumPoints);
    box->setSuffix(WatermarkEditor::tr(" pt"));
    return box;
}

} // namespace

WatermarkEditor::WatermarkEditor(JobSettings& givenSettings, QWidget* parent)
    : QWidget(parent)
    , settings(givenSettings) {
    auto* column = new QVBoxLayout(this);
    auto* head = new QHBoxLayout;
    auto* label = new QLabel(tr("&Watermark to print:"));
    printed = new QComboBox;
    printed->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    printed->setMinimumContentsLength(20);
    printed->setAccessibleName(tr("Watermark to print"));
    label->setBuddy(printed);
    lockNote = new QLabel;
    lockNote->setTextFormat(Qt::PlainText);
    head->addWidget(label);
    head->addWidget(printed, 1);
    head->addWidget(lockNote);
    head->addStretch(1);
    column->addLayout(head);

    auto* middle = new QHBoxLayout;
    middle->addWidget(MakeListSide(), 2);
    middle->addWidget(MakeFields(), 3);
    column->addLayout(middle, 1);
    message = new QLabel;
    message->setTextFormat(Qt::PlainText);
    message->setWordWrap(true);
    message->hide();
    column->addWidget(message);

    connect(printed, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (isShowing) {
            return;
        }
        settings.SelectWatermark(index - 1);
        if (index > 0) {
            list->setCurrentRow(index - 1);
        }
        Q_EMIT Edited();
    });
    connect(list, &QListWidget::currentRowChanged, this, [this](int) { ShowFields(); });
    ShowValues();
}

QWidget* WatermarkEditor::MakeListSide() {
    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    list = new QListWidget;
    list->setAccessibleName(tr("Watermarks"));
    list->setMinimumHeight(fontMetrics().height() * 5);
    column->addWidget(list, 1);
    auto* buttons = new QHBoxLayout;
    auto* add = new QPushButton(tr("&Add"));
    add->setObjectName(QStringLiteral("addWatermark"));
    add->setAccessibleName(tr("Add a watermark"));
    remove = new QPushButton(tr("Re&move"));
    remove->setAccessibleName(tr("Remove the watermark"));
    for (QPushButton* button : {add, remove}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    column->addLayout(buttons);
    preview = new WatermarkPreview;
    column->addWidget(preview, 2);
    connect(add, &QPushButton::clicked, this, &WatermarkEditor::Add);
    connect(remove, &QPushButton::clicked, this, &WatermarkEditor::Remove);
    return side;
}

QWidget* WatermarkEditor::MakeFields() {
    auto* box = new QGroupBox(tr("Definition"));
    fields = box;
    text = new QLineEdit;
    text->setObjectName(QStringLiteral("watermarkText"));
    font = new QComboBox;
    font->setEditable(true);
    font->addItems({"Helvetica", "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique",
                    "Times-Roman", "Times-Bold", "Times-Italic", "Times-BoldItalic", "Courier",
                    "Courier-Bold"});
    font->setMinimumContentsLength(12);
    size = pointsBox(0);
    angle = new QDoubleSpinBox;
    angle->setRange(-3600, 3600);
    angle->setDecimals(1);
    angle->setSingleStep(5);
    angle->setSuffix(tr("°"));
    right = pointsBox(-maximumPoints);
    up = pointsBox(-maximumPoints);
    color = new QPushButton;
    color->setAutoDefault(false);
    clear = new QCheckBox(tr("Clear toner, no color"));
    firstPageOnly = new QCheckBox(tr("On the first page only"));

    auto* form = new QFormLayout(box);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("&Text:"), text);
    form->addRow(tr("&Font:"), font);
    form->addRow(tr("Si&ze:"), size);
    form->addRow(tr("An&gle:"), angle);
    form->addRow(tr("&Color:"), color);
    form->addRow(QString(), clear);
    form->addRow(tr("Sh&ift right:"), right);
    form->addRow(tr("Shift &up:"), up);
    form->addRow(QString(), firstPageOnly);

    connect(text, &QLineEdit::textEdited, this, [this](const QString& value) {
        Edit([&](Watermark& watermark) { watermark.text = value.toStdString(); });
    });
    connect(font, &QComboBox::currentTextChanged, this, [this](const QString& value) {
        Edit([&](Watermark& watermark) { watermark.font = value.toStdString(); });
    });
    connect(size, &QSpinBox::valueChanged, this,
            [this](int value) { Edit([&](Watermark& watermark) { watermark.size = value; }); });
    connect(angle, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        Edit([&](Watermark& watermark) { watermark.angle = qRound(value * 10); });
    });
    connect(right, &QSpinBox::valueChanged, this,
            [this](int value) { Edit([&](Watermark& watermark) { watermark.right = value; }); });
    connect(up, &QSpinBox::valueChanged, this,
            [this](int value) { Edit([&](Watermark& watermark) { watermark.up = value; }); });
    connect(clear, &QCheckBox::toggled, this,
            [this](bool on) { Edit([&](Watermark& watermark) { watermark.clear = on; }); });
    connect(firstPageOnly, &QCheckBox::toggled, this,
            [this](bool on) { Edit([&](Watermark& watermark) { watermark.firstPageOnly = on; }); });
    connect(color, &QPushButton::clicked, this, &WatermarkEditor::ChooseColor);
    return box;
}

std::size_t WatermarkEditor::Position() const {
    return static_cast<std::size_t>(list->currentRow()); // -1 becomes a position that no list has
}

Watermark WatermarkEditor::Current() const {
    const std::size_t position = Position();
    return position < settings.Watermarks().size()
               ? Watermark::FromDefinition(settings.Watermarks()[position])
               : Watermark();
}

template <typename Change>
void WatermarkEditor::Edit(Change&& change) {
    if (isShowing || Position() >= settings.Watermarks().size()) {
        return;
    }
    Watermark watermark = Current();
    change(watermark);
    const std::string definition = watermark.Definition();
    const bool fits = settings.HasRoomFor(Position(), definition);
    message->setVisible(!fits);
    if (!fits) {
        message->setText(
            tr("The watermarks would be too long with this text; it is not taken. Shorten it, or remove "
               "another watermark."));
        return;
    }
    settings.ReplaceWatermark(Position(), definition);
    const QScopedValueRollback showing(isShowing, true);
    list->currentItem()->setText(labelOf(definition));
    printed->setItemText(list->currentRow() + 1, labelOf(definition));
    preview->Show(&watermark);
    ShowColor(watermark);
    Q_EMIT Edited();
}

void WatermarkEditor::Add() {
    Watermark watermark;
    watermark.text = tr("DRAFT").toStdString();
    const std::string definition = watermark.Definition();
    const bool fits = settings.HasRoomFor(settings.Watermarks().size(), definition);
    message->setVisible(!fits);
    message->setText(tr("There is no room for another watermark. Remove one first."));
    if (!fits) {
        return;
    }
    settings.AddWatermark(definition);
    ShowList();
    list->setCurrentRow(list->count() - 1);
    text->setFocus();
    text->selectAll();
    Q_EMIT Edited();
}

void WatermarkEditor::Remove() {
    const int row = list->currentRow();
    settings.RemoveWatermark(Position());
    message->hide();
    ShowList();
    list->setCurrentRow(std::min(row, list->count() - 1));
    ShowFields();
    Q_EMIT Edited();
}

void WatermarkEditor::ChooseColor() {
    const Watermark watermark = Current();
    const QColor chosen =
        QColorDialog::getColor(QColor(watermark.color[0], watermark.color[1], watermark.color[2]), this,
                               tr("Color of the Watermark"));
    if (chosen.isValid()) {
        Edit([&](Watermark& edited) { edited.color = {chosen.red(), chosen.green(), chosen.blue()}; });
    }
}

void WatermarkEditor::ShowValues() {
    ShowList();
    list->setCurrentRow(std::max(0, settings.SelectedWatermark()));
    ShowFields();
    message->hide();
    const Lock lock = settings.LockOf(printedKey);
    const bool isFixed = lock != Lock::None || settings.IsVeiled(printedKey);
    printed->setEnabled(!isFixed);
    lockNote->setVisible(isFixed);
    lockNote->setText(lock == Lock::Server ? tr("Locked by the print server")
                                           : tr("Set by your administrator"));
}

void WatermarkEditor::ShowList() {
    const QScopedValueRollback showing(isShowing, true);
    list->clear();
    printed->clear();
    printed->addItem(tr("None"));
    for (const std::string& definition : settings.Watermarks()) {
        list->addItem(labelOf(definition));
        printed->addItem(labelOf(definition));
    }
    printed->setCurrentIndex(settings.SelectedWatermark() + 1);
}

void WatermarkEditor::ShowFields() {
    const bool hasOne = Position() < settings.Watermarks().size();
    fields->setEnabled(hasOne);
    remove->setEnabled(hasOne);
    const Watermark watermark = Current();
    const QScopedValueRollback showing(isShowing, true);
    text->setText(hasOne ? QString::fromStdString(watermark.text) : QString());
    font->setCurrentText(QString::fromStdString(watermark.font));
    size->setValue(watermark.size);
    angle->setValue(watermark.angle / 10.0);
    right->setValue(watermark.right);
    up->setValue(watermark.up);
    clear->setChecked(watermark.clear);
    firstPageOnly->setChecked(watermark.firstPageOnly);
    ShowColor(watermark);
    preview->Show(hasOne ? &watermark : nullptr);
}

void WatermarkEditor::ShowColor(const Watermark& watermark) {
    const QColor shown(watermark.color[0], watermark.color[1], watermark.color[2]);
    const double ratio = devicePixelRatioF();
    const int side = fontMetrics().height();
    QPixmap patch(QSize(side * 2, side) * ratio);
    patch.setDevicePixelRatio(ratio);
    patch.fill(shown);
    QPainter painter(&patch);
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawRect(QRectF(0, 0, side * 2 - 1, side - 1));
    painter.end();
    color->setIcon(patch);
    color->setIconSize(QSize(side * 2, side));
    color->setText(shown.name());
    color->setAccessibleName(tr("Color %1").arg(shown.name()));
    color->setEnabled(!watermark.clear);
}

} // namespace torka::jobproperties
