// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/PrinterDescription.h"
#include "jobproperties/core/Session.h"

#include <QDialog>
#include <QHash>
#include <QTimer>

#include <vector>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QScrollArea;
class QStackedWidget;
class QVBoxLayout;

namespace torka::jobproperties {

class SettingRow;
class StatusPanel;
class WatermarkEditor;

// The full set of settings of one session, which outlives the window: pages on the left, the settings of the
// page or of a search in the middle, the printer's state on the right. Edits change the session's settings at
// once; the dialog's result decides whether they count.
class JobPropertiesWindow : public QDialog {
    Q_OBJECT
public:
    JobPropertiesWindow(Session& session, const QString& title, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // One group of settings. Shown on its page, and in a search that matches one of its rows.
    struct Group {
        QGroupBox* box = nullptr;
        QVBoxLayout* column = nullptr;
        QString page;
        QString title;
        QString searchText; // page and title in lower case
        std::vector<SettingRow*> rows;
    };

    void ReadDescription();
    QWidget* MakeTop();
    QWidget* MakeMiddle();
    QWidget* MakeBottom();
    void FillPages();
    void FillGroups();
    Group& GroupFor(const QString& page, const QString& title);
    void AddRow(const JobSetting& setting);
    void FillPresets();
    static void ShowTitle(const Group& group, QString title);
    void ShowPage();
    void ShowEditedState();
    void ShowAllValues();
    void ApplyPreset();
    void Restore();
    void Search(const QString& text);
    void FocusFirstRow();

    Session& session;
    PrinterDescription description;
    QString descriptionError;
    std::vector<Group> groups;         // in the order of the description
    QHash<QString, std::size_t> index; // page, tab and title -> group
    QString copiesPage;                // the first page: no description contains the copies
    QTimer refresh;                    // asks for the printer's state

    QLineEdit* search = nullptr;
    QComboBox* presets = nullptr;
    QPushButton* applyPreset = nullptr;
    QLabel* presetState = nullptr;
    QListWidget* pages = nullptr;
    QStackedWidget* stack = nullptr;
    QScrollArea* scroll = nullptr;
    QLabel* notice = nullptr;
    QVBoxLayout* groupColumn = nullptr;
    WatermarkEditor* watermarks = nullptr;
    StatusPanel* status = nullptr;
    QPushButton* restore = nullptr;
};

} // namespace torka::jobproperties
