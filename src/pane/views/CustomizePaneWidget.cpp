// SPDX-License-Identifier: Apache-2.0
#include "pane/views/CustomizePaneWidget.h"

#include "pane/data/PDEData.h"
#include "pane/data/PersonalFile.h"
#include "pane/views/ConflictBar.h"
#include "pane/views/CopiesField.h"
#include "pane/views/FieldPage.h"
#include "pane/views/GaugePanel.h"
#include "pane/views/JobPicture.h"
#include "pane/views/LastJobLine.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PresetBar.h"
#include "pane/views/RoomyRows.h"
#include "pane/views/SummaryPage.h"
#include "pane/views/TabOrder.h"
#include "pane/views/WatermarkPage.h"
#include "platform/qt/LetterWidth.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

namespace torka {
namespace {

constexpr std::chrono::milliseconds pauseInTyping{120};

} // namespace

CustomizePaneWidget::CustomizePaneWidget(PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext)
    , fieldSearch(paneContext.texts, paneContext.data != nullptr) {
    MakeWidgets();
    searchPause.setSingleShot(true);
    searchPause.setInterval(pauseInTyping);
    connect(&searchPause, &QTimer::timeout, this, [this] { SearchNow(); });
    context.editor.AddListener([self = QPointer<CustomizePaneWidget>(this)](const PaneChange& change) {
        if (self != nullptr) {
            self->FollowChange(change);
        }
    });
}

CustomizePaneWidget::~CustomizePaneWidget() { RemovePages(); }

void CustomizePaneWidget::MakeWidgets() {
    area = new QWidget(this);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(area);
    auto* rows = new QVBoxLayout(area);
    rows->setContentsMargins(0, 0, 0, 0);
    auto* header = new QWidget(area);
    MakeHeader(header);
    rows->addWidget(header);

    auto* columns = new QHBoxLayout;
    auto* side = new QVBoxLayout;
    list = new QListWidget(area);
    list->setAccessibleName(context.Say(words::pages));
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTextElideMode(Qt::ElideRight);
    list->setUniformItemSizes(true);
    rowsOfList = new RoomyRows(list);
    list->setItemDelegate(rowsOfList);
    list->installEventFilter(this);
    const int signSize = style()->pixelMetric(QStyle::PM_SmallIconSize);
    list->setIconSize(QSize(signSize, signSize));
    side->addWidget(list, 1);
    if (context.gauges) {
        gauges = new GaugePanel(context, *context.gauges, area);
        side->addWidget(gauges);
    }
    columns->addLayout(side);
    stack = new QStackedWidget(area);
    constexpr int minimumCharacters = 74; // room for a label, a popup and the buttons of its row
    constexpr int minimumLines = 7; // the dialog fits 540 points, with the bar and high Japanese lines too
    stack->setMinimumSize(letterWidth(fontMetrics()) * minimumCharacters,
                          fontMetrics().height() * minimumLines);
    constexpr int shareOfPage = 3;
    constexpr int shareOfPicture = 2;
    auto* page = new QHBoxLayout;
    page->addWidget(stack, shareOfPage);
    picture = new JobPicture(context, area);
    picture->hide();
    page->addWidget(picture, shareOfPicture);
    bar = new ConflictBar(context, area);
    besideList = new QWidget(area); // with the bar, which takes no height of the list
    besideList->installEventFilter(this);
    auto* pageAndBar = new QVBoxLayout(besideList);
    pageAndBar->setContentsMargins(0, 0, 0, 0);
    pageAndBar->addLayout(page, 1);
    pageAndBar->addWidget(bar);
    columns->addWidget(besideList, 1);
    rows->addLayout(columns, 1);
    results = new FieldPage(context, stack);
    stack->addWidget(results);
    connect(list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) {
            EndSearch();
            ShowEntry(static_cast<std::size_t>(row));
        }
    });
}

