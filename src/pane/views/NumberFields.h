// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/NumberScale.h"
#include "pane/views/FieldRow.h"

class QSlider;

namespace torka {

class BoundedBox;
class FieldMessage;

// A whole or decimal number within bounds: a slider, and a spin box with the unit.
class NumberRow final : public FieldRow {
public:
    NumberRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override { return false; }
    // `number`: as the control has it.
    void SetNumber(double number, bool continues);

    NumberScale scale;
    QSlider* slider;
    BoundedBox* box;
    FieldMessage* message;
    bool updating = false;
};

// A custom page size: width and height in the unit of the country. Enabled while the print size is a custom
// one.
class SizeRow final : public FieldRow {
public:
    SizeRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override;
    void TakeSize();

    SizeScale scale;
    BoundedBox* width;
    BoundedBox* height;
    FieldMessage* message;
    bool updating = false;
};

} // namespace torka
