// SPDX-License-Identifier: Apache-2.0
#include "pane/views/AddressSheet.h"

#include "pane/views/PaneColors.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RoomyRows.h"
#include "platform/qt/LetterWidth.h"

#include <QAbstractTableModel>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>
#include <vector>

namespace torka {

namespace {

int columnIndex(ControllerColumn column) { return column == ControllerColumn::name ? 0 : 1; }

} // namespace

// The rows are changed in place, so that the selection and the scroll position stay while controllers come
// and go.
class AddressSheet::Rows final : public QAbstractTableModel {
public:
    Rows(QObject* parent, QString nameTitle, QString addressesTitle)
        : QAbstractTableModel(parent)
        , titles{std::move(nameTitle), std::move(addressesTitle)} {}

    int rowCount(const QModelIndex& index) const override {
        return index.isValid() ? 0 : static_cast<int>(rows.size());
    }
    int columnCount(const QModelIndex& index) const override { return index.isValid() ? 0 : 2; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)) {
            return {};
        }
        const ControllerRow& row = rows[static_cast<std::size_t>(index.row())];
        return qText(index.column() == 0 ? row.name : row.addresses);
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        const bool isTitle = orientation == Qt::Horizontal && role == Qt::DisplayRole;
        return isTitle && (section == 0 || section == 1) ? QVariant(titles[section]) : QVariant();
    }

    void Replace(std::span<const ControllerRow> newRows) {
        const std::size_t common = std::min(rows.size(), newRows.size());
        std::size_t firstChanged = common;
        std::size_t lastChanged = 0;
        for (std::size_t i = 0; i < common; ++i) {
            if (!(rows[i] == newRows[i])) {
                firstChanged = std::min(firstChanged, i);
                lastChanged = i;
                rows[i] = newRows[i];
            }
        }
        if (newRows.size() > common) {
            beginInsertRows({}, static_cast<int>(common), static_cast<int>(newRows.size()) - 1);
            rows.insert(rows.end(), newRows.begin() + static_cast<std::ptrdiff_t>(common), newRows.end());
            endInsertRows();
        } else if (rows.size() > common) {
            beginRemoveRows({}, static_cast<int>(common), static_cast<int>(rows.size()) - 1);
            rows.resize(common);
            endRemoveRows();
        }
        if (firstChanged < common) {
            Q_EMIT dataChanged(index(static_cast<int>(firstChanged), 0),
                               index(static_cast<int>(lastChanged), 1));
        }
    }

private:
    const QString titles[2];
    std::vector<ControllerRow> rows;
};

class AddressSheet::Dialog final : public QDialog {
public:
    Dialog(QWidget* parent, AddressSheet& owner)
        : QDialog(parent)
        , sheet(owner) {}
    // While the table is destroyed, its signals are no action of the person.
    ~Dialog() override { sheet.isSetting = true; }

