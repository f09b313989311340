#include "pane/views/AddressSheet.h"

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

QString qString(const CFStringRef& text) { return text ? QString::fromStdU16String(text->units) : QString(); }

int columnIndex(ControllerColumn column) { return column == ControllerColumn::name ? 0 : 1; }

} // namespace

// Rows change in place, so that the table neither jumps nor loses its place while controllers come and go.
class AddressSheet::Rows final : public QAbstractTableModel {
public:
    Rows(QObject* parent, QString nameTitle, QString addressesTitle)
        : QAbstractTableModel(parent)
        , titles{std::move(nameTitle), std::move(addressesTitle)} {}

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows.size());
    }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : 2; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)) {
            return {};
        }
        const ControllerRow& row = rows[static_cast<std::size_t>(index.row())];
        return qString(index.column() == 0 ? row.name : row.addresses);
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

AddressSheet::AddressSheet(QWidget* parent, const BidiTranslator& translate)
    : QDialog(parent)
    , model(new Rows(this, translate("NAME_COLUMN", "Name"), translate("ADDRESSES_COLUMN", "Addresses")))
    , field(new QLineEdit(this))
    , table(new QTreeView(this))
    , status(new QLabel(this))
    , progress(new QProgressBar(this))
    , bidiCheckBox(new QCheckBox(translate("TWO_WAY", "&Two-way communication"), this))
    , sortByName(translate("SORT_BY_NAME", "Sort by name"))
    , sortByAddresses(translate("SORT_BY_ADDRESSES", "Sort by addresses")) {
    setObjectName("addressSheet");
    setWindowTitle(translate("ADDRESS_SHEET_TITLE", "Controller Address"));
    setWindowModality(Qt::WindowModal);

    auto* fieldLabel = new QLabel(translate("ADDRESS_LABEL", "&IP address or DNS name:"), this);
    fieldLabel->setBuddy(field);
    field->setObjectName("addressField");
    field->setMaxLength(longestAddress);
    field->setClearButtonEnabled(true);
    field->setPlaceholderText(translate("ADDRESS_EXAMPLE", "for example 192.168.1.20"));
    bidiCheckBox->setObjectName("sheetBidiCheckBox");
    MakeTable(translate);
    auto* tableLabel = new QLabel(translate("CONTROLLERS_LABEL", "&Controllers on the local network:"), this);
    tableLabel->setBuddy(table);

    status->setObjectName("discoveryStatus");
    status->setTextFormat(Qt::PlainText);
    status->setWordWrap(true);
    status->setForegroundRole(QPalette::PlaceholderText);
    progress->setObjectName("resolveProgress");
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->setAccessibleName(translate("RESOLVING", "Asking the selected controller for its address"));
    progress->setFixedWidth(fontMetrics().averageCharWidth() * 14);
    progress->setMaximumHeight(fontMetrics().height());
    QSizePolicy policy = progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    progress->setSizePolicy(policy);
    progress->hide();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(translate("OK", "OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(translate("CANCEL", "Cancel"));

    auto* statusLine = new QHBoxLayout;
    statusLine->addWidget(status, 1);
    statusLine->addWidget(progress, 0, Qt::AlignTop);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fieldLabel);
    layout->addWidget(field);
    layout->addSpacing(layout->spacing());
    layout->addWidget(tableLabel);
    layout->addWidget(table, 1);
    layout->addLayout(statusLine);
    layout->addSpacing(layout->spacing());
    layout->addWidget(bidiCheckBox);
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 24);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(bidiCheckBox, &QCheckBox::clicked, this, [this](bool on) { BidiClicked(on); });
}