void CustomizePaneWidget::MakeHeader(QWidget* header) {
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    search = new QLineEdit(header);
    const QString name = context.Say(words::search);
    search->setPlaceholderText(name);
    search->setAccessibleName(name);
    search->setClearButtonEnabled(true);
    search->addAction(paneIcon(PaneSign::search), QLineEdit::LeadingPosition);
    search->installEventFilter(this);
    constexpr int characters = 28;
    search->setMaximumWidth(search->fontMetrics().averageCharWidth() * characters * 2);
    connect(search, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (text.isEmpty()) {
            SearchNow();
        } else {
            searchPause.start();
        }
    });
    auto* find = new QShortcut(QKeySequence::Find, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(find, &QShortcut::activated, search, [this] {
        search->setFocus(Qt::ShortcutFocusReason);
        search->selectAll();
    });
    constexpr int shareOfSearch = 3;
    layout->addWidget(search, shareOfSearch);
    undo = MakeButton(header, true);
    redo = MakeButton(header, false);
    layout->addWidget(undo);
    layout->addWidget(redo);
    layout->addStretch(1);
    lastJob = new LastJobLine(context, header); // a low screen has no line of its own to spare
    layout->addWidget(lastJob);
    if (context.data != nullptr) {
        presets = new PresetBar(context, header);
        presets->WhenShown([this] { lastJob->Show(presets->Chosen().empty()); });
        layout->addWidget(presets);
    }
    pictureButton = new QToolButton(header);
    pictureButton->setIcon(paneIcon(PaneSign::sheet));
    pictureButton->setAutoRaise(true);
    pictureButton->setCheckable(true);
    pictureButton->setChecked(personWantsPicture());
    pictureButton->setFocusPolicy(Qt::StrongFocus);
    const QString pictureName = context.Say(words::jobPicture);
    pictureButton->setAccessibleName(pictureName);
    pictureButton->setToolTip(plainToolTip(pictureName));
    pictureButton->hide();
    layout->addWidget(pictureButton);
    connect(pictureButton, &QToolButton::toggled, this, [this](bool isWanted) {
        keepPersonWantsPicture(isWanted); // the log tells why it cannot
        ShowPicture();
    });
}

QToolButton* CustomizePaneWidget::MakeButton(QWidget* parent, bool isUndo) {
    auto* button = new QToolButton(parent);
    button->setIcon(paneIcon(isUndo ? PaneSign::undo : PaneSign::redo));
    button->setAutoRaise(true);
    const QString name = context.Say(isUndo ? words::undo : words::redo).remove(QLatin1Char('&'));
    button->setAccessibleName(name);
    button->setToolTip(plainToolTip(name));
    button->setFocusPolicy(Qt::StrongFocus);
    const auto act = [this, isUndo] {
        if (isUndo) {
            context.editor.Undo();
        } else {
            context.editor.Redo();
        }
    };
    connect(button, &QToolButton::clicked, this, act);
    auto* shortcut = new QShortcut(isUndo ? QKeySequence::Undo : QKeySequence::Redo, this, nullptr, nullptr,
                                   Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, act);
    return button;
}

void CustomizePaneWidget::MakeEntries() {
    const QSignalBlocker blocker(list);
    int widest = 0;
    for (PageEntry& described : pageEntries(context.texts, !quickAccess.empty(), context.data != nullptr)) {
        const QString title = qText(described.title);
        auto* item = new QListWidgetItem(title, list);
        item->setToolTip(plainToolTip(title));
        widest = std::max(widest, list->fontMetrics().horizontalAdvance(title));
        entries.push_back({std::move(described), nullptr, false, item});
    }
    constexpr int maximumCharacters = 26;
    const int margins = 2 * list->frameWidth() + 4 * style()->pixelMetric(QStyle::PM_FocusFrameHMargin) +
                        style()->pixelMetric(QStyle::PM_SmallIconSize) +
                        style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    list->setFixedWidth(std::min(widest, list->fontMetrics().averageCharWidth() * maximumCharacters) +
                        margins);
}

void CustomizePaneWidget::RemovePages() {
    const QSignalBlocker blocker(list);
    for (const Entry& entry : entries) {
        delete entry.widget;
    }
    entries.clear();
    list->clear();
    current.reset();
}

void CustomizePaneWidget::drawControlsInTree(const PPDTree& tree) {
    std::vector<std::string> keywords;
    for (const PPDTreeQuickAccess& entry : tree.quickAccess) {
        keywords.push_back(entry.keyword);
    }
    const std::string shown = current ? entries[*current].described.identifier : std::string();
    if (isDrawn && keywords != quickAccess) {
        RemovePages();
        isDrawn = false;
    }
    quickAccess = std::move(keywords);
    context.editor.Refresh();
    if (!isDrawn) {
        isDrawn = true;
        MakeEntries();
        if (!ShowPage(shown) && !entries.empty()) {
            list->setCurrentRow(0);
        }
        ShowPicture();
        LeaveRoomForPages();
        if (!fieldToShow.empty()) {
            ShowField(std::exchange(fieldToShow, {}));
        }
    }
    UpdateSurroundings(nullptr);
}

void CustomizePaneWidget::greyoutShortcutControls(bool grey) { area->setEnabled(!grey); }

