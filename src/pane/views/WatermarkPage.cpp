#include "pane/views/WatermarkPage.h"

#include "pane/data/PDEData.h"
#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RoomyRows.h"
#include "pane/views/WatermarkDialog.h"
#include "pane/views/WatermarkPreview.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>
#include <utility>

namespace torka {

WatermarkPage::WatermarkPage(PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext)
    , list(new QListWidget(this))
    , add(new QPushButton(context.Say(words::watermarkAdd), this))
    , edit(new QPushButton(context.Say(words::watermarkEdit), this))
    , remove(new QPushButton(context.Say(words::watermarkDelete), this))
    , firstPage(new QCheckBox(context.Say(words::watermarkFirstPage), this))
    , preview(new WatermarkPreview(context, this)) {
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
    columns->addWidget(preview, 1);
    connect(list, &QListWidget::currentRowChanged, this, [this](int row) { Select(row - 1); });
    connect(list, &QListWidget::itemDoubleClicked, this, [this] { Edit(); });
    connect(add, &QPushButton::clicked, this, [this] { Add(); });
    connect(edit, &QPushButton::clicked, this, [this] { Edit(); });
    connect(remove, &QPushButton::clicked, this, [this] { Delete(); });
    connect(firstPage, &QCheckBox::clicked, this, [this](bool checked) {
        context.editor.EditAll([&] {
            if (ZANWatermark* chosen = Chosen()) {
                chosen->SetFirstPageOnly(checked ? "True" : "False");
            }
        });
    });
    Update();
}

ZANWatermark* WatermarkPage::Chosen() const { return context.data->Watermarks().Selected(); }

void WatermarkPage::Update() {
    WatermarkList& watermarks = context.data->Watermarks();
    const QSignalBlocker blocker(list);
    QStringList texts{context.Say(words::watermarkNone)};
    for (std::size_t i = 0; i < watermarks.Count(); ++i) {
        texts.append(qText(watermarks.At(i)->Text()));
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
    const ZANWatermark* chosen = Chosen();
    list->setCurrentRow(chosen == nullptr ? 0 : watermarks.SelectedIndex() + 1);
    for (QWidget* widget : std::initializer_list<QWidget*>{edit, remove, firstPage}) {
        widget->setEnabled(chosen != nullptr);
    }
    firstPage->setChecked(chosen != nullptr && chosen->IsFirstPageOnly());
    preview->TakePaper();
    preview->Show(chosen == nullptr ? std::nullopt : std::optional(WatermarkFields::Of(*chosen)));
}

void WatermarkPage::Select(int index) {
    context.editor.EditAll([&] { context.data->Watermarks().Select(index); });
    Update();
}

void WatermarkPage::Add() {
    WatermarkFields fields;
    fields.text = context.Say(words::watermarkNew).toStdString();
    fields.red = fields.green = fields.blue = 0xC8;
    fields.angle = 450;
    fields.fontSize = 96;
    fields.fontName = "Helvetica-Bold";
    OpenDialog(fields, WatermarkList::noSelection);
}

void WatermarkPage::Edit() {
    if (const ZANWatermark* chosen = Chosen()) {
        OpenDialog(WatermarkFields::Of(*chosen), context.data->Watermarks().SelectedIndex());
    }
}

void WatermarkPage::OpenDialog(const WatermarkFields& fields, int index) {
    dialog = new WatermarkDialog(context, fields, index == WatermarkList::noSelection, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    connect(dialog, &QDialog::accepted, this,
            [this, index, opened = dialog.data()] { Replace(index, opened->Fields()); });
    dialog->open();
}

// A watermark in the place of another, or a new one at the end; it is the chosen one from now on.
void WatermarkPage::Replace(int index, const WatermarkFields& fields) {
    WatermarkList& watermarks = context.data->Watermarks();
    auto made = std::make_unique<ZANWatermark>(fields.Definition().c_str());
    made->SetFirstPageOnly(fields.isFirstPageOnly ? "True" : "False");
    const auto place = static_cast<std::size_t>(index);
    auto all = watermarks.TakeAll();
    if (index >= 0 && place < all.size()) {
        all[place] = std::move(made);
    } else {
        index = static_cast<int>(all.size());
        all.push_back(std::move(made));
    }
    for (auto& watermark : all) {
        watermarks.Append(std::move(watermark));
    }
    watermarks.Select(index);
    ListChanged();
}

void WatermarkPage::Delete() {
    WatermarkList& watermarks = context.data->Watermarks();
    const int index = watermarks.SelectedIndex();
    if (Chosen() == nullptr) {
        return;
    }
    auto all = watermarks.TakeAll();
    all.erase(all.begin() + index);
    for (auto& watermark : all) {
        watermarks.Append(std::move(watermark));
    }
    watermarks.Select(WatermarkList::noSelection);
    ListChanged();
}

// Storing may wait for the spooler, and the print dialog go on meanwhile: the panel is held.
void WatermarkPage::ListChanged() {
    const std::shared_ptr<void> alive =
        context.panel == nullptr ? nullptr : context.panel->shared_from_this();
    Update();
    context.editor.Refresh();
    PDEData& paneData = *context.data;
    if (paneData.Watermarks().Count() == 0) {
        paneData.ForgetWatermarkPreferences();
    } else {
        paneData.SaveWatermarksToPreferences();
    }
}

// Return and Delete on the list.
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