void AddressSheet::MakeTable(const BidiTranslator& translate) {
    table->setObjectName("controllerTable");
    table->setModel(model);
    table->setRootIsDecorated(false);
    table->setItemsExpandable(false);
    table->setUniformRowHeights(true);
    table->setAlternatingRowColors(true);
    table->setAllColumnsShowFocus(true);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setTextElideMode(Qt::ElideRight);
    table->setAccessibleName(translate("CONTROLLERS", "Controllers on the local network"));
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    table->installEventFilter(this);
    QHeaderView* header = table->header();
    header->setSectionsClickable(true);
    header->setSectionsMovable(false);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->resizeSection(0, fontMetrics().averageCharWidth() * 44);
    connect(header, &QHeaderView::sectionClicked, this, [this](int section) {
        SortBy(section == 0 ? ControllerColumn::name : ControllerColumn::addresses);
    });
    connect(table, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& place) { ShowTableMenu(place); });
    connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!isSetting && delegate != nullptr) {
            delegate->UpOrDownArrowKeySelection();
        }
    });
    // Once its address is known.
    connect(table, &QAbstractItemView::doubleClicked, this, [this] {
        if (!progress->isVisibleTo(this)) {
            accept();
        }
    });
}

// The table's first row has the focus without being selected, and no arrow key would select it.
bool AddressSheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == table && event->type() == QEvent::KeyPress && !selectedRow() && model->rowCount({}) > 0) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Down || key == Qt::Key_Up || key == Qt::Key_Home) {
            table->selectionModel()->setCurrentIndex(model->index(0, 0), QItemSelectionModel::ClearAndSelect |
                                                                             QItemSelectionModel::Rows);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void AddressSheet::attachPaneWidgets(QCheckBox* twoWay, QPushButton* configure) {
    paneCheckBox = twoWay;
    paneConfigureButton = configure;
    if (twoWay != nullptr) {
        twoWay->setChecked(bidiCheckBox->isChecked());
        connect(twoWay, &QCheckBox::clicked, this, [this](bool on) { BidiClicked(on); });
    }
    if (configure != nullptr) {
        connect(configure, &QPushButton::clicked, this, [this] {
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
    menu->addAction(sortByName, this, [this] { SortBy(ControllerColumn::name); });
    menu->addAction(sortByAddresses, this, [this] { SortBy(ControllerColumn::addresses); });
    menu->popup(table->viewport()->mapToGlobal(place));
}

void AddressSheet::openSheet() { open(); }

void AddressSheet::closeSheet() { hide(); }

void AddressSheet::accept() {
    if (delegate != nullptr) {
        delegate->OKClicked();
    } else {
        QDialog::accept();
    }
}

void AddressSheet::reject() {
    if (delegate != nullptr) {
        delegate->clickedCancel();
    } else {
        QDialog::reject();
    }
}

CFStringRef AddressSheet::addressField() const {
    return CFStringCreateWithCharacters(field->text().toStdU16String());
}

void AddressSheet::setAddressField(const CFStringRef& text) {
    const QString shown = qString(text);
    if (field->text() != shown) {
        field->setText(shown);
    }
}

void AddressSheet::focusAddressField() {
    field->setFocus(Qt::OtherFocusReason);
    field->selectAll();
}

void AddressSheet::setRows(std::span<const ControllerRow> rows, std::optional<std::size_t> selected) {
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
    const QModelIndexList rows = table->selectionModel()->selectedRows();
    return rows.isEmpty() ? std::nullopt : std::optional(static_cast<std::size_t>(rows.front().row()));
}

void AddressSheet::setIndicatorImage(ControllerColumn column, SortIndicator indicator) {
    QHeaderView* header = table->header();
    if (indicator != SortIndicator::none) {
        header->setSortIndicator(columnIndex(column), indicator == SortIndicator::NSAscendingSortIndicator
                                                          ? Qt::AscendingOrder
                                                          : Qt::DescendingOrder);
    } else if (header->sortIndicatorSection() == columnIndex(column)) {
        header->setSortIndicator(-1, Qt::AscendingOrder);
    }
}

void AddressSheet::setProgress(bool running) { progress->setVisible(running); }

void AddressSheet::setStatus(const CFStringRef& text) { status->setText(qString(text)); }

bool AddressSheet::bidiState() const { return bidiCheckBox->isChecked(); }

void AddressSheet::setBidiState(bool on) {
    bidiCheckBox->setChecked(on);
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

} // namespace torka
