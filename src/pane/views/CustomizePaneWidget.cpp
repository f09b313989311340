#include "pane/views/CustomizePaneWidget.h"

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "pane/views/ConflictBar.h"
#include "pane/views/FieldPage.h"
#include "pane/views/FieldTexts.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/RoomyRows.h"
#include "pane/views/SummaryPage.h"

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
#include <set>

namespace torka {
namespace {

constexpr std::size_t openAtFirst = 30; // fields of a page
constexpr std::size_t mostFound = 40;   // rows of a search
constexpr std::chrono::milliseconds pauseInTyping{120};

const char* const quickAccessPage = "quickAccess";
const char* const installedPage = "installed";
const char* const summaryPage = "summary";

} // namespace

CustomizePaneWidget::CustomizePaneWidget(PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext) {
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
    list->setItemDelegate(new RoomyRows(list));
    const int signSize = style()->pixelMetric(QStyle::PM_SmallIconSize);
    list->setIconSize(QSize(signSize, signSize));
    side->addWidget(list, 1);
    for (const ExtraWidget& extra : paneRegistry().widgets) {
        if (extra.place == PanePlace::gauges) {
            if (QWidget* widget = extra.make(context, area)) {
                side->addWidget(widget);
            }
        }
    }
    columns->addLayout(side);
    stack = new QStackedWidget(area);
    constexpr int leastCharacters = 74; // a label, a popup and the buttons of its row
    constexpr int leastLines = 14;
    stack->setMinimumSize(fontMetrics().averageCharWidth() * leastCharacters,
                          fontMetrics().height() * leastLines);
    columns->addWidget(stack, 1);
    rows->addLayout(columns, 1);
    bar = new ConflictBar(context, area);
    rows->addWidget(bar);
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
    layout->addWidget(search, 1);
    undo = MakeButton(header, true);
    redo = MakeButton(header, false);
    layout->addWidget(undo);
    layout->addWidget(redo);
    layout->addStretch(1);
    for (const ExtraWidget& extra : paneRegistry().widgets) {
        if (extra.place == PanePlace::presets) {
            if (QWidget* widget = extra.make(context, header)) {
                layout->addWidget(widget);
            }
        }
    }
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
    const auto add = [this](Entry::Kind kind, std::string identifier, QString title, std::size_t place) {
        entries.push_back({kind, std::move(identifier), std::move(title), place, nullptr, false, nullptr});
    };
    if (!quickAccess.empty()) {
        add(Entry::Kind::quickAccess, quickAccessPage, context.Say(words::quickAccess), 0);
    }
    const auto& pages = context.editor.Catalog().Pages();
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (!pages[i].installable) {
            add(Entry::Kind::page, pages[i].keyword, qText(pages[i].name), i);
        }
    }
    const auto& extras = paneRegistry().pages;
    for (std::size_t i = 0; i < extras.size(); ++i) {
        if (!extras[i].applies || extras[i].applies(context)) {
            add(Entry::Kind::extra, extras[i].identifier, context.Say(extras[i].title), i);
        }
    }
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (pages[i].installable) {
            add(Entry::Kind::installed, installedPage, context.Say(words::installed), i);
        }
    }
    add(Entry::Kind::summary, summaryPage, context.Say(words::summary), 0);

    const QSignalBlocker blocker(list);
    int widest = 0;
    for (Entry& entry : entries) {
        entry.item = new QListWidgetItem(entry.title, list);
        entry.item->setToolTip(plainToolTip(entry.title));
        widest = std::max(widest, list->fontMetrics().horizontalAdvance(entry.title));
    }
    constexpr int mostCharacters = 26;
    const int margins = 2 * list->frameWidth() + 4 * style()->pixelMetric(QStyle::PM_FocusFrameHMargin) +
                        style()->pixelMetric(QStyle::PM_SmallIconSize) +
                        style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    list->setFixedWidth(std::min(widest, list->fontMetrics().averageCharWidth() * mostCharacters) + margins);
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
    const std::string shown = current ? entries[*current].identifier : std::string();
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
    }
    UpdateSurroundings(nullptr);
}

