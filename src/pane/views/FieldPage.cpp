// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldPage.h"

#include "pane/views/Eliding.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RollDown.h"
#include "pane/views/TabOrder.h"

#include <QFormLayout>
#include <QLabel>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace torka {
namespace {

constexpr std::size_t rowsAtFirst = 40; // of a group

// The height of the missing rows when they are as high as the made ones; a widget has a greatest height.
int roomHeight(int heightOfMade, std::size_t made, std::size_t missing) {
    const double height =
        static_cast<double>(heightOfMade) / static_cast<double>(made) * static_cast<double>(missing);
    return static_cast<int>(std::min(height, QWIDGETSIZE_MAX / 2.0));
}

} // namespace

FieldPage::FieldPage(PaneContext& paneContext, QWidget* parent)
    : QScrollArea(parent)
    , context(paneContext) {
    setWidgetResizable(true);
    setAlignment(Qt::AlignLeading | Qt::AlignTop);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { MakeVisibleRows(); });
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this] { MakeVisibleRows(); });
    Clear();
}

FieldPage::~FieldPage() {
    longGroups.clear();
    delete takeWidget(); // the widgets call the rows, so they go first
}

void FieldPage::Clear() {
    longGroups.clear();
    delete takeWidget();
    rows.clear();
    groups.clear();
    extraUpdates.clear();
    labelWidth = 0;
    column = new QWidget;
    constexpr int greatestCharacters = 104; // wider fields are no easier to read
    column->setMaximumWidth(fontMetrics().averageCharWidth() * greatestCharacters);
    auto* layout = new QVBoxLayout(column);
    layout->setSpacing(4);
    setWidget(column);
    column->setAutoFillBackground(false); // shows the tab, whose colour may differ from the window's
}

void FieldPage::SetHint(const QString& text) {
    auto* hint = new QLabel(column);
    hint->setTextFormat(Qt::PlainText);
    hint->setText(text);
    hint->setWordWrap(true);
    alignLeading(*hint);
    hint->setForegroundRole(QPalette::PlaceholderText);
    column->layout()->addWidget(hint);
}

void FieldPage::AddLink(const QString& text, const std::function<void()>& go) {
    auto* link = new ElidingToolButton(text, column);
    link->setIcon(paneIcon(PaneSign::closed));
    link->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    link->setAutoRaise(true);
    link->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    link->setFocusPolicy(Qt::StrongFocus);
    // The page is cleared by going elsewhere: the button must not end within its own signal.
    connect(link, &QToolButton::clicked, this, go, Qt::QueuedConnection);
    column->layout()->addWidget(link);
}

void FieldPage::AddHeading(const QString& text) {
    auto* heading = new QLabel(column);
    heading->setTextFormat(Qt::PlainText);
    heading->setText(text);
    alignLeading(*heading);
    heading->setForegroundRole(QPalette::PlaceholderText);
    column->layout()->addWidget(heading);
}

int FieldPage::LabelWidth(const std::vector<PaneField>& fields) const {
    int widest = 0;
    for (const PaneField& field : fields) {
        widest = std::max(widest, fontMetrics().horizontalAdvance(qText(field.name)));
    }
    constexpr int maximumCharacters = 22; // a longer name is wrapped
    return std::min(widest, fontMetrics().averageCharWidth() * maximumCharacters) + 4;
}

void FieldPage::AddGroup(const QString& title, const std::vector<PaneField>& fields, bool open) {
    labelWidth = std::max(labelWidth, LabelWidth(fields));
    Group group{nullptr, {}};
    for (const PaneField& field : fields) {
        group.keywords.push_back(field.keyword);
    }
    group.rollDown = new RollDown(
        context, title, [this, fields](QWidget& content) { Fill(content, fields); }, column);
    group.rollDown->setProperty("opensAtFirst", open);
    column->layout()->addWidget(group.rollDown);
    groups.push_back(std::move(group));
}

void FieldPage::AddFields(const std::vector<PaneField>& fields, const std::vector<ExtraRow>& extraRows) {
    labelWidth = std::max(labelWidth, LabelWidth(fields));
    auto* content = new QWidget(column);
    column->layout()->addWidget(content);
    Fill(*content, fields, extraRows);
}

void FieldPage::Finish() {
    static_cast<QVBoxLayout*>(column->layout())->addStretch(1);
    for (const Group& group : groups) {
        group.rollDown->SetOpen(group.rollDown->property("opensAtFirst").toBool());
    }
}

void FieldPage::Fill(QWidget& content, const std::vector<PaneField>& fields,
                     const std::vector<ExtraRow>& extraRows) {
    auto* form = new QFormLayout(&content);
    const int indent = style()->pixelMetric(QStyle::PM_SmallIconSize) + 4;
    const bool underHeader = content.parentWidget() != column;
    form->setContentsMargins(underHeader ? indent : 0, 2, 0, 8);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setLabelAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    form->setHorizontalSpacing(12);
    for (const ExtraRow& extra : extraRows) {
        auto* label = new QLabel(&content);
        label->setTextFormat(Qt::PlainText);
        label->setText(labelText(extra.name));
        label->setFixedWidth(labelWidth);
        label->setBuddy(extra.widget);
        alignLeading(*label);
        extra.widget->setAccessibleName(extra.name);
        form->addRow(label, extra.widget);
        extraUpdates.push_back(extra.update);
    }
    const std::size_t first = std::min(fields.size(), rowsAtFirst);
    for (std::size_t i = 0; i < first; ++i) {
        MakeRow(*form, form->rowCount(), fields[i]);
    }
    if (first < fields.size()) {
        LongGroup group{form, fields, first, new QWidget(&content)};
        const int height = form->sizeHint().height(); // of the made rows
        form->addRow(group.room);
        group.room->setFixedHeight(roomHeight(height, first, fields.size() - first));
        longGroups.push_back(std::move(group));
    }
}