void CustomizePaneWidget::FollowChange(const PaneChange& change) {
    lastJob->Follow(change);
    if (!isDrawn) {
        return;
    }
    if (change.catalogRemade) {
        const std::string shown = current ? entries[*current].described.identifier : std::string();
        RemovePages();
        results->Clear();
        MakeEntries();
        if (!ShowPage(shown)) {
            list->setCurrentRow(0);
        }
    } else {
        for (Entry& entry : entries) {
            entry.isStale = true;
        }
        if (stack->currentWidget() == results) {
            results->Update(&change.controls);
        } else if (current) {
            UpdateEntry(entries[*current], &change.controls);
        }
    }
    UpdateSurroundings(&change);
}

void CustomizePaneWidget::UpdateEntry(Entry& entry, const std::vector<PPDXControl*>* controls) {
    entry.isStale = false;
    if (auto* page = dynamic_cast<FieldPage*>(entry.widget)) {
        page->Update(controls);
    } else if (auto* watermarks = dynamic_cast<WatermarkPage*>(entry.widget)) {
        watermarks->Update();
    } else if (auto* summary = dynamic_cast<SummaryPage*>(entry.widget)) {
        summary->Update();
    }
}

void CustomizePaneWidget::UpdateSurroundings(const PaneChange* change) {
    bar->Update(change);
    MarkConflicts();
    undo->setEnabled(context.editor.CanUndo());
    redo->setEnabled(context.editor.CanRedo());
    undo->setToolTip(plainToolTip(qText(undoTip(context.texts))));
    if (!entries.empty()) {
        entries.back().item->setText(qText(summaryTitle(context.texts)));
    }
    picture->Follow();
}

// Marks the pages that have a field in conflict.
void CustomizePaneWidget::MarkConflicts() {
    std::vector<PageEntry> described;
    for (const Entry& entry : entries) {
        described.push_back(entry.described);
    }
    const std::vector<bool> marks = conflictMarks(context.editor, described, quickAccess);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        QListWidgetItem& item = *entries[i].item;
        if (marks[i] == item.icon().isNull()) {
            item.setIcon(marks[i] ? paneIcon(PaneSign::warning) : QIcon());
            item.setData(Qt::AccessibleTextRole, qText(spokenTitle(context.texts, described[i], marks[i])));
        }
    }
}

QWidget* CustomizePaneWidget::MakePage(Entry& entry) {
    switch (entry.described.kind) {
    case PageEntry::Kind::quickAccess:
        return MakeQuickAccessPage();
    case PageEntry::Kind::page:
    case PageEntry::Kind::installed:
        return MakeFieldPage(entry.described);
    case PageEntry::Kind::watermarks:
        return new WatermarkPage(context, stack);
    case PageEntry::Kind::summary:
        break;
    }
    return new SummaryPage(
        context, [this](const std::string& keyword) { ShowField(keyword); }, stack);
}

FieldPage* CustomizePaneWidget::MakeFieldPage(const PageEntry& entry) {
    auto* page = new FieldPage(context, stack);
    const PanePage& described = context.editor.Catalog().Pages()[entry.place];
    if (described.installable) {
        page->SetHint(context.Say(words::installedHint));
        page->AddFields(described.groups.front().fields);
        page->Finish();
        return page;
    }
    const std::vector<bool> open = openGroups(described);
    for (std::size_t i = 0; i < open.size(); ++i) {
        page->AddGroup(qText(described.groups[i].name), described.groups[i].fields, open[i]);
    }
    page->Finish();
    return page;
}

FieldPage* CustomizePaneWidget::MakeQuickAccessPage() {
    auto* page = new FieldPage(context, stack);
    std::vector<FieldPage::ExtraRow> extraRows;
    if (context.data != nullptr && context.data->Settings()) {
        auto* copies = new CopiesField(*context.data, page);
        extraRows.push_back({context.Say(words::copies), copies, [copies] { copies->Follow(); }});
    }
    page->AddFields(quickAccessFields(context.editor, quickAccess), extraRows);
    page->Finish();
    return page;
}

void CustomizePaneWidget::ShowEntry(std::size_t index) {
    Entry& entry = entries[index];
    if (entry.widget == nullptr) {
        entry.widget = MakePage(entry);
        stack->addWidget(entry.widget);
        shareColorsBelow(*entry.widget);
        chainInTabOrder(list, *entry.widget);
        entry.isStale = dynamic_cast<FieldPage*>(entry.widget) == nullptr;
    }
    if (entry.isStale) {
        UpdateEntry(entry, nullptr);
    }
    current = index;
    stack->setCurrentWidget(entry.widget);
}

std::optional<std::size_t> CustomizePaneWidget::IndexOf(const std::string& identifier) const {
    const auto place = std::ranges::find_if(
        entries, [&](const Entry& entry) { return entry.described.identifier == identifier; });
    return place == entries.end() ? std::nullopt
                                  : std::optional(static_cast<std::size_t>(place - entries.begin()));
}