    void accept() override {
        if (sheet.delegate != nullptr) {
            // The delegate may end this dialog.
            const std::shared_ptr<void> alive = sheet.keepAlive ? sheet.keepAlive() : nullptr;
            sheet.delegate->OKClicked();
        } else {
            QDialog::accept();
        }
    }
    void reject() override {
        if (sheet.delegate != nullptr) {
            sheet.delegate->clickedCancel();
        } else {
            QDialog::reject();
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        return (watched == sheet.table && event->type() == QEvent::KeyPress &&
                sheet.SelectFirst(static_cast<QKeyEvent*>(event)->key())) ||
               QDialog::eventFilter(watched, event);
    }

private:
    AddressSheet& sheet;
};

AddressSheet::AddressSheet(QWidget* dialogParent, BidiTranslator translator)
    : translate(std::move(translator))
    , parent(dialogParent)
    , hasParent(dialogParent != nullptr) {}

AddressSheet::~AddressSheet() { delete dialog.data(); }

bool AddressSheet::HasDialog() {
    const bool hasParentEnded = hasParent && parent == nullptr;
    if (field == nullptr && !hasParentEnded) {
        MakeDialog();
    }
    return dialog != nullptr;
}

void AddressSheet::MakeDialog() {
    dialog = new Dialog(parent, *this);
    model = new Rows(dialog, translate("NAME_COLUMN", "Name"), translate("ADDRESSES_COLUMN", "Addresses"));
    field = new QLineEdit(dialog);
    table = new QTreeView(dialog);
    status = new QLabel(dialog);
    progress = new QProgressBar(dialog);
    bidiCheckBox = new QCheckBox(translate("TWO_WAY", "&Two-way communication"), dialog);
    dialog->setPalette(readableColors());
    dialog->setObjectName("addressSheet");
    dialog->setWindowTitle(translate("ADDRESS_SHEET_TITLE", "Controller Address"));
    dialog->setWindowModality(Qt::WindowModal);

    field->setObjectName("addressField");
    field->setMaxLength(maximumAddress);
    field->setClearButtonEnabled(true);
    field->setPlaceholderText(translate("ADDRESS_EXAMPLE", "for example 192.168.1.20"));
    ShowAddress();
    bidiCheckBox->setObjectName("sheetBidiCheckBox");
    bidiCheckBox->setChecked(isBidiOn);
    QObject::connect(bidiCheckBox, &QCheckBox::clicked, dialog, [this](bool on) { BidiClicked(on); });
    MakeTable();

    status->setObjectName("discoveryStatus");
    status->setTextFormat(Qt::PlainText);
    status->setWordWrap(true);
    status->setForegroundRole(QPalette::PlaceholderText);
    progress->setObjectName("resolveProgress");
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->setAccessibleName(translate("RESOLVING", "Asking the selected controller for its address"));
    progress->setFixedWidth(letterWidth(dialog->fontMetrics()) * 14);
    progress->setMaximumHeight(dialog->fontMetrics().height());
    QSizePolicy policy = progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    progress->setSizePolicy(policy);
    progress->hide();
    LayOut();
}

void AddressSheet::LayOut() {
    auto* fieldLabel = new QLabel(translate("ADDRESS_LABEL", "&IP address or DNS name:"), dialog);
    fieldLabel->setTextFormat(Qt::PlainText);
    fieldLabel->setBuddy(field);
    auto* tableLabel =
        new QLabel(translate("CONTROLLERS_LABEL", "&Controllers on the local network:"), dialog);
    tableLabel->setTextFormat(Qt::PlainText);
    tableLabel->setBuddy(table);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    buttons->button(QDialogButtonBox::Ok)->setText(translate("OK", "OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(translate("CANCEL", "Cancel"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);

    auto* statusLine = new QHBoxLayout;
    statusLine->addWidget(status, 1);
    statusLine->addWidget(progress, 0, Qt::AlignTop);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(fieldLabel);
    layout->addWidget(field);
    layout->addSpacing(layout->spacing());
    layout->addWidget(tableLabel);
    layout->addWidget(table, 1);
    layout->addLayout(statusLine);
    layout->addSpacing(layout->spacing());
    layout->addWidget(bidiCheckBox);
    layout->addWidget(buttons);
    dialog->resize(letterWidth(dialog->fontMetrics()) * 90, dialog->fontMetrics().height() * 27);
}

void AddressSheet::MakeTable() {
    table->setObjectName("controllerTable");
    table->setModel(model);
    table->setRootIsDecorated(false);
    table->setItemsExpandable(false);
    table->setUniformRowHeights(true);
    table->setItemDelegate(new RoomyRows(table));
    table->setAlternatingRowColors(true);
    table->setAllColumnsShowFocus(true);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setTextElideMode(Qt::ElideRight);
    table->setAccessibleName(translate("CONTROLLERS", "Controllers on the local network"));
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    table->installEventFilter(dialog);
    QHeaderView* header = table->header();
    header->setSectionsClickable(true);
    header->setSectionsMovable(false);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->resizeSection(0, letterWidth(table->fontMetrics()) * 52);
    QObject::connect(header, &QHeaderView::sectionClicked, dialog, [this](int section) {
        SortBy(section == 0 ? ControllerColumn::name : ControllerColumn::addresses);
    });
    QObject::connect(table, &QWidget::customContextMenuRequested, dialog,
                     [this](const QPoint& place) { ShowTableMenu(place); });
    QObject::connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, dialog, [this] {
        if (!isSetting && delegate != nullptr) {
            delegate->UpOrDownArrowKeySelection();
        }
    });
    // A double click chooses a controller only after its address was resolved.
    QObject::connect(table, &QAbstractItemView::doubleClicked, dialog, [this] {
        if (!progress->isVisible()) {
            dialog->accept();
        }
    });
}

// The first row of the table has the focus without being selected, and no arrow key would select it.
bool AddressSheet::SelectFirst(int key) {
    const bool moves = key == Qt::Key_Down || key == Qt::Key_Up || key == Qt::Key_Home;
    if (!moves || selectedRow() || model->rowCount({}) == 0) {
        return false;
    }
    table->selectionModel()->setCurrentIndex(model->index(0, 0),
                                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return true;
}

void AddressSheet::attachPaneWidgets(QCheckBox* twoWay, QPushButton* configure) {
    paneCheckBox = twoWay;
    paneConfigureButton = configure;
    if (twoWay != nullptr) {
        twoWay->setChecked(isBidiOn);
        QObject::connect(twoWay, &QCheckBox::clicked, &connections, [this](bool on) { BidiClicked(on); });
    }
    if (configure != nullptr) {
        QObject::connect(configure, &QPushButton::clicked, &connections, [this] {
            if (delegate != nullptr) {
                delegate->configureButtonClicked();
            }
        });
    }
}

void AddressSheet::BidiClicked(bool on) {
    setBidiState(on);
    if (delegate != nullptr) {
        delegate->BIDICheckBoxClicked();
    }
}

void AddressSheet::SortBy(ControllerColumn column) {
    if (delegate != nullptr) {
        delegate->didClickTableColumn(column);
    }
}

void AddressSheet::ShowTableMenu(const QPoint& place) {
    auto* menu = new QMenu(table);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(translate("SORT_BY_NAME", "Sort by name"), dialog,
                    [this] { SortBy(ControllerColumn::name); });
    menu->addAction(translate("SORT_BY_ADDRESSES", "Sort by addresses"), dialog,
                    [this] { SortBy(ControllerColumn::addresses); });
    menu->popup(table->viewport()->mapToGlobal(place));
}

void AddressSheet::openSheet() {
    if (HasDialog()) {
        dialog->open();
    }
}

void AddressSheet::closeSheet() {
    if (dialog != nullptr) {
        dialog->hide();
    }
}

bool AddressSheet::isSheetVisible() const { return dialog != nullptr && dialog->isVisible(); }

CFStringRef AddressSheet::addressField() const {
    if (field == nullptr) {
        return cfText(address); // there was no dialog yet
    }
    return cfText(dialog != nullptr ? field->text() : QString());
}

void AddressSheet::setAddressField(const CFStringRef& text) {
    address = qText(text).left(maximumAddress);
    if (dialog != nullptr) {
        ShowAddress();
    }
}

void AddressSheet::ShowAddress() {
    if (field->text() != address) {
        field->setText(address);
        field->setCursorPosition(0); // shows the beginning of a long name
    }
}

void AddressSheet::focusAddressField() {
    if (HasDialog()) {
        field->setFocus(Qt::OtherFocusReason);
        field->selectAll();
    }
}

void AddressSheet::setRows(std::span<const ControllerRow> rows, std::optional<std::size_t> selected) {
    if (!HasDialog()) {
        return;
    }
    isSetting = true;
    model->Replace(rows);
    const bool wasSelected = selectedRow().has_value();
    QItemSelectionModel* selection = table->selectionModel();
    if (selected && *selected < rows.size()) {
        const QModelIndex index = model->index(static_cast<int>(*selected), 0);
        if (!selection->isSelected(index)) {
            selection->setCurrentIndex(index,
                                       QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        }
        if (!wasSelected) {
            table->scrollTo(index);
        }
    } else {
        selection->clearSelection();
    }
    isSetting = false;
}

std::optional<std::size_t> AddressSheet::selectedRow() const {
    if (dialog == nullptr) {
        return std::nullopt;
    }
    const QModelIndexList rows = table->selectionModel()->selectedRows();
    return rows.isEmpty() ? std::nullopt : std::optional(static_cast<std::size_t>(rows.front().row()));
}

void AddressSheet::setIndicatorImage(ControllerColumn column, SortIndicator indicator) {
    if (!HasDialog()) {
        return;
    }
    QHeaderView* header = table->header();
    if (indicator != SortIndicator::none) {
        header->setSortIndicator(columnIndex(column), indicator == SortIndicator::NSAscendingSortIndicator
                                                          ? Qt::AscendingOrder
                                                          : Qt::DescendingOrder);
    } else if (header->sortIndicatorSection() == columnIndex(column)) {
        header->setSortIndicator(-1, Qt::AscendingOrder);
    }
}

void AddressSheet::setProgress(bool running) {
    if (running ? HasDialog() : dialog != nullptr) {
        progress->setVisible(running);
    }
}

void AddressSheet::setStatus(const CFStringRef& text) {
    if (HasDialog()) {
        status->setText(qText(text));
    }
}

void AddressSheet::setBidiState(bool on) {
    isBidiOn = on;
    if (dialog != nullptr) {
        bidiCheckBox->setChecked(on);
    }
    if (paneCheckBox != nullptr) {
        paneCheckBox->setChecked(on);
    }
}

void AddressSheet::setBidiCheckBoxEnabled(bool enabled) {
    if (paneCheckBox != nullptr) {
        paneCheckBox->setEnabled(enabled);
    }
}

void AddressSheet::setConfigureButtonEnabled(bool enabled) {
    if (paneConfigureButton != nullptr) {
        paneConfigureButton->setEnabled(enabled);
    }
}

QDialog* AddressSheet::Window() {
    HasDialog();
    return dialog;
}

} // namespace torka
