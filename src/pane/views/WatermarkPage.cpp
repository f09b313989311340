// SPDX-License-Identifier: Apache-2.0
#include "pane/views/WatermarkPage.h"

#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/views/FieldMessage.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RoomyRows.h"
#include "pane/views/WatermarkPreview.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>
#include <optional>

namespace torka {

WatermarkPage::WatermarkPage(PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext)
    , watermarks(paneContext.editor, *paneContext.data)
    , list(new QListWidget(this))
    , add(new QPushButton(context.Say(words::watermarkAdd), this))
    , edit(new QPushButton(context.Say(words::watermarkEdit), this))
    , remove(new QPushButton(context.Say(words::watermarkDelete), this))
    , firstPage(new QCheckBox(context.Say(words::watermarkFirstPage), this))
    , preview(new WatermarkPreview(context, this))
    , missing(new FieldMessage(this)) {
    list->setObjectName(QStringLiteral("watermarks"));
    list->setAccessibleName(context.Say(words::watermark));
    list->setItemDelegate(new RoomyRows(list));
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTextElideMode(Qt::ElideRight);
    list->installEventFilter(this);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {add, edit, remove}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    auto* side = new QVBoxLayout;
    side->addWidget(list, 1);
    side->addLayout(buttons);
    side->addWidget(firstPage);
    auto* columns = new QHBoxLayout(this);
    columns->addLayout(side, 1);
    auto* picture = new QVBoxLayout;
    picture->addWidget(preview, 1);
    picture->addWidget(missing);
    columns->addLayout(picture, 1);
    connect(list, &QListWidget::currentRowChanged, this, [this](int row) { Select(row - 1); });
    connect(list, &QListWidget::itemDoubleClicked, this, [this] { Edit(); });
    connect(add, &QPushButton::clicked, this, [this] { Add(); });
    connect(edit, &QPushButton::clicked, this, [this] { Edit(); });
    connect(remove, &QPushButton::clicked, this, [this] { Delete(); });
    connect(firstPage, &QCheckBox::clicked, this,
            [this](bool checked) { watermarks.SetFirstPageOnly(checked); });
    Update();
}

void WatermarkPage::Update() {
    const QSignalBlocker blocker(list);
    QStringList texts{context.Say(words::watermarkNone)};
    for (const std::string& text : watermarks.Texts()) {
        texts.append(qText(text));
    }
    while (list->count() > texts.size()) {
        delete list->takeItem(list->count() - 1);
    }
    for (int row = 0; row < texts.size(); ++row) {
        if (row == list->count()) {
            list->addItem(QString());
        }
        list->item(row)->setText(texts[row]);
        list->item(row)->setToolTip(plainToolTip(texts[row]));
    }
    const std::optional<WatermarkFields> chosen = watermarks.ChosenFields();
    list->setCurrentRow(watermarks.Chosen() + 1);
    for (QWidget* widget : std::initializer_list<QWidget*>{edit, remove, firstPage}) {
        widget->setEnabled(chosen.has_value());
    }
    firstPage->setChecked(chosen && chosen->isFirstPageOnly);
    preview->TakePaper();
    preview->Show(chosen);
    missing->Tell(preview->Missing());
}

void WatermarkPage::Select(int index) {
    watermarks.Choose(index);
    Update();
}

void WatermarkPage::Add() { OpenDialog(newWatermark(context.texts), WatermarkList::noSelection); }

void WatermarkPage::Edit() {
    if (const auto chosen = watermarks.ChosenFields()) {
        OpenDialog(*chosen, watermarks.Chosen());
    }
}

void WatermarkPage::OpenDialog(const WatermarkFields& fields, int index) {
    dialog = new WatermarkDialog(context, fields, index == WatermarkList::noSelection, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    connect(dialog, &QDialog::accepted, this, [this, index, opened = dialog.data()] {
        watermarks.Put(index, opened->Fields());
        ListChanged(Qt::QueuedConnection); // the dialog still works below this call
    });
    dialog->open();
}

void WatermarkPage::Delete() {
    if (watermarks.RemoveChosen()) {
        ListChanged(Qt::DirectConnection);
    }
}

// Holds the panel and stores a copy: storing may run the event loop, in which the print dialog may release
// the panel, and this page may end with its open dialogs.
void WatermarkPage::ListChanged(Qt::ConnectionType stored) {
    const std::shared_ptr<void> alive =
        context.panel == nullptr ? nullptr : context.panel->shared_from_this();
    Update();
    context.editor.Refresh();
    QObject* until = alive ? static_cast<QObject*>(QCoreApplication::instance()) : this;
    QMetaObject::invokeMethod(
        until,
        [alive, list = watermarks] {
            WatermarkEditing kept = list;
            kept.Keep();
        },
        stored);
}

// Keys of the list: Return, F2, Delete and Insert.
bool WatermarkPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Delete) {
            Delete();
            return true;
        }
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2) {
            Edit();
            return true;
        }
        if (key == Qt::Key_Insert) {
            Add();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace torka
