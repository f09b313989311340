// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/WatermarkFields.h"
#include "pane/views/PaneContext.h"

#include <QColor>
#include <QDialog>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace torka {

class FieldMessage;
class WatermarkPreview;

// Edits one watermark, with a preview.
class WatermarkDialog final : public QDialog {
public:
    WatermarkDialog(PaneContext& paneContext, const WatermarkFields& edited, bool isNew, QWidget* parent);
    WatermarkFields Fields() const;
    void accept() override; // refused while there is no text or no font

private:
    void MakeFields();
    void FillFonts();
    void FillColors();
    void ChooseColor(int index);
    void TakeColor(const QColor& other);
    QDoubleSpinBox* MakeOffset(const char* name, std::int32_t points);
    void Update();

    PaneContext& context;
    const WatermarkFields before;
    QColor color;
    QLineEdit* text;
    QComboBox* font;
    QSpinBox* size;
    QComboBox* colors;
    QDoubleSpinBox* angle;
    QDoubleSpinBox* right;
    QDoubleSpinBox* up;
    WatermarkPreview* preview;
    FieldMessage* missing; // what the font cannot print
    QPushButton* acceptButton = nullptr;
    int lastColor = 0;
};

} // namespace torka
