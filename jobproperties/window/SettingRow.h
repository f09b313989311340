// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/JobSettings.h"
#include "jobproperties/core/PrinterDescription.h"

#include <QWidget>

#include <functional>

class QHBoxLayout;
class QLabel;

namespace torka::jobproperties {

class GlyphButton;

// One setting: its name, an editor for its kind, and notes (locked, changed). Edits go to the settings at
// once; ShowValue reads them back. Does not own settings and description, which outlive the row.
class SettingRow : public QWidget {
    Q_OBJECT
public:
    // A setting without description has only its key; `label` is the displayed name.
    SettingRow(JobSettings& settings, std::string key, const DescribedSetting* described,
               const QString& label, QWidget* parent = nullptr);

    const std::string& Key() const { return key; }
    // Reads the value from the settings.
    void ShowValue();
    void SetHelp(const QString& help);
    // Tells whether name, key, choices or `context` contain every word; words are in lower case.
    bool Matches(const QStringList& words, const QString& context) const;

Q_SIGNALS:
    void Edited();

private:
    void Build(const QString& label);
    // Makes the editor for the kind, or a line when the value does not fit the kind. Sets showEditor.
    QWidget* MakeEditor();
    QWidget* MakeChoice();
    QWidget* MakeChoices();
    QWidget* MakeSwitch();
    QWidget* MakeWhole();
    QWidget* MakeDecimal();
    QWidget* MakeLine();
    QWidget* MakeLockNote(Lock lock);
    void Take(const std::string& value);
    void ShowChanged();

    JobSettings& settings;
    std::string key;
    const DescribedSetting* described; // null: unknown
    QString shownLabel;
    QString searchText; // lower case
    QLabel* name = nullptr;
    QWidget* editor = nullptr;
    GlyphButton* undo = nullptr;
    std::function<void(const std::string&)> showEditor;
    bool isShowing = false; // the editor changes because the value did
};

} // namespace torka::jobproperties
