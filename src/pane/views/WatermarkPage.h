// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/WatermarkList.h"
#include "pane/presentation/WatermarkEditing.h"
#include "pane/views/PaneContext.h"
#include "pane/views/WatermarkDialog.h"

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QListWidget;
class QPushButton;

namespace torka {

class FieldMessage;
class WatermarkPreview;

// The watermarks of the printer, the one that this job prints, and a preview. The choice is a setting and can
// be undone. The list belongs to the printer and is stored after each change.
class WatermarkPage final : public QWidget {
public:
    // The context must have pane data.
    explicit WatermarkPage(PaneContext& paneContext, QWidget* parent = nullptr);
    // Called before the page is shown, and after each change while it is visible.
    void Update();

    void Add();
    void Edit();
    void Delete();

    // For the tests; no caller here
    WatermarkDialog* Dialog() const { return dialog; }
    QListWidget* List() const { return list; }
    QCheckBox* FirstPageBox() const { return firstPage; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Select(int index);
    void OpenDialog(const WatermarkFields& fields, int index);
    void ListChanged(Qt::ConnectionType stored);

    PaneContext& context;
    WatermarkEditing watermarks;
    QListWidget* list;
    QPushButton* add;
    QPushButton* edit;
    QPushButton* remove;
    QCheckBox* firstPage;
    WatermarkPreview* preview;
    FieldMessage* missing; // what the font cannot print
    QPointer<WatermarkDialog> dialog;
};

} // namespace torka