void CustomizePaneWidget::greyoutShortcutControls(bool grey) { area->setEnabled(!grey); }

void CustomizePaneWidget::FollowChange(const PaneChange& change) {
    if (!isDrawn) {
        return;
    }
    if (change.catalogRemade) {
        const std::string shown = current ? entries[*current].identifier : std::string();
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
    } else if (auto* extra = dynamic_cast<ExtraPageWidget*>(entry.widget)) {
        extra->Update();
    } else if (auto* summary = dynamic_cast<SummaryPage*>(entry.widget)) {
        summary->Update();
    }
}

void CustomizePaneWidget::UpdateSurroundings(const PaneChange* change) {
    bar->Update(change);
    MarkConflicts();
    undo->setEnabled(context.editor.CanUndo());
    redo->setEnabled(context.editor.CanRedo());
    QStringList names;
    constexpr qsizetype mostNames = 3;
    for (const PPDXControl* control : context.editor.UndoSubjects()) {
        if (names.size() == mostNames) {
            names.append(QStringLiteral("…"));
            break;
        }
        names.append(qText(nameOf(*control)));
    }
    undo->setToolTip(plainToolTip(names.isEmpty()
                                      ? context.Say(words::undo).remove(QLatin1Char('&'))
                                      : context.Say(words::undoOf, names.join(QLatin1String(", ")))));
    if (!entries.empty() && entries.back().kind == Entry::Kind::summary) {
        const std::size_t count = context.editor.DifferenceCount();
        entries.back().item->setText(count == 0
                                         ? entries.back().title
                                         : QStringLiteral("%1 (%2)").arg(entries.back().title).arg(count));
    }
}

// The pages that hold one side of a conflict bear a sign.
void CustomizePaneWidget::MarkConflicts() {
    std::set<std::size_t> pages;
    std::set<std::string> keywords;
    for (const PaneConflict& conflict : context.editor.Conflicts()) {
        for (const std::string& keyword : {conflict.first.keyword, conflict.second.keyword}) {
            keywords.insert(keyword);
            if (const PaneField* field = context.editor.Catalog().Find(keyword)) {
                pages.insert(field->page);
            }
        }
    }
    for (Entry& entry : entries) {
        const bool isPage = entry.kind == Entry::Kind::page || entry.kind == Entry::Kind::installed;
        const bool isQuick =
            entry.kind == Entry::Kind::quickAccess &&
            std::ranges::any_of(quickAccess, [&](const auto& k) { return keywords.contains(k); });
        const bool marked = isQuick || (isPage && pages.contains(entry.place));
        if (marked == entry.item->icon().isNull()) {
            entry.item->setIcon(marked ? paneIcon(PaneSign::warning) : QIcon());
            entry.item->setData(Qt::AccessibleTextRole,
                                marked ? context.Say(words::conflictPage, entry.title) : entry.title);
        }
    }
}

QWidget* CustomizePaneWidget::MakePage(Entry& entry) {
    switch (entry.kind) {
    case Entry::Kind::quickAccess:
        return MakeQuickAccessPage();
    case Entry::Kind::page:
    case Entry::Kind::installed:
        return MakeFieldPage(entry);
    case Entry::Kind::extra:
        return paneRegistry().pages[entry.place].make(context, stack);
    case Entry::Kind::summary:
        break;
    }
    return new SummaryPage(
        context, [this](const std::string& keyword) { ShowField(keyword); }, stack);
}

