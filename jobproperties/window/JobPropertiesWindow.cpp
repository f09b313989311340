// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/JobPropertiesWindow.h"

#include "jobproperties/window/LetterWidth.h"
#include "jobproperties/window/PlainText.h"
#include "jobproperties/window/SettingRow.h"
#include "jobproperties/window/StatusPanel.h"
#include "jobproperties/window/WatermarkEditor.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace torka::jobproperties {

namespace {

constexpr int refreshInterval = 5000; // milliseconds

// Settings of the pane itself, which no description contains. One without a label appears elsewhere in the
// window or is not editable.
struct PaneSetting {
    std::string_view key; // without its asterisk
    const char* label;
};
constexpr std::array<PaneSetting, 7> paneSettings{
    {{"QV_COPIES", QT_TRANSLATE_NOOP("JobPropertiesWindow", "Copies")},
     {"num copies", nullptr},
     {"QV_WATERMARK", nullptr},
     {"QV_WATERMARK_FIRSTPAGEONLY", nullptr},
     {"PresetName", nullptr},
     {"PresetType", nullptr},
     {"PresetTimestampModified", nullptr}}};

const PaneSetting* paneSetting(const std::string& key) {
    const auto* found = std::find_if(paneSettings.begin(), paneSettings.end(),
                                     [&](const PaneSetting& known) { return known.key == bareKey(key); });
    return found == paneSettings.end() ? nullptr : found;
}

// Bounds of the copies, which are in the pane's list but in no description.
const DescribedSetting& describedCopies() {
    static const DescribedSetting copies = [] {
        DescribedSetting setting;
        setting.key = "QV_COPIES";
        setting.kind = SettingKind::Whole;
        setting.minimum = 1;
        setting.maximum = 9999;
        return setting;
    }();
    return copies;
}

} // namespace

JobPropertiesWindow::JobPropertiesWindow(Session& givenSession, const QString& title, QWidget* parent)
    : QDialog(parent)
    , session(givenSession) {
    setWindowTitle(title.isEmpty() ? tr("Job Properties") : title);
    setSizeGripEnabled(true);
    ReadDescription();
    auto* column = new QVBoxLayout(this);
    column->addWidget(MakeTop());
    column->addWidget(MakeMiddle(), 1);
    column->addWidget(MakeBottom());
    FillGroups();
    FillPages();
    FillPresets();
    ShowPage();
    ShowEditedState();
    status->Refresh();
    refresh.setInterval(refreshInterval);
    connect(&refresh, &QTimer::timeout, status, &StatusPanel::Refresh);
    if (session.server.IsTwoWay()) {
        refresh.start();
    }

    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        search->setFocus(Qt::ShortcutFocusReason);
        search->selectAll();
    });
    connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, status, &StatusPanel::Refresh);
    const int em = letterWidth(fontMetrics());
    QSize wanted(em * 150, fontMetrics().height() * 42);
    if (const QScreen* where = screen()) {
        wanted = wanted.boundedTo(where->availableSize() * 0.94);
    }
    resize(wanted);
    pages->setFocus();
}

void JobPropertiesWindow::ReadDescription() {
    const auto answer = session.server.Data();
    const std::string path = answer ? attributeOf(answer.value, "ppdLocation0") : std::string();
    if (path.empty()) {
        descriptionError = tr("The print server did not say where the printer's description is.");
    } else {
        std::string error;
        description = PrinterDescription::FromFile(path, error);
        descriptionError = error.empty() ? QString() : tr(error.c_str()).arg(shown(path));
    }
    if (!descriptionError.isEmpty()) {
        descriptionError += QLatin1Char(' ') + tr("Settings are shown by their keys.");
    }
}

