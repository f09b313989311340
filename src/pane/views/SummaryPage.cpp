// SPDX-License-Identifier: Apache-2.0
#include "pane/views/SummaryPage.h"

#include "pane/presentation/PageList.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RoomyRows.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace torka {

SummaryPage::SummaryPage(PaneContext& paneContext, std::function<void(const std::string&)> showField,
                         QWidget* parent)
    : QWidget(parent)
    , context(paneContext)
    , show(std::move(showField))
    , count(new QLabel(this))
    , list(new QTreeWidget(this))
    , showButton(new QPushButton(context.Say(words::show), this))
    , resetButton(new QPushButton(context.Say(words::resetSelected), this)) {
    count->setTextFormat(Qt::PlainText);
    count->setWordWrap(true);
    alignLeading(*count);
    list->setHeaderLabels({context.Say(words::settingColumn), context.Say(words::valueColumn),
                           context.Say(words::defaultColumn)});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setItemDelegate(new RoomyRows(list));
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setAccessibleName(context.Say(words::summary));
    list->header()->setStretchLastSection(true);
    showButton->setAutoDefault(false);
    resetButton->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(showButton);
    buttons->addWidget(resetButton);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(count);
    layout->addWidget(list, 1);
    layout->addLayout(buttons);
    const auto enable = [this] {
        const auto selected = list->selectedItems().size();
        showButton->setEnabled(selected == 1);
        resetButton->setEnabled(selected > 0);
    };
    connect(list, &QTreeWidget::itemSelectionChanged, this, enable);
    connect(list, &QTreeWidget::itemActivated, this, [this] { ShowSelected(); });
    connect(showButton, &QPushButton::clicked, this, [this] { ShowSelected(); });
    connect(resetButton, &QPushButton::clicked, this, [this] { ResetSelected(); });
    auto* remove = new QShortcut(QKeySequence::Delete, list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(remove, &QShortcut::activated, this, [this] { ResetSelected(); });
    enable();
}

void SummaryPage::Update() {
    const std::vector<SummaryRow> rows = summaryRows(context.texts);
    QStringList selected;
    for (const QTreeWidgetItem* item : list->selectedItems()) {
        selected.append(item->data(0, keywordRole).toString());
    }
    list->clear();
    for (const SummaryRow& row : rows) {
        auto* item = new QTreeWidgetItem(list, {qText(row.name), qText(row.value), qText(row.defaultValue)});
        const QString keyword = qText(row.keyword);
        item->setData(0, keywordRole, keyword);
        item->setToolTip(0, plainToolTip(qText(row.place)));
        item->setSelected(selected.contains(keyword));
    }
    for (int column = 0; column < 2; ++column) {
        list->resizeColumnToContents(column);
        list->setColumnWidth(column, list->columnWidth(column) + 12);
    }
    count->setText(qText(summaryHeading(context.texts, rows.size())));
}

void SummaryPage::ShowSelected() {
    const auto selected = list->selectedItems();
    if (selected.size() == 1) {
        show(selected.front()->data(0, keywordRole).toString().toStdString());
    }
}

void SummaryPage::ResetSelected() {
    std::vector<std::string> keywords;
    for (const QTreeWidgetItem* item : list->selectedItems()) {
        keywords.push_back(item->data(0, keywordRole).toString().toStdString());
    }
    context.editor.Reset(keywords);
}

} // namespace torka
