// SPDX-License-Identifier: Apache-2.0
#include "pane/views/QuickAccessDialog.h"

#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/panel/UI_Panel.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RoomyRows.h"
#include "platform/qt/LetterWidth.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <set>

namespace torka {
namespace {

std::string keywordOf(const QVariant& data) { return data.toString().toStdString(); }

} // namespace

QuickAccessDialog::QuickAccessDialog(PaneContext& paneContext, const std::vector<std::string>& keywords,
                                     QWidget* parent)
    : QDialog(parent)
    , context(paneContext)
    , choice(paneContext.texts, paneContext.data)
    , search(new QLineEdit(this))
    , available(new QTreeWidget(this))
    , chosen(new QListWidget(this))
    , count(new QLabel(this))
    , hint(new QLabel(this))
    , add(new QPushButton(context.Say(words::quickAdd), this))
    , remove(new QPushButton(context.Say(words::quickRemove), this))
    , up(new QPushButton(context.Say(words::quickMoveUp), this))
    , down(new QPushButton(context.Say(words::quickMoveDown), this)) {
    setPalette(readableColors());
    setObjectName(QStringLiteral("quickAccessDialog"));
    setWindowTitle(context.Say(words::quickTitle));
    Arrange();
    ListAvailable();
    for (const std::string& keyword : keywords) {
        if (const PaneField* field = context.editor.Catalog().Find(keyword)) {
            Append(keyword, qText(field->name));
        } else if (const PPDXControl* control = context.editor.FindControl(keyword)) {
            Append(keyword, qText(nameOf(*control)));
        }
    }
    Connect();
    Update();
}

void QuickAccessDialog::Arrange() {
    const QString found = context.Say(words::quickFound);
    search->setPlaceholderText(found);
    search->setAccessibleName(found);
    search->setClearButtonEnabled(true);
    search->addAction(paneIcon(PaneSign::search), QLineEdit::LeadingPosition);
    available->setHeaderHidden(true);
    available->setSelectionMode(QAbstractItemView::ExtendedSelection);
    available->setItemDelegate(new RoomyRows(available));
    available->setUniformRowHeights(true);
    chosen->setSelectionMode(QAbstractItemView::ExtendedSelection);
    chosen->setItemDelegate(new RoomyRows(chosen));
    const int wide = letterWidth(fontMetrics()) * 34;
    available->setMinimumWidth(wide);
    chosen->setMinimumWidth(wide);
    available->setMinimumHeight(fontMetrics().lineSpacing() * 16);
    count->setTextFormat(Qt::PlainText);
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    alignLeading(*hint);

    auto* availableLabel = new QLabel(context.Say(words::quickAvailable), this);
    availableLabel->setTextFormat(Qt::PlainText);
    availableLabel->setBuddy(available);
    auto* chosenLabel = new QLabel(context.Say(words::quickChosen), this);
    chosenLabel->setTextFormat(Qt::PlainText);
    chosenLabel->setBuddy(chosen);
    for (const auto& [label, list] :
         {std::pair<QLabel*, QWidget*>{availableLabel, available}, {chosenLabel, chosen}}) {
        list->setAccessibleName(QString(label->text()).remove(QLatin1Char('&')));
    }
    auto* buttons = new QVBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* button : {add, remove, up, down}) {
        button->setAutoDefault(false);
        if (button == up) {
            buttons->addSpacing(fontMetrics().lineSpacing());
        }
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    auto* head = new QHBoxLayout;
    head->addWidget(chosenLabel, 1);
    head->addWidget(count);
    auto* box = new QDialogButtonBox(this);
    box->addButton(context.Say(words::ok), QDialogButtonBox::AcceptRole)->setDefault(true);
    box->addButton(context.Say(words::cancel), QDialogButtonBox::RejectRole);
    connect(box, &QDialogButtonBox::accepted, this, [this] { accept(); });
    connect(box, &QDialogButtonBox::rejected, this, [this] { reject(); });

    auto* grid = new QGridLayout(this);
    grid->addWidget(availableLabel, 0, 0);
    grid->addLayout(head, 0, 2);
    grid->addWidget(search, 1, 0);
    grid->addWidget(available, 2, 0);
    grid->addLayout(buttons, 1, 1, 2, 1);
    grid->addWidget(chosen, 1, 2, 2, 1);
    grid->addWidget(hint, 3, 0, 1, 3);
    grid->addWidget(box, 4, 0, 1, 3);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(2, 1);
    QWidget* before = search;
    for (QWidget* next : std::initializer_list<QWidget*>{available, add, remove, up, down, chosen}) {
        setTabOrder(before, next);
        before = next;
    }
    search->setFocus();
}

void QuickAccessDialog::Connect() {
    connect(search, &QLineEdit::textChanged, this, [this] { ShowMatches(); });
    connect(available, &QTreeWidget::itemSelectionChanged, this, [this] { Update(); });
    connect(chosen, &QListWidget::itemSelectionChanged, this, [this] { Update(); });
    connect(add, &QPushButton::clicked, this, [this] { AddSelected(); });
    connect(remove, &QPushButton::clicked, this, [this] { RemoveSelected(); });
    connect(up, &QPushButton::clicked, this, [this] { Move(-1); });
    connect(down, &QPushButton::clicked, this, [this] { Move(1); });
    connect(available, &QTreeWidget::itemDoubleClicked, this, [this] { AddSelected(); });
    connect(chosen, &QListWidget::itemDoubleClicked, this, [this] { RemoveSelected(); });
    available->installEventFilter(this);
    chosen->installEventFilter(this);
}

// Keys of the lists: Insert or Space adds, Delete removes, Alt with an arrow moves.
bool QuickAccessDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QDialog::eventFilter(watched, event);
    }
    const auto* pressed = static_cast<QKeyEvent*>(event);
    const int key = pressed->key();
    if (watched == available && (key == Qt::Key_Insert || key == Qt::Key_Space)) {
        AddSelected();
        return true;
    }
    if (watched == chosen && key == Qt::Key_Delete) {
        RemoveSelected();
        return true;
    }
    const bool moves = key == Qt::Key_Up || key == Qt::Key_Down;
    if (watched == chosen && moves && (pressed->modifiers() & Qt::AltModifier) != 0) {
        Move(key == Qt::Key_Up ? -1 : 1);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void QuickAccessDialog::ListAvailable() {
    for (const QuickAccessChoice::Group& group : choice.Groups()) {
        auto* top = new QTreeWidgetItem(available, {qText(group.heading)});
        top->setFlags(Qt::ItemIsEnabled);
        for (const PaneField& field : group.fields) {
            auto* item = new QTreeWidgetItem(top, {qText(field.name)});
            item->setData(0, keywordRole, qText(field.keyword));
            item->setToolTip(0, plainToolTip(qText(field.name)));
        }
        top->setExpanded(true);
    }
}

void QuickAccessDialog::Append(const std::string& keyword, const QString& name) {
    auto* item = new QListWidgetItem(name, chosen);
    item->setData(keywordRole, qText(keyword));
    item->setToolTip(plainToolTip(name));
}

bool QuickAccessDialog::IsFull() const {
    return QuickAccessChoice::IsFull(static_cast<std::size_t>(chosen->count()));
}

std::vector<std::string> QuickAccessDialog::Chosen() const {
    std::vector<std::string> keywords;
    keywords.reserve(static_cast<std::size_t>(chosen->count()));
    for (int row = 0; row < chosen->count(); ++row) {
        keywords.push_back(keywordOf(chosen->item(row)->data(keywordRole)));
    }
    return keywords;
}

// Hides the settings that are chosen already and those that the search does not find.
void QuickAccessDialog::ShowMatches() {
    const std::set<std::string> offered = choice.Offered(search->text().trimmed().toStdString(), Chosen());
    for (int i = 0; i < available->topLevelItemCount(); ++i) {
        QTreeWidgetItem* top = available->topLevelItem(i);
        bool anything = false;
        for (int j = 0; j < top->childCount(); ++j) {
            QTreeWidgetItem* item = top->child(j);
            const bool seen = offered.contains(keywordOf(item->data(0, keywordRole)));
            item->setHidden(!seen);
            if (!seen) {
                item->setSelected(false);
            }
            anything = anything || seen;
        }
        top->setHidden(!anything);
    }
}

void QuickAccessDialog::AddSelected() {
    const auto selected = available->selectedItems();
    if (selected.isEmpty()) {
        return;
    }
    QTreeWidgetItem* next = available->itemBelow(selected.back());
    chosen->clearSelection();
    for (QTreeWidgetItem* item : selected) {
        if (!IsFull()) {
            Append(keywordOf(item->data(0, keywordRole)), item->text(0));
            chosen->item(chosen->count() - 1)->setSelected(true);
        }
    }
    chosen->scrollToBottom();
    available->clearSelection();
    Update();
    if (next != nullptr && !next->isHidden()) {
        available->setCurrentItem(next); // the same key adds the next one
    }
}

void QuickAccessDialog::RemoveSelected() {
    const int row = chosen->currentRow();
    const auto selected = chosen->selectedItems();
    qDeleteAll(selected);
    chosen->setCurrentRow(std::min(row, chosen->count() - 1));
    Update();
}

// Moves the selected entries as a block, which stops at the ends of the list.
void QuickAccessDialog::Move(int step) {
    std::vector<int> rows;
    for (const QListWidgetItem* item : chosen->selectedItems()) {
        rows.push_back(chosen->row(item));
    }
    std::ranges::sort(rows);
    if (rows.empty() || (step < 0 ? rows.front() == 0 : rows.back() == chosen->count() - 1)) {
        return;
    }
    if (step > 0) {
        std::ranges::reverse(rows);
    }
    const QListWidgetItem* current = chosen->currentItem();
    for (const int row : rows) {
        QListWidgetItem* item = chosen->takeItem(row);
        chosen->insertItem(row + step, item);
        item->setSelected(true);
        if (item == current) {
            chosen->setCurrentItem(item, QItemSelectionModel::NoUpdate);
        }
    }
    Update();
}

void QuickAccessDialog::Update() {
    ShowMatches();
    const auto entries = static_cast<std::size_t>(chosen->count());
    count->setText(qText(choice.CountText(entries)));
    hint->setText(qText(choice.Hint(entries)));
    add->setEnabled(!IsFull() && !available->selectedItems().isEmpty());
    const auto selected = chosen->selectedItems();
    remove->setEnabled(!selected.isEmpty());
    const auto isSelected = [this](int row) {
        return chosen->item(row) != nullptr && chosen->item(row)->isSelected();
    };
    up->setEnabled(!selected.isEmpty() && !isSelected(0));
    down->setEnabled(!selected.isEmpty() && !isSelected(chosen->count() - 1));
}

QuickAccessSheet::~QuickAccessSheet() { delete dialog.data(); }

void QuickAccessSheet::doButtonCancelClicked() {
    if (dialog != nullptr) {
        dialog->reject();
    }
}

void QuickAccessSheet::openSheet() {
    if (root == nullptr) {
        return;
    }
    if (dialog != nullptr) {
        dialog->raise();
        dialog->activateWindow();
        return;
    }
    std::vector<std::string> keywords;
    for (const PPDTreeQuickAccess& entry : UI_Panel::Tree.quickAccess) {
        keywords.push_back(entry.keyword);
    }
    dialog = new QuickAccessDialog(context, keywords, root);
    dialog->setWindowModality(Qt::WindowModal);
    QObject::connect(dialog, &QDialog::finished, dialog, [this](int result) {
        QuickAccessDialog* ended = dialog;
        dialog = nullptr;
        ended->deleteLater();
        if (result == QDialog::Accepted) {
            Take(ended->Chosen());
        }
    });
    dialog->open();
}

// Holds the panel: storing may run the event loop, in which the print dialog may release the panel.
void QuickAccessSheet::Take(const std::vector<std::string>& keywords) {
    const std::shared_ptr<void> alive =
        context.panel == nullptr ? nullptr : context.panel->shared_from_this();
    const bool isKept =
        keepQuickAccess(context.editor, context.controller, context.data, context.panel, keywords);
    if (!isKept && root != nullptr) {
        auto* box = new QMessageBox(QMessageBox::Warning, context.Say(words::quickTitle),
                                    context.Say(words::quickNotSaved), QMessageBox::NoButton, root);
        box->setTextFormat(Qt::PlainText);
        box->addButton(context.Say(words::ok), QMessageBox::AcceptRole);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    }
}

} // namespace torka
