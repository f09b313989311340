// SPDX-License-Identifier: Apache-2.0
#include "pane/views/WatermarkDialog.h"

#include "pane/presentation/NumberScale.h"
#include "pane/presentation/WatermarkEditing.h"
#include "pane/views/FieldMessage.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/WatermarkPreview.h"
#include "platform/qt/LetterWidth.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <QValidator>

#include <algorithm>
#include <cmath>

namespace torka {
namespace {

constexpr int clearColor = -1; // data of entries of the colour list that have no RGB value
constexpr int otherColor = -2;

// Refuses characters that a font name cannot hold.
class FontNameValidator final : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString& typed, int& /*position*/) const override {
        if (typed.isEmpty()) {
            return Intermediate;
        }
        return isFontName(typed.toStdString()) ? Acceptable : Invalid;
    }
};

QIcon swatch(const QColor& color, int side) {
    QPixmap picture(side, side);
    picture.fill(color);
    QPainter painter(&picture);
    painter.setPen(Qt::gray);
    painter.drawRect(0, 0, side - 1, side - 1);
    return picture;
}

int rgbOf(const QColor& color) { return static_cast<int>(color.rgb() & 0xFFFFFFU); }

} // namespace

WatermarkDialog::WatermarkDialog(PaneContext& paneContext, const WatermarkFields& edited, bool isNew,
                                 QWidget* parent)
    : QDialog(parent)
    , context(paneContext)
    , before(edited)
    , color(edited.red, edited.green, edited.blue)
    , text(new QLineEdit(this))
    , font(new QComboBox(this))
    , size(new QSpinBox(this))
    , colors(new QComboBox(this))
    , angle(new QDoubleSpinBox(this))
    , right(MakeOffset("watermarkRight", edited.xOffset))
    , up(MakeOffset("watermarkUp", edited.yOffset))
    , preview(new WatermarkPreview(context, this))
    , missing(new FieldMessage(this)) {
    setPalette(readableColors());
    setObjectName(QStringLiteral("watermarkDialog"));
    setWindowTitle(context.Say(isNew ? words::watermarkAddTitle : words::watermarkEditTitle));
    MakeFields();
    auto* form = new QFormLayout;
    form->addRow(context.Say(words::watermarkText), text);
    form->addRow(missing);
    form->addRow(context.Say(words::watermarkFont), font);
    form->addRow(context.Say(words::watermarkSize), size);
    form->addRow(context.Say(words::watermarkColor), colors);
    form->addRow(context.Say(words::watermarkAngle), angle);
    form->addRow(context.Say(words::watermarkRight), right);
    form->addRow(context.Say(words::watermarkUp), up);
    auto* columns = new QHBoxLayout;
    columns->addLayout(form, 1);
    columns->addSpacing(letterWidth(fontMetrics()));
    columns->addWidget(preview, 1);
    auto* box = new QDialogButtonBox(this);
    acceptButton = box->addButton(context.Say(words::ok), QDialogButtonBox::AcceptRole);
    acceptButton->setDefault(true);
    box->addButton(context.Say(words::cancel), QDialogButtonBox::RejectRole);
    connect(box, &QDialogButtonBox::accepted, this, [this] { accept(); });
    connect(box, &QDialogButtonBox::rejected, this, [this] { reject(); });
    auto* rows = new QVBoxLayout(this);
    rows->addLayout(columns, 1);
    rows->addWidget(box);
    resize(letterWidth(fontMetrics()) * 92, fontMetrics().lineSpacing() * 19);
    Update();
}

void WatermarkDialog::MakeFields() {
    text->setObjectName(QStringLiteral("watermarkText"));
    const QString shown = qText(before.text);
    text->setMaxLength(
        std::max(static_cast<int>(WatermarkFields::longestText), static_cast<int>(shown.size())));
    text->setText(shown);
    text->selectAll();
    text->setMinimumWidth(letterWidth(fontMetrics()) * 30);
    FillFonts();
    size->setObjectName(QStringLiteral("watermarkSize"));
    size->setRange(1, 1000);
    size->setSuffix(QStringLiteral(" pt"));
    size->setValue(before.fontSize);
    angle->setObjectName(QStringLiteral("watermarkAngle"));
    angle->setRange(-360, 360);
    angle->setDecimals(1);
    angle->setSingleStep(5);
    angle->setSuffix(QStringLiteral("°"));
    angle->setWrapping(true);
    angle->setValue(std::remainder(before.angle / 10.0, 360.0));
    FillColors();
    connect(text, &QLineEdit::textChanged, this, [this] { Update(); });
    connect(font, &QComboBox::currentTextChanged, this, [this] { Update(); });
    connect(size, &QSpinBox::valueChanged, this, [this] { Update(); });
    for (QDoubleSpinBox* box : {angle, right, up}) {
        connect(box, &QDoubleSpinBox::valueChanged, this, [this] { Update(); });
    }
    connect(colors, &QComboBox::activated, this, [this](int index) { ChooseColor(index); });
}

