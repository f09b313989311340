#pragma once

#include "pane/data/PresetStore.h"
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
    const std::string& Chosen() const { return chosen; }
    bool IsChanged() const { return isChanged; }
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
    void Choose(const std::string& name);
    void CompareNow();
    void ShowState();
    // False, with the reason told, when the store did not do it.
    bool Done(PresetStore::Result result, const std::string& name);
    void Tell(const QString& text);
    void Open(QDialog* dialog);
    QString StateText() const;

    PaneContext& context;
    PresetStore store;
    QMenu* entries;
    QPointer<QDialog> dialog;
    QTimer pause; // several changes at once are compared once
    std::string chosen;
    CFDictionaryRef settingsOfChosen; // as they were after applying or saving
    bool isChanged = false;
    bool wasShown = false;
};

} // namespace torka