QWidget* JobPropertiesWindow::MakeTop() {
    auto* top = new QWidget;
    auto* row = new QHBoxLayout(top);
    row->setContentsMargins(0, 0, 0, 0);
    search = new QLineEdit;
    search->setObjectName(QStringLiteral("search"));
    search->setPlaceholderText(tr("Search all settings (%1)")
                                   .arg(QKeySequence(QKeySequence::Find).toString(QKeySequence::NativeText)));
    search->setAccessibleName(tr("Search all settings"));
    search->setClearButtonEnabled(true);
    search->installEventFilter(this);
    connect(search, &QLineEdit::textChanged, this, &JobPropertiesWindow::Search);
    row->addWidget(search, 3);

    auto* label = new QLabel(tr("Server &preset:"));
    presets = new QComboBox;
    presets->setObjectName(QStringLiteral("presets"));
    presets->setAccessibleName(tr("Server preset"));
    presets->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    presets->setMinimumContentsLength(16);
    label->setBuddy(presets);
    applyPreset = new QPushButton(tr("App&ly Preset"));
    applyPreset->setObjectName(QStringLiteral("applyPreset"));
    applyPreset->setAutoDefault(false);
    presetState = new QLabel;
    presetState->setTextFormat(Qt::PlainText);
    connect(applyPreset, &QPushButton::clicked, this, &JobPropertiesWindow::ApplyPreset);
    row->addSpacing(12);
    row->addWidget(label);
    row->addWidget(presets, 2);
    row->addWidget(applyPreset);
    row->addWidget(presetState, 1);
    return top;
}