void WatermarkDialog::FillFonts() {
    font->setObjectName(QStringLiteral("watermarkFont"));
    font->setEditable(true);
    font->setInsertPolicy(QComboBox::NoInsert);
    for (const char* name : watermarkFonts) {
        font->addItem(QString::fromLatin1(name));
    }
    font->setValidator(new FontNameValidator(font));
    font->setCurrentText(qText(before.fontName));
}

void WatermarkDialog::FillColors() {
    colors->setObjectName(QStringLiteral("watermarkColor"));
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
    for (const NamedColor& named : namedColors) {
        colors->addItem(swatch(QColor(QRgb(static_cast<unsigned>(named.rgb))), side),
                        context.Say(*named.word), named.rgb);
    }
    colors->addItem(context.Say(words::watermarkClear), clearColor);
    colors->addItem(context.Say(words::watermarkOtherColor), otherColor);
    if (before.isClear) {
        colors->setCurrentIndex(colors->findData(clearColor));
        lastColor = colors->currentIndex();
    } else {
        TakeColor(color);
    }
}

// Adds a colour without a name to the list, as its number.
void WatermarkDialog::TakeColor(const QColor& other) {
    color = other;
    int index = colors->findData(rgbOf(color));
    if (index < 0) {
        index = colors->findData(clearColor);
        const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
        colors->insertItem(index, swatch(color, side), color.name(), rgbOf(color));
    }
    colors->setCurrentIndex(index);
    lastColor = index;
}

void WatermarkDialog::ChooseColor(int index) {
    const int chosen = colors->itemData(index).toInt();
    if (chosen != otherColor) {
        if (chosen != clearColor) {
            color = QColor(QRgb(static_cast<unsigned>(chosen)));
        }
        lastColor = index;
        Update();
        return;
    }
    colors->setCurrentIndex(lastColor);
    auto* dialog = new QColorDialog(color, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor& other) {
        TakeColor(other);
        Update();
    });
    dialog->open();
}

QDoubleSpinBox* WatermarkDialog::MakeOffset(const char* name, std::int32_t points) {
    auto* box = new QDoubleSpinBox(this);
    box->setObjectName(QString::fromLatin1(name));
    const SizeScale scale(context.texts.language.metric);
    const double largest = std::ceil(maximumOffset(points) / scale.points);
    box->setRange(-largest, largest);
    box->setDecimals(scale.decimals);
    box->setSingleStep(context.texts.language.metric ? 5 : 0.25);
    box->setSuffix(QLatin1Char(' ') + context.Say(scale.unit));
    box->setValue(points / scale.points);
    return box;
}

WatermarkFields WatermarkDialog::Fields() const {
    WatermarkFields fields = before;
    const SizeScale scale(context.texts.language.metric);
    const auto points = [&scale](const QDoubleSpinBox* box) {
        return static_cast<std::int32_t>(std::lround(box->value() * scale.points));
    };
    fields.isClear = colors->currentData().toInt() == clearColor;
    fields.xOffset = points(right);
    fields.yOffset = points(up);
    fields.red = color.red();
    fields.green = color.green();
    fields.blue = color.blue();
    fields.angle = static_cast<std::int32_t>(std::lround(angle->value() * 10));
    fields.fontSize = size->value();
    fields.fontName = font->currentText().toStdString();
    fields.text = text->text().toStdString();
    return fields;
}

void WatermarkDialog::accept() {
    if (acceptButton->isEnabled()) {
        QDialog::accept();
    }
}

void WatermarkDialog::Update() {
    preview->Show(Fields());
    missing->Tell(preview->Missing());
    if (acceptButton != nullptr) {
        acceptButton->setEnabled(!text->text().trimmed().isEmpty() && font->lineEdit()->hasAcceptableInput());
    }
}

} // namespace torka