FieldPage* CustomizePaneWidget::MakeFieldPage(const Entry& entry) {
    auto* page = new FieldPage(context, stack);
    const PanePage& described = context.editor.Catalog().Pages()[entry.place];
    if (described.installable) {
        page->SetHint(context.Say(words::installedHint));
        page->AddFields(described.groups.front().fields);
        page->Finish();
        return page;
    }
    std::size_t fields = 0;
    for (const PaneGroup& group : described.groups) {
        const bool open = fields == 0 || fields + group.fields.size() <= openAtFirst;
        fields += group.fields.size();
        page->AddGroup(qText(group.name), group.fields, open);
    }
    page->Finish();
    return page;
}

FieldPage* CustomizePaneWidget::MakeQuickAccessPage() {
    auto* page = new FieldPage(context, stack);
    std::vector<PaneField> fields;
    for (const std::string& keyword : quickAccess) {
        if (const PaneField* field = context.editor.Catalog().Find(keyword)) {
            fields.push_back(*field);
        } else if (PPDXControl* control = context.editor.FindControl(keyword)) {
            fields.push_back(PaneCatalog::FieldOf(*control)); // on no page
        }
    }
    page->AddFields(fields);
    page->Finish();
    return page;
}

void CustomizePaneWidget::ShowEntry(std::size_t index) {
    Entry& entry = entries[index];
    if (entry.widget == nullptr) {
        entry.widget = MakePage(entry);
        if (entry.widget == nullptr) {
            entry.item->setHidden(true);
            return;
        }
        stack->addWidget(entry.widget);
        entry.isStale = dynamic_cast<FieldPage*>(entry.widget) == nullptr;
    }
    if (entry.isStale) {
        UpdateEntry(entry, nullptr);
    }
    current = index;
    stack->setCurrentWidget(entry.widget);
}

std::optional<std::size_t> CustomizePaneWidget::IndexOf(const std::string& identifier) const {
    const auto place =
        std::ranges::find_if(entries, [&](const Entry& entry) { return entry.identifier == identifier; });
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
    if (current != index) { // it was the list's already
        ShowEntry(*index);
    }
    return true;
}

bool CustomizePaneWidget::ShowField(const std::string& keyword) {
    const PaneField* field = context.editor.Catalog().Find(keyword);
    if (field == nullptr) {
        return false;
    }
    const PanePage& page = context.editor.Catalog().Pages()[field->page];
    return ShowPage(page.installable ? installedPage : page.keyword) && CurrentFieldPage() != nullptr &&
           CurrentFieldPage()->ShowField(keyword);
}

std::vector<std::string> CustomizePaneWidget::PageIdentifiers() const {
    std::vector<std::string> identifiers;
    for (const Entry& entry : entries) {
        identifiers.push_back(entry.identifier);
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
    const auto found = context.editor.Catalog().Search(query.toStdString());
    results->Clear();
    if (found.empty()) {
        results->SetHint(context.Say(words::foundNone, query));
    }
    const auto& pages = context.editor.Catalog().Pages();
    std::vector<PaneField> fields;
    QString heading;
    const auto flush = [&] {
        if (!fields.empty()) {
            results->AddHeading(heading);
            results->AddFields(fields);
            fields.clear();
        }
    };
    for (std::size_t i = 0; i < std::min(found.size(), mostFound); ++i) {
        const PaneField& field = *found[i].field;
        const PanePage& page = pages[field.page];
        QString place = page.installable ? context.Say(words::installed)
                                         : context.Say(words::matches, qText(page.name),
                                                       qText(page.groups[field.group].name));
        if (!found[i].choice.empty()) {
            place += QStringLiteral(" – ") + context.Say(words::found, qText(found[i].choice));
        }
        if (place != heading) {
            flush();
            heading = place;
        }
        fields.push_back(field);
    }
    flush();
    if (found.size() > mostFound) {
        results->SetHint(context.Say(words::foundMore, QString::number(found.size() - mostFound)));
    }
    results->Finish();
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

// In the search field: down and Return go into what was found, Escape ends the search.
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
    return QWidget::eventFilter(watched, event);
}

} // namespace torka
