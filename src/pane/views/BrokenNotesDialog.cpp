// SPDX-License-Identifier: Apache-2.0
#include "pane/views/BrokenNotesDialog.h"

#include "pane/views/PaneColors.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RoomyRows.h"
#include "platform/qt/LetterWidth.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace torka {
BrokenNotesDialog::BrokenNotesDialog(const PaneContext& context, const std::vector<BrokenNote>& notes,
                                     QWidget* parent)
    : QDialog(parent)
    , list(new QListWidget(this)) {
    setPalette(readableColors());
    setObjectName(QStringLiteral("brokenNotes"));
    setWindowTitle(context.Say(words::brokenNotesTitle));
    auto* introduction = new QLabel(context.Say(words::brokenNotes), this);
    introduction->setTextFormat(Qt::PlainText);
    introduction->setWordWrap(true);
    alignLeading(*introduction);
    list->setAccessibleName(introduction->text());
    list->setItemDelegate(new RoomyRows(list));
    list->setWordWrap(true);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    constexpr int characters = 64;
    constexpr int lines = 8;
    list->setMinimumSize(letterWidth(fontMetrics()) * characters, fontMetrics().lineSpacing() * lines);
    for (const BrokenNote& note : notes) {
        auto* item = new QListWidgetItem(qText(note.sentence), list);
        item->setData(keywordRole, qText(note.keyword));
        item->setToolTip(plainToolTip(item->text()));
    }
    list->setCurrentRow(0);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* show = buttons->addButton(context.Say(words::brokenNotesShow), QDialogButtonBox::ActionRole);
    show->setDefault(true);
    buttons->addButton(context.Say(words::printAnyway), QDialogButtonBox::AcceptRole)->setAutoDefault(false);
    buttons->addButton(context.Say(words::cancel), QDialogButtonBox::RejectRole)->setAutoDefault(false);
    connect(show, &QPushButton::clicked, this, [this] { GoToField(); });
    connect(list, &QListWidget::itemActivated, this, [this] { GoToField(); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(introduction);
    rows->addWidget(list, 1);
    rows->addWidget(buttons);
}

void BrokenNotesDialog::GoToField() {
    if (const QListWidgetItem* item = list->currentItem()) {
        fieldToShow = item->data(keywordRole).toString().toStdString();
        reject();
    }
}

} // namespace torka