void FieldPage::MakeRow(QFormLayout& form, int place, const PaneField& field) {
    QWidget* content = form.parentWidget();
    auto row = makeFieldRow(context, field, content);
    if (QLabel* label = row->Label()) {
        label->setFixedWidth(labelWidth);
        const QString name = qText(field.name);
        if (fontMetrics().horizontalAdvance(name) > labelWidth) {
            label->setToolTip(plainToolTip(name)); // a long word of it may be cut
        }
        label->setBuddy(row->Focus());
        form.insertRow(place, label, row->Body());
    } else {
        auto* space = new QWidget(content); // keeps check boxes in the column of the controls
        space->setFixedWidth(labelWidth);
        form.insertRow(place, space, row->Body());
    }
    row->ShowValue();
    row->ShowAllowed();
    rows.push_back(std::move(row));
}

// Makes the next rows of a group, above the room of those that are still missing.
void FieldPage::MakeRows(LongGroup& group, std::size_t count) {
    const QScopedValueRollback making(isMakingRows, true);
    const std::size_t end = std::min(group.fields.size(), group.made + count);
    const FieldRow* above = RowOf(group.fields[group.made - 1].keyword);
    QWidget* before = above == nullptr ? nullptr : chainInTabOrder(nullptr, *above->Body());
    for (; group.made < end; ++group.made) {
        MakeRow(*group.form, group.form->rowCount() - 1, group.fields[group.made]);
        before = chainInTabOrder(before, *rows.back()->Body());
    }
    const std::size_t missing = group.fields.size() - group.made;
    if (missing == 0) {
        group.form->removeRow(group.room); // deletes it
        group.room = nullptr;
    } else {
        const int height = group.form->sizeHint().height() - group.room->minimumHeight();
        group.room->setFixedHeight(roomHeight(height, group.made, missing));
    }
}

// Makes the rows of the visible part and of one more height of the page, so that keys always find a next row.
void FieldPage::MakeVisibleRows() {
    if (isMakingRows || !isVisible()) {
        return;
    }
    for (LongGroup& group : longGroups) {
        while (group.room != nullptr && group.room->isVisible() &&
               group.room->mapTo(viewport(), QPoint()).y() < 2 * viewport()->height()) {
            MakeRows(group, rowsAtFirst);
            group.form->activate();
            column->layout()->activate();
            column->adjustSize();
        }
    }
    std::erase_if(longGroups, [](const LongGroup& group) { return group.room == nullptr; });
}

void FieldPage::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    MakeVisibleRows();
}

void FieldPage::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    MakeVisibleRows();
}

void FieldPage::Update(const std::vector<PPDXControl*>* controls) {
    for (const auto& row : rows) {
        // What the dialog decides may change without a change of the control: a size that no choice has.
        if (controls == nullptr || std::ranges::find(*controls, row->Field().control) != controls->end() ||
            context.editor.LockOf(*row->Field().control) == PaneLock::system) {
            row->ShowValue();
        }
    }
    for (const auto& row : rows) {
        row->ShowAllowed();
    }
    for (const auto& update : extraUpdates) {
        update();
    }
}

FieldRow* FieldPage::RowOf(std::string_view keyword) const {
    const auto place =
        std::ranges::find_if(rows, [&](const auto& row) { return row->Field().keyword == keyword; });
    return place == rows.end() ? nullptr : place->get();
}

void FieldPage::FocusFirst() {
    const auto place = std::ranges::find_if(rows, [](const auto& row) { return row->Focus()->isEnabled(); });
    if (place != rows.end()) {
        (*place)->Focus()->setFocus(Qt::OtherFocusReason);
    }
}

bool FieldPage::ShowField(std::string_view keyword) {
    for (const Group& group : groups) {
        if (std::ranges::find(group.keywords, keyword) != group.keywords.end()) {
            group.rollDown->SetOpen(true);
            break;
        }
    }
    for (LongGroup& group : longGroups) {
        const auto place = std::ranges::find(group.fields, keyword, &PaneField::keyword);
        const auto index = static_cast<std::size_t>(place - group.fields.begin());
        if (place != group.fields.end() && index >= group.made) {
            MakeRows(group, index + 1 - group.made + rowsAtFirst); // keys go on behind it at once
        }
    }
    std::erase_if(longGroups, [](const LongGroup& group) { return group.room == nullptr; });
    FieldRow* row = RowOf(keyword);
    if (row == nullptr) {
        return false;
    }
    column->layout()->activate();
    column->adjustSize();
    ensureWidgetVisible(row->Body());
    row->Focus()->setFocus(Qt::OtherFocusReason);
    return true;
}

} // namespace torka