QWidget* JobPropertiesWindow::MakeMiddle() {
    pages = new QListWidget;
    pages->setObjectName(QStringLiteral("pages"));
    pages->setAccessibleName(tr("Pages of settings"));
    pages->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pages->setSpacing(2);
    connect(pages, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && !search->text().isEmpty()) {
            search->clear(); // shows the page
        } else if (row >= 0) {
            ShowPage();
        }
    });

    auto* content = new QWidget;
    groupColumn = new QVBoxLayout(content);
    groupColumn->setContentsMargins(0, 0, 6, 0);
    notice = new QLabel;
    notice->setWordWrap(true);
    notice->setTextFormat(Qt::PlainText);
    groupColumn->addWidget(notice);
    groupColumn->addStretch(1);
    scroll = new QScrollArea;
    scroll->setAccessibleName(tr("Settings"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(content);
    scroll->setMinimumWidth(letterWidth(fontMetrics()) * 50);
    watermarks = new WatermarkEditor(session.settings);
    connect(watermarks, &WatermarkEditor::Edited, this, &JobPropertiesWindow::ShowEditedState);
    stack = new QStackedWidget;
    stack->addWidget(scroll);
    stack->addWidget(watermarks);

    status = new StatusPanel(session.server);
    auto* splitter = new QSplitter;
    splitter->addWidget(pages);
    splitter->addWidget(stack);
    splitter->addWidget(status);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setStretchFactor(2, 0);
    splitter->setCollapsible(1, false);
    const int em = letterWidth(fontMetrics());
    splitter->setSizes({em * 22, em * 90, em * 36});
    return splitter;
}

QWidget* JobPropertiesWindow::MakeBottom() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    restore = buttons->addButton(tr("&Restore"), QDialogButtonBox::ResetRole);
    restore->setObjectName(QStringLiteral("restore"));
    restore->setAutoDefault(false);
    restore->setToolTip(tr("Bring back all settings as the job came with them"));
    connect(restore, &QPushButton::clicked, this, &JobPropertiesWindow::Restore);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

JobPropertiesWindow::Group& JobPropertiesWindow::GroupFor(const QString& page, const QString& title) {
    const QString name = page + '\t' + title;
    if (const auto found = index.constFind(name); found != index.constEnd()) {
        return groups[*found];
    }
    index.insert(name, groups.size());
    Group& group = groups.emplace_back();
    group.page = page;
    group.title = title;
    group.searchText = (page + '\n' + title).toLower();
    group.box = new QGroupBox;
    group.column = new QVBoxLayout(group.box);
    groupColumn->insertWidget(groupColumn->count() - 1, group.box);
    return group;
}

void JobPropertiesWindow::FillGroups() {
    std::vector<const JobSetting*> ordered; // in the description's order; the others follow
    std::vector<const JobSetting*> others;
    for (const JobSetting& setting : session.settings.Settings()) {
        (description.Find(setting.key) != nullptr ? ordered : others).push_back(&setting);
    }
    std::stable_sort(ordered.begin(), ordered.end(), [&](const JobSetting* first, const JobSetting* second) {
        return description.Find(first->key) < description.Find(second->key);
    });
    // Groups come in the description's order, even without settings in the job.
    for (const DescribedGroup& group : description.Groups()) {
        if (group.hidden) {
            continue;
        }
        const QString page = shown(group.page.empty() ? group.label : group.page);
        if (groups.empty()) {
            copiesPage = page;
            GroupFor(page, tr("Copies"));
        }
        GroupFor(page, shown(group.label));
    }
    for (const JobSetting* setting : ordered) {
        AddRow(*setting);
    }
    for (const JobSetting* setting : others) {
        AddRow(*setting);
    }

    if (const auto help = session.server.Help()) {
        QHash<QString, QString> texts;
        for (const KeyValue& entry : help.value) {
            texts.insert(shown(std::string(bareKey(entry.key))), shown(entry.value));
        }
        for (const Group& group : groups) {
            for (SettingRow* row : group.rows) {
                if (const auto text = texts.constFind(shown(std::string(bareKey(row->Key()))));
                    text != texts.constEnd()) {
                    row->SetHelp(*text);
                }
            }
        }
    }
}

void JobPropertiesWindow::AddRow(const JobSetting& setting) {
    const DescribedSetting* described = description.Find(setting.key);
    const PaneSetting* ofPane = paneSetting(setting.key);
    if (session.settings.Find(setting.key) != &setting || // its last entry is shown
        session.settings.IsVeiled(setting.key) || (described != nullptr && described->hidden) ||
        (ofPane != nullptr && ofPane->label == nullptr)) {
        return;
    }
    QString label = described != nullptr ? shown(described->label) : shown(setting.key);
    QString page = tr("Other");
    QString title = page;
    if (described != nullptr) {
        if (const DescribedGroup* group = description.FindGroup(described->group)) {
            title = shown(group->label);
            page = group->page.empty() ? title : shown(group->page);
        }
    } else if (ofPane != nullptr) {
        label = tr(ofPane->label);
        page = copiesPage.isEmpty() ? page : copiesPage;
        title = tr("Copies");
        described = &describedCopies();
    }
    Group& group = GroupFor(page, title);
    auto* row = new SettingRow(session.settings, setting.key, described, label);
    group.rows.push_back(row);
    group.column->addWidget(row);
    connect(row, &SettingRow::Edited, this, [this, row] {
        if (bareKey(row->Key()) == "QV_COPIES" && session.settings.Find("num copies") != nullptr) {
            session.settings.Edit("num copies", session.settings.Value(row->Key()));
        }
        ShowEditedState();
    });
}

void JobPropertiesWindow::FillPages() {
    QStringList names;
    for (const Group& group : groups) {
        if (!group.rows.empty() && !names.contains(group.page)) {
            names.push_back(group.page);
        }
    }
    pages->addItems(names);
    pages->addItem(tr("Watermarks"));
    pages->setMinimumWidth(std::min(pages->sizeHintForColumn(0), letterWidth(fontMetrics()) * 26) +
                           letterWidth(fontMetrics()) * 3);
    pages->setCurrentRow(0);
}

void JobPropertiesWindow::FillPresets() {
    const auto names = session.server.PresetNames();
    for (const std::string& name : names.value) {
        if (!name.empty()) {
            presets->addItem(shown(name));
        }
    }
    const bool hasAny = presets->count() > 0;
    if (!hasAny) {
        presets->addItem(tr("None on the server"));
    }
    presets->setEnabled(hasAny);
    applyPreset->setEnabled(hasAny);
    const int current = presets->findText(shown(session.settings.Value("*PresetName")));
    if (hasAny && current >= 0) {
        presets->setCurrentIndex(current);
    }
}

// Keeps an ampersand in a title from marking a shortcut.
void JobPropertiesWindow::ShowTitle(const Group& group, QString title) {
    group.box->setTitle(title.replace('&', QStringLiteral("&&")));
}

void JobPropertiesWindow::ShowPage() {
    const int row = pages->currentRow();
    if (row < 0) {
        return;
    }
    notice->setText(descriptionError);
    notice->setVisible(!descriptionError.isEmpty());
    if (row == pages->count() - 1) {
        stack->setCurrentWidget(watermarks);
        return;
    }
    const QString page = pages->item(row)->text();
    for (const Group& group : groups) {
        const bool isOnPage = group.page == page && !group.rows.empty();
        ShowTitle(group, group.title);
        group.box->setVisible(isOnPage);
        for (SettingRow* setting : group.rows) {
            setting->setVisible(isOnPage);
        }
    }
    scroll->verticalScrollBar()->setValue(0);
    stack->setCurrentWidget(scroll);
}

void JobPropertiesWindow::Search(const QString& text) {
    const QStringList words = text.toLower().split(' ', Qt::SkipEmptyParts);
    if (words.isEmpty()) {
        if (pages->currentRow() < 0) {
            pages->setCurrentRow(0);
        }
        ShowPage();
        return;
    }
    int found = 0;
    for (const Group& group : groups) {
        int foundHere = 0;
        for (SettingRow* row : group.rows) {
            const bool matches = row->Matches(words, group.searchText);
            row->setVisible(matches);
            foundHere += matches ? 1 : 0;
        }
        ShowTitle(group,
                  group.page == group.title ? group.title : group.page + QStringLiteral(" › ") + group.title);
        group.box->setVisible(foundHere > 0);
        found += foundHere;
    }
    notice->setText(found == 0   ? tr("No setting matches “%1”.").arg(text)
                    : found == 1 ? tr("1 setting found.")
                                 : tr("%1 settings found.").arg(found));
    notice->show();
    pages->setCurrentRow(-1);
    scroll->verticalScrollBar()->setValue(0);
    stack->setCurrentWidget(scroll);
}

void JobPropertiesWindow::FocusFirstRow() {
    for (const Group& group : groups) {
        for (SettingRow* row : group.rows) {
            if (row->isVisible() && row->focusProxy()->isEnabled()) {
                row->setFocus(Qt::TabFocusReason);
                scroll->ensureWidgetVisible(row);
                return;
            }
        }
    }
}

void JobPropertiesWindow::ShowEditedState() {
    restore->setEnabled(session.settings.IsChanged());
    const std::string name = session.settings.Value("*PresetName");
    presetState->setText(name.empty() ? QString() : tr("In use: %1").arg(shown(name)));
}

void JobPropertiesWindow::ShowAllValues() {
    for (const Group& group : groups) {
        for (SettingRow* row : group.rows) {
            row->ShowValue();
        }
    }
    watermarks->ShowValues();
    ShowEditedState();
}

void JobPropertiesWindow::ApplyPreset() {
    const QString name = presets->currentText();
    const auto preset = session.server.PresetByName(name.toStdString());
    if (!preset) {
        presetState->setText(tr("The server did not send this preset."));
        return;
    }
    session.settings.Apply(name.toStdString(), preset.value);
    ShowAllValues();
}

void JobPropertiesWindow::Restore() {
    session.settings.Restore();
    ShowAllValues();
}

// In the search field Return goes to the first match and Esc clears the search; neither closes the window.
bool JobPropertiesWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched != search || event->type() != QEvent::KeyPress) {
        return QDialog::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape && !search->text().isEmpty()) {
        search->clear();
        return true;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Down) {
        FocusFirstRow();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace torka::jobproperties
