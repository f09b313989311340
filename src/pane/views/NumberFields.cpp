// SPDX-License-Identifier: Apache-2.0
#include "pane/views/NumberFields.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "pane/presentation/FieldTexts.h"
#include "pane/views/BoundedBox.h"
#include "pane/views/FieldMessage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>

namespace torka {
namespace {

// Names the bounds of the box: always in its tooltip, and below the field when a person typed a number
// outside them.
void nameBounds(const PaneContext& context, BoundedBox& box, FieldMessage& message) {
    const auto number = [&box](double bound) { return box.textFromValue(bound) + box.suffix(); };
    const QString least = number(box.minimum());
    const QString largest = number(box.maximum());
    setPlainToolTip(box, context.Say(words::bounds, least, largest));
    box.WhenOutside([&context, &message, least, largest](const QString& typed) {
        message.Tell(context.Say(words::outOfBounds, typed, least, largest));
    });
    QObject::connect(&box, &QDoubleSpinBox::valueChanged, &message, [&message] { message.Tell({}); });
    QObject::connect(box.findChild<QLineEdit*>(), &QLineEdit::textEdited, &message,
                     [&message] { message.Tell({}); });
}

// A column of the control and the message.
QWidget* aboveMessage(QWidget* control, FieldMessage* message, QWidget* parent) {
    auto* column = new QWidget(parent);
    auto* rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(control);
    rows->addWidget(message);
    return column;
}

} // namespace

NumberRow::NumberRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , scale(field)
    , slider(new QSlider(Qt::Horizontal, Body()))
    , box(new BoundedBox(Body()))
    , message(new FieldMessage(Body())) {
    slider->setRange(0, scale.SliderMaximum());
    constexpr int pages = 10;
    slider->setPageStep(std::max(1, slider->maximum() / pages));
    slider->setFocusPolicy(Qt::StrongFocus);
    slider->setAccessibleName(qText(field.name));
    box->setDecimals(scale.Decimals());
    box->setRange(scale.ShownMinimum(), scale.ShownMaximum());
    box->setSingleStep(scale.ShownStep());
    box->setKeyboardTracking(false); // an incomplete number is no value
    box->setFocusPolicy(Qt::StrongFocus);
    box->setAccelerated(true);
    if (!scale.Unit().name.empty()) {
        box->setSuffix(QLatin1Char(' ') + qText(scale.Unit().name));
    }
    auto* both = new QWidget(Body());
    auto* layout = new QHBoxLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(slider, 1);
    layout->addWidget(box);
    QObject::connect(slider, &QSlider::valueChanged, slider, [this](int place) {
        if (!updating) {
            SetNumber(scale.AtSlider(place), slider->isSliderDown());
        }
    });
    QObject::connect(slider, &QSlider::sliderReleased, slider, [this] { context.editor.EndStep(); });
    QObject::connect(box, &QDoubleSpinBox::valueChanged, box, [this](double shown) {
        if (!updating) {
            SetNumber(shown / scale.Unit().factor, false);
        }
    });
    Take(aboveMessage(both, message, Body()), box, false);
    nameBounds(context, *box, *message);
}

void NumberRow::SetNumber(double number, bool continues) {
    const std::string value = scale.ValueText(number);
    const auto change = [&] { field.control->SetCurrentControlWithCFString(cfString(value)); };
    if (!context.editor.Edit(*field.control, change, continues)) {
        ShowValue();
    }
}

void NumberRow::UpdateValue() {
    updating = true;
    const double number = scale.Number();
    box->setValue(number * scale.Unit().factor);
    if (!slider->isSliderDown()) { // a dragged slider is not moved
        slider->setValue(scale.SliderPlace(number));
    }
    updating = false;
}

SizeRow::SizeRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , scale(paneContext.texts.language.metric)
    , width(new BoundedBox(Body()))
    , height(new BoundedBox(Body()))
    , message(new FieldMessage(Body())) {
    const auto& size = static_cast<const PPDXCustomPageSizeControl&>(*field.control);
    const auto prepare = [&](BoundedBox* box, float least, float largest, const PaneWord& name) {
        box->setDecimals(scale.decimals);
        box->setRange(scale.Least(static_cast<double>(least)), scale.Largest(static_cast<double>(largest)));
        box->setSingleStep(scale.step);
        box->setSuffix(QLatin1Char(' ') + context.Say(scale.unit));
        box->setKeyboardTracking(false);
        box->setFocusPolicy(Qt::StrongFocus);
        box->setAccessibleName(context.Say(name));
        QObject::connect(box, &QDoubleSpinBox::valueChanged, box, [this] { TakeSize(); });
        nameBounds(context, *box, *message);
    };
    prepare(width, size.MinWidth(), size.MaxWidth(), words::width);
    prepare(height, size.MinHeight(), size.MaxHeight(), words::height);
    auto* both = new QWidget(Body());
    auto* layout = new QHBoxLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(width, 1);
    auto* times = new QLabel(QStringLiteral("×"), both);
    times->setTextFormat(Qt::PlainText);
    layout->addWidget(times);
    layout->addWidget(height, 1);
    Take(aboveMessage(both, message, Body()), width, false);
    width->setAccessibleName(qText(field.name) + QStringLiteral(", ") + context.Say(words::width));
}

void SizeRow::TakeSize() {
    if (!updating) {
        Set(scale.ValueText(width->value(), height->value()));
    }
}

void SizeRow::UpdateValue() {
    const auto& size = static_cast<const PPDXCustomPageSizeControl&>(*field.control);
    updating = true;
    width->setValue(static_cast<double>(size.GetWidth()) / scale.points);
    height->setValue(static_cast<double>(size.GetHeight()) / scale.points);
    updating = false;
}

bool SizeRow::UpdateAllowed() {
    const QString why = qText(whySizeIsUnused(context.texts));
    for (BoundedBox* box : {width, height}) {
        box->setEnabled(why.isEmpty());
        setPlainToolTip(*box, why.isEmpty() ? context.Say(words::bounds, box->textFromValue(box->minimum()),
                                                          box->textFromValue(box->maximum()) + box->suffix())
                                            : why);
    }
    return false;
}

} // namespace torka
