// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/PresetChoice.h"
#include "pane/views/PaneContext.h"

#include <QPointer>
#include <QTimer>
#include <QToolButton>

#include <functional>
#include <string>

class QActionGroup;
class QDialog;
class QMenu;

namespace torka {

// The presets of the printer as one button. It shows the chosen preset and whether the settings still match
// it. Its menu applies, saves, updates, renames and deletes presets, and keeps the
// settings for all programs.
//
// Applying a preset is one step of the editor and can be undone. The dialogs are window-modal, belong to the
// bar and end with it.
class PresetBar final : public QToolButton {
public:
    // The context must have pane data.
    explicit PresetBar(PaneContext& paneContext, QWidget* parent = nullptr);

    void Apply(const std::string& name);
    void AskForSaving();
    void ServeAllPrograms();
    void ServeOnlyThisPane();
    void Update();
    void AskForRenaming();
    void AskForDeleting();

    // UTF-8; "" for none.
    const std::string& Chosen() const { return presets.Chosen(); }
    // Called when the bar shows its state, at first after the comparison with the settings of the dialog.
    void WhenShown(std::function<void()> action) { whenShown = std::move(action); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void FillMenu();
    void CompareNow();
    void ShowState();
    // Updates the button. Shows `problem` unless it is "".
    void Tell(const std::string& problem);
    void Open(QDialog* dialog);
    QString StateText() const;

    PaneContext& context;
    PresetChoice presets;
    QMenu* entries;
    QActionGroup* names; // of the entries that name presets
    QPointer<QDialog> dialog;
    std::function<void()> whenShown;
    QTimer pause;      // joins several changes into one comparison
    QTimer firstShown; // leaves the show event before the comparison
    bool wasShown = false;
};

} // namespace torka
