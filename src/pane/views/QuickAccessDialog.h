// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/panel/PaneInterface.h"
#include "pane/presentation/QuickAccessChoice.h"
#include "pane/views/PaneContext.h"

#include <QDialog>
#include <QPointer>

#include <memory>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace torka {

// The settings that can stand in the quick-access area, by page, beside the chosen ones in their order.
// Nothing is stored before OK.
class QuickAccessDialog final : public QDialog {
public:
    QuickAccessDialog(PaneContext& paneContext, const std::vector<std::string>& keywords, QWidget* parent);

    // The chosen keywords in their order, at most maximumQuickAccess.
    std::vector<std::string> Chosen() const;

    // For the tests; no caller here
    QLineEdit* SearchField() const { return search; }
    QTreeWidget* Available() const { return available; }
    QListWidget* ChosenList() const { return chosen; }
    QPushButton* AddButton() const { return add; }
    QPushButton* RemoveButton() const { return remove; }
    QPushButton* UpButton() const { return up; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Arrange();
    void Connect();
    void ListAvailable();
    void ShowMatches();
    void AddSelected();
    void RemoveSelected();
    void Move(int step);
    void Append(const std::string& keyword, const QString& name);
    void Update();
    bool IsFull() const;

    PaneContext& context;
    QuickAccessChoice choice;
    QLineEdit* search;
    QTreeWidget* available;
    QListWidget* chosen;
    QLabel* count;
    QLabel* hint;
    QPushButton* add;
    QPushButton* remove;
    QPushButton* up;
    QPushButton* down;
};

// Opens the dialog above the pane. After OK the entries are stored and drawn.
class QuickAccessSheet final : public CustomizeQuickAccessView {
public:
    QuickAccessSheet(PaneContext& paneContext, QWidget* paneRoot)
        : context(paneContext)
        , root(paneRoot) {}
    ~QuickAccessSheet() override;
    bool validWindowSessionRunning() const override { return dialog != nullptr; }
    void doButtonCancelClicked() override;
    void openSheet() override;

    // For the tests; no caller here
    QuickAccessDialog* Dialog() const { return dialog; }

private:
    void Take(const std::vector<std::string>& keywords);

    PaneContext& context;
    QPointer<QWidget> root;
    QPointer<QuickAccessDialog> dialog;
};

} // namespace torka
