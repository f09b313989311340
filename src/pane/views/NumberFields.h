#pragma once

#include "pane/views/FieldRow.h"

class QDoubleSpinBox;
class QSlider;

namespace torka {

// A whole or a decimal number between bounds: a slider and a spin box with the unit.
class NumberRow final : public FieldRow {
public:
    NumberRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override { return false; }
    // In the control's own numbers.
    double Number() const;
    void SetNumber(double number, bool continues);

    QSlider* slider;
    QDoubleSpinBox* box;
    double minimum = 0;
    double maximum = 0;
    double step = 1;
    double factor = 1; // from the control's numbers to the shown ones
    bool isWhole = false;
    bool updating = false;
};

// A custom page size: width and height in the country's unit, usable while the print size is a custom one.
class SizeRow final : public FieldRow {
public:
    SizeRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override;
    void TakeSize();

    QDoubleSpinBox* width;
    QDoubleSpinBox* height;
    double points = 1; // of a unit
    bool updating = false;
};

} // namespace torka