bool CustomizePaneWidget::ShowPage(const std::string& identifier) {
    const auto index = IndexOf(identifier);
    if (!index) {
        return false;
    }
    EndSearch();
    list->setCurrentRow(static_cast<int>(*index));
    if (current != index) { // the list had this row already, and sent no signal
        ShowEntry(*index);
    }
    return true;
}

bool CustomizePaneWidget::ShowField(const std::string& keyword) {
    const PaneField* field = context.editor.Catalog().Find(keyword);
    if (field == nullptr) {
        return false;
    }
    if (!isDrawn) {
        fieldToShow = keyword;
        return true;
    }
    return ShowPage(pageOf(context.texts, *field)) && CurrentFieldPage() != nullptr &&
           CurrentFieldPage()->ShowField(keyword);
}

std::vector<std::string> CustomizePaneWidget::PageIdentifiers() const {
    std::vector<std::string> identifiers;
    for (const Entry& entry : entries) {
        identifiers.push_back(entry.described.identifier);
    }
    return identifiers;
}

FieldPage* CustomizePaneWidget::CurrentFieldPage() const {
    return dynamic_cast<FieldPage*>(stack->currentWidget());
}

void CustomizePaneWidget::SearchNow() {
    searchPause.stop();
    const QString query = search->text().trimmed();
    if (query.isEmpty()) {
        if (stack->currentWidget() == results && current) {
            const QSignalBlocker blocker(list);
            list->setCurrentRow(static_cast<int>(*current));
            ShowEntry(*current);
        }
        return;
    }
    const SearchResults found = fieldSearch.Results(query.toStdString());
    results->Clear();
    if (!found.nothingFound.empty()) {
        results->SetHint(qText(found.nothingFound));
    }
    for (const SearchResults::Page& page : found.pages) {
        results->AddLink(qText(page.title), [this, identifier = page.identifier] { ShowPage(identifier); });
    }
    for (const SearchResults::Section& section : found.sections) {
        results->AddHeading(qText(section.heading));
        results->AddFields(section.fields);
    }
    if (!found.more.empty()) {
        results->SetHint(qText(found.more));
    }
    results->Finish();
    chainInTabOrder(list, *results);
    results->verticalScrollBar()->setValue(0);
    stack->setCurrentWidget(results);
    const QSignalBlocker blocker(list);
    list->setCurrentRow(-1);
}

void CustomizePaneWidget::EndSearch() {
    searchPause.stop();
    const QSignalBlocker blocker(search);
    search->clear();
}

void CustomizePaneWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    ShowPicture();
}

// The picture stands where the pane is wide enough for it beside a page; it never widens the pane.
void CustomizePaneWidget::ShowPicture() {
    const int spacing = 2 * style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing);
    const bool isWide =
        width() >= list->width() + stack->minimumWidth() + picture->minimumSizeHint().width() + spacing;
    pictureButton->setVisible(isWide);
    picture->setVisible(isWide && pictureButton->isChecked());
}

// The list shows all its entries; the gauges take the rest of the height, or fold away.
void CustomizePaneWidget::LeaveRoomForPages() {
    constexpr int mostShown = 6; // entries for which the pane asks for height: the dialog fits 540 points
    list->setMinimumHeight(std::min(list->count(), mostShown) * list->fontMetrics().height() +
                           2 * list->frameWidth());
    if (gauges != nullptr && list->count() > 0) {
        const int rows = list->count() * RoomyRows::RoomyHeight(list->fontMetrics());
        gauges->SetRoom(besideList->height() - rows - 3 * list->frameWidth() -
                        style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing));
    }
    PutRowsCloser();
}

// On a low screen, where even without gauges not all entries fit.
void CustomizePaneWidget::PutRowsCloser() {
    if (list->count() == 0) {
        return;
    }
    const int before = rowsOfList->Height(list->fontMetrics());
    rowsOfList->LimitHeight((list->height() - 2 * list->frameWidth()) / list->count());
    if (rowsOfList->Height(list->fontMetrics()) != before) {
        list->doItemsLayout();
    }
}

// Keys of the search field: Down and Return go to the first result, Escape ends the search.
bool CustomizePaneWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
            SearchNow();
            FieldPage* page = CurrentFieldPage();
            if (page != nullptr) {
                page->FocusFirst();
            }
            return true;
        }
        if (key == Qt::Key_Escape && !search->text().isEmpty()) {
            search->clear();
            return true;
        }
    }
    if (watched == besideList && event->type() == QEvent::Resize) {
        LeaveRoomForPages();
    } else if (watched == list && event->type() == QEvent::Resize) {
        PutRowsCloser();
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace torka
