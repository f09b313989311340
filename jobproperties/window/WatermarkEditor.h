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

// The job's watermarks: which one is printed, and what each looks like. Writes into the settings, which
// outlive it, as it is used; a change that the pane could not take is not made, and said.
class WatermarkEditor : public QWidget {
    Q_OBJECT
public:
    explicit WatermarkEditor(JobSettings& settings, QWidget* parent = nullptr);
    // Takes everything from the settings.
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
    // Changes one thing of the watermark that is shown; the rest of its definition stays as it is.
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
