#include "pane/views/NumberFields.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/NumberText.h"
#include "pane/views/FieldTexts.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>

#include <algorithm>
#include <cmath>

namespace torka {
namespace {

constexpr int mostSliderSteps = 1000;

// "%f" in the C locale.
std::string sixDecimals(double number) { return NumberText(static_cast<float>(number), 6).Text(); }

} // namespace

NumberRow::NumberRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , slider(new QSlider(Qt::Horizontal, Body()))
    , box(new QDoubleSpinBox(Body())) {
    const ShownUnit unit = shownUnit(field);
    int decimals = unit.decimals;
    if (const auto* range = dynamic_cast<const PPDXRangeControl*>(field.control)) {
        isWhole = true;
        minimum = static_cast<double>(range->MinVal());
        maximum = static_cast<double>(range->MaxVal());
        step = static_cast<double>(std::max(range->Increment(), 1L));
    } else if (const auto* decimal = dynamic_cast<const PPDXFloatRangeControl*>(field.control)) {
        minimum = static_cast<double>(decimal->MinVal());
        maximum = static_cast<double>(decimal->MaxVal());
        decimals = std::max(decimals, decimalsFor(decimal->Increment()));
        step = static_cast<double>(decimal->Increment());
        if (!(step > 0)) {
            step = std::pow(10.0, -decimals);
        }
    }
    factor = unit.factor;
    maximum = std::max(maximum, minimum);
    const double steps = std::clamp((maximum - minimum) / step, 1.0, double{mostSliderSteps});
    slider->setRange(0, static_cast<int>(std::lround(steps)));
    constexpr int pages = 10;
    slider->setPageStep(std::max(1, slider->maximum() / pages));
    slider->setFocusPolicy(Qt::StrongFocus);
    slider->setAccessibleName(qText(field.name));
    box->setDecimals(decimals);
    box->setRange(minimum * factor, maximum * factor);
    box->setSingleStep(step * factor);
    box->setKeyboardTracking(false); // a number half typed is no value
    box->setFocusPolicy(Qt::StrongFocus);
    box->setAccelerated(true);
    if (!unit.name.isEmpty()) {
        box->setSuffix(QLatin1Char(' ') + unit.name);
    }
    auto* both = new QWidget(Body());
    auto* layout = new QHBoxLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(slider, 1);
    layout->addWidget(box);
    QObject::connect(slider, &QSlider::valueChanged, slider, [this](int place) {
        if (!updating) {
            const double share = static_cast<double>(place) / slider->maximum();
            SetNumber(minimum + std::round(share * (maximum - minimum) / step) * step,
                      slider->isSliderDown());
        }
    });
    QObject::connect(slider, &QSlider::sliderReleased, slider, [this] { context.editor.EndStep(); });
    QObject::connect(box, &QDoubleSpinBox::valueChanged, box, [this](double shown) {
        if (!updating) {
            SetNumber(shown / factor, false);
        }
    });
    Take(both, box, false);
}

double NumberRow::Number() const {
    if (isWhole) {
        return static_cast<double>(static_cast<const PPDXRangeControl*>(field.control)->GetValue());
    }
    return static_cast<double>(static_cast<const PPDXFloatRangeControl*>(field.control)->GetValue());
}

void NumberRow::SetNumber(double number, bool continues) {
    const double held = std::clamp(number, minimum, maximum);
    const std::string value =
        isWhole ? NumberText(std::lround(held)).Text() : NumberText(static_cast<float>(held), 4).Text();
    const auto change = [&] { field.control->SetCurrentControlWithCFString(cfString(value)); };
    if (!context.editor.Edit(*field.control, change, continues)) {
        ShowValue();
    }
}

void NumberRow::UpdateValue() {
    updating = true;
    const double number = Number();
    box->setValue(number * factor);
    const double span = maximum - minimum;
    const auto place =
        span > 0 ? static_cast<int>(std::lround((number - minimum) / span * slider->maximum())) : 0;
    if (!slider->isSliderDown()) { // under the person's hand it stays
        slider->setValue(place);
    }
    updating = false;
}

SizeRow::SizeRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , width(new QDoubleSpinBox(Body()))
    , height(new QDoubleSpinBox(Body()))
    , points(paneContext.metric ? pointsPerMillimetre : pointsPerInch) {
    const auto& size = static_cast<const PPDXCustomPageSizeControl&>(*field.control);
    const QString unit = context.Say(context.metric ? words::millimetres : words::inches);
    const auto prepare = [&](QDoubleSpinBox* box, float least, float most, const PaneWord& name) {
        const int decimals = context.metric ? 1 : 2;
        const double grid = std::pow(10.0, decimals);
        box->setDecimals(decimals);
        // Inwards to what the box can show, so that a bound shown is a bound kept.
        box->setRange(std::ceil(static_cast<double>(least) / points * grid) / grid,
                      std::floor(static_cast<double>(most) / points * grid) / grid);
        box->setSingleStep(context.metric ? 1.0 : 0.1);
        box->setSuffix(QLatin1Char(' ') + unit);
        box->setKeyboardTracking(false);
        box->setFocusPolicy(Qt::StrongFocus);
        box->setAccessibleName(context.Say(name));
        QObject::connect(box, &QDoubleSpinBox::valueChanged, box, [this] { TakeSize(); });
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
    Take(both, width, false);
    width->setAccessibleName(qText(field.name) + QStringLiteral(", ") + context.Say(words::width));
}

void SizeRow::TakeSize() {
    if (!updating) {
        Set(sixDecimals(width->value() * points) + " " + sixDecimals(height->value() * points));
    }
}

void SizeRow::UpdateValue() {
    const auto& size = static_cast<const PPDXCustomPageSizeControl&>(*field.control);
    updating = true;
    width->setValue(static_cast<double>(size.GetWidth()) / points);
    height->setValue(static_cast<double>(size.GetHeight()) / points);
    updating = false;
}

bool SizeRow::UpdateAllowed() {
    const PPDXControl* printSize = context.editor.FindControl("*QVPrintSize");
    const bool used = printSize == nullptr || PaneEditor::Value(*printSize) == "CustomPrintSize";
    width->setEnabled(used);
    height->setEnabled(used);
    const QString why =
        used ? QString()
             : context.Say(words::onlyWith, shownSetting(context, {"*QVPrintSize", "CustomPrintSize"}));
    setPlainToolTip(*width, why);
    setPlainToolTip(*height, why);
    return false;
}

} // namespace torka
