#pragma once

#include "jobproperties/core/JobSettings.h"
#include "jobproperties/core/PrinterDescription.h"

#include <QWidget>

#include <functional>

class QHBoxLayout;
class QLabel;

namespace torka::jobproperties {

class GlyphButton;

// One setting: its name, an editor that suits its kind, and what is to be said of it (locked, changed).
// Values are written into the settings as they are edited and read back by ShowValue. Settings and
// description belong to others and outlive the row.
class SettingRow : public QWidget {
    Q_OBJECT
public:
    // A setting that the description does not know has only its key; `label` is what is shown for it.
    SettingRow(JobSettings& settings, std::string key, const DescribedSetting* described,
               const QString& label, QWidget* parent = nullptr);

    const std::string& Key() const { return key; }
    // Takes the value from the settings.
    void ShowValue();
    void SetHelp(const QString& help);
    // Whether name, key, choices or `context` contain every word; words are in lower case.
    bool Matches(const QStringList& words, const QString& context) const;

Q_SIGNALS:
    void Edited();

private:
    void Build(const QString& label);
    // The editor for the kind, or a line when the value is none that the kind has. Sets showEditor.
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
