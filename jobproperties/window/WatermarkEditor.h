// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/JobSettings.h"
#include "jobproperties/core/Watermark.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace torka::jobproperties {

class WatermarkPreview;

// Selects the watermark to print and edits each one. Writes every change into the settings, which outlive it.
// Rejects a change that the pane could not accept, with a message.
class WatermarkEditor : public QWidget {
    Q_OBJECT
public:
    explicit WatermarkEditor(JobSettings& settings, QWidget* parent = nullptr);
    // Reads all values from the settings.
    void ShowValues();

Q_SIGNALS:
    void Edited();

private:
    QWidget* MakeListSide();
    QWidget* MakeFields();
    void ShowList();
    void ShowFields();
    void ShowColor(const Watermark& watermark);
    Watermark Current() const;
    std::size_t Position() const;
    void Add();
    void Remove();
    void ChooseColor();
    // Changes one field of the displayed watermark and keeps the rest of its definition.
    template <typename Change>
    void Edit(Change&& change);

    JobSettings& settings;
    bool isShowing = false; // widgets change because the settings did
    QComboBox* printed;
    QLabel* lockNote;
    QListWidget* list;
    QPushButton* remove;
    QWidget* fields;
    QLineEdit* text;
    QComboBox* font;
    QSpinBox* size;
    QDoubleSpinBox* angle;
    QSpinBox* right;
    QSpinBox* up;
    QPushButton* color;
    QCheckBox* clear;
    QCheckBox* firstPageOnly;
    QLabel* message;
    WatermarkPreview* preview;
};

} // namespace torka::jobproperties
