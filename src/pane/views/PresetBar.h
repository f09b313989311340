#pragma once

#include "pane/presentation/PresetChoice.h"
#include "pane/views/PaneContext.h"

#include <QPointer>
#include <QTimer>
#include <QToolButton>

#include <string>

class QDialog;
class QMenu;

namespace torka {

// The presets of the printer as one button: it shows the chosen preset and whether the settings have left it,
// and its menu applies, saves, updates, renames and deletes.
//
// A preset is applied through the editor, as one step that can be undone. Dialogs are window-modal, stand
// above the bar and end with it.
class PresetBar final : public QToolButton {
public:
    // The context has pane data.
    explicit PresetBar(PaneContext& paneContext, QWidget* parent = nullptr);

    // UTF-8; "" for none.
    const std::string& Chosen() const { return presets.Chosen(); }
    void Apply(const std::string& name);
    void AskForSaving();
    void Update();
    void AskForRenaming();
    void AskForDeleting();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void FillMenu();
    void CompareNow();
    void ShowState();
    // Shows what is chosen now, and why something was not done unless `problem` is "".
    void Tell(const std::string& problem);
    void Open(QDialog* dialog);
    QString StateText() const;

    PaneContext& context;
    PresetChoice presets;
    QMenu* entries;
    QPointer<QDialog> dialog;
    QTimer pause; // several changes at once are compared once
    bool wasShown = false;
};

} // namespace torka
