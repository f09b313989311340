// SPDX-License-Identifier: Apache-2.0
#include "pane/views/ChoiceFields.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "pane/presentation/FieldTexts.h"
#include "pane/views/Eliding.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"

#include <QAbstractItemView>
#include <QAbstractListModel>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QStandardItemModel>
#include <QStringList>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace torka {
namespace {

bool anyOf(const std::vector<bool>& forbidden) {
    return std::ranges::find(forbidden, true) != forbidden.end();
}

} // namespace

// A combo box that makes its list, which is a window, when the list is first opened. QComboBox makes the list
// earlier: for its size hint, for the delegate of the list, and when its size policy or contents length is
// set. This class therefore computes its size itself, and nobody calls the two setters.
class LazyComboBox : public QComboBox {
public:
    // `characters`: the minimum width in characters; 0 leaves the width to the layout.
    LazyComboBox(int characters, QWidget* parent)
        : QComboBox(parent)
        , minimumCharacters(characters) {
        setFocusPolicy(Qt::StrongFocus);
    }

    // The same size as QComboBox with AdjustToMinimumContentsLengthWithIcon.
    QSize sizeHint() const override {
        constexpr int minimumTextHeight = 14;
        constexpr int iconMargin = 4;
        constexpr int frame = 2;
        const int textHeight = static_cast<int>(std::ceil(QFontMetricsF(fontMetrics()).height()));
        const int textWidth = minimumCharacters * fontMetrics().horizontalAdvance(QLatin1Char('X'));
        const QSize content(textWidth > 0 ? textWidth + iconSize().width() + iconMargin : 0,
                            std::max({textHeight, minimumTextHeight, iconSize().height()}) + frame);
        QStyleOptionComboBox option;
        initStyleOption(&option);
        return style()->sizeFromContents(QStyle::CT_ComboBox, &option, content, this);
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

private:
    int minimumCharacters;
};

// The choices of a popup with their state. Forbidden choices are disabled. A forbidden current choice stays
// enabled and has a sign.
class ChoiceModel final : public QAbstractListModel {
public:
    ChoiceModel(PaneContext& paneContext, const PPDXControl& shownControl, QObject* parent)
        : QAbstractListModel(parent)
        , context(paneContext)
        , control(shownControl)
        , choices(choicesOf(shownControl))
        , version(paneContext.editor.FieldsVersion()) {}

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(choices.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || index.row() >= static_cast<int>(choices.size())) {
            return {};
        }
        const auto row = static_cast<std::size_t>(index.row());
        switch (role) {
        case Qt::DisplayRole:
            return qText(choices[row].name);
        case Qt::ToolTipRole:
            return IsForbidden(row) ? plainToolTip(Why(row)) : QVariant();
        case Qt::AccessibleDescriptionRole:
            return IsForbidden(row) ? Why(row) : QVariant();
        case Qt::DecorationRole:
            return IsForbidden(row) && row == current ? QVariant(paneIcon(PaneSign::warning)) : QVariant();
        case Qt::ForegroundRole: // some styles draw a list of choices as a menu, in the host's colours
            return flags(index).testFlag(Qt::ItemIsEnabled)
                       ? QVariant()
                       : QBrush(readableColors().color(QPalette::Disabled, QPalette::Text));
        default:
            return {};
        }
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override {
        if (!index.isValid()) {
            return Qt::NoItemFlags;
        }
        const auto row = static_cast<std::size_t>(index.row());
        const bool enabled = !IsForbidden(row) || row == current;
        return enabled ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
    }

    const std::vector<PaneChoice>& Choices() const { return choices; }

    // Reads the choices again if they may have changed. Returns whether they were replaced.
    bool Reload() {
        const std::size_t count = static_cast<const PPDXPopupControl&>(control).ItemCount();
        const std::uint64_t before = std::exchange(version, context.editor.FieldsVersion());
        if (before == version && count == choices.size()) {
            return false;
        }
        std::vector<PaneChoice> now = choicesOf(control);
        const bool same = count == choices.size() &&
                          std::ranges::equal(now, choices, [](const PaneChoice& a, const PaneChoice& b) {
                              return a.keyword == b.keyword && a.name == b.name;
                          });
        if (same) {
            return false;
        }
        beginResetModel();
        choices = std::move(now);
        forbidden.clear();
        endResetModel();
        return true;
    }

    void SetState(std::vector<bool> nowForbidden, std::size_t currentRow) {
        if (nowForbidden == forbidden && currentRow == current) {
            return;
        }
        forbidden = std::move(nowForbidden);
        current = currentRow;
        if (!choices.empty()) {
            Q_EMIT dataChanged(index(0), index(static_cast<int>(choices.size()) - 1));
        }
    }

private:
    bool IsForbidden(std::size_t row) const { return row < forbidden.size() && forbidden[row]; }
    QString Why(std::size_t row) const { return qText(whyForbidden(context.texts, control, choices[row])); }

    PaneContext& context;
    const PPDXControl& control;
    std::vector<PaneChoice> choices;
    std::uint64_t version; // of the editor's fields, when the choices were read
    std::vector<bool> forbidden;
    std::size_t current = 0;
};

PopupRow::PopupRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , box(new LazyComboBox(14, Body()))
    , choices(new ChoiceModel(paneContext, *shownField.control, box)) {
    box->setModel(choices);
    constexpr int shownItems = 16;
    box->setMaxVisibleItems(shownItems);
    QObject::connect(box, &QComboBox::activated, box, [this](int row) {
        if (row >= 0 && row < static_cast<int>(choices->Choices().size())) {
            Set(choices->Choices()[static_cast<std::size_t>(row)].keyword);
        }
    });
    Take(box, box, false);
}

void PopupRow::UpdateValue() {
    const std::string value = PaneEditor::Value(*field.control);
    choices->Reload();
    const auto& all = choices->Choices();
    const auto place =
        std::ranges::find_if(all, [&](const PaneChoice& choice) { return choice.keyword == value; });
    const auto unnamed = field.keyword == "*PageSize" && context.data != nullptr
                             ? paperWithoutName(*context.data)
                             : std::nullopt;
    // A size without a name is no choice of the description; the closed box shows it all the same.
    box->setPlaceholderText(unnamed ? qText(shownSize(context.texts, *unnamed)) : QString());
    const int row = place == all.end() || unnamed ? -1 : static_cast<int>(place - all.begin());
    if (box->currentIndex() != row) {
        box->setCurrentIndex(row);
    }
    constexpr qsizetype longText = 30; // a longer text may be cut
    box->setToolTip(box->currentText().size() > longText ? plainToolTip(box->currentText()) : QString());
}

bool PopupRow::UpdateAllowed() {
    std::vector<bool> forbidden = context.editor.Forbidden(*field.control);
    const bool any = anyOf(forbidden);
    choices->SetState(std::move(forbidden), static_cast<std::size_t>(std::max(box->currentIndex(), 0)));
    return any;
}

CheckRow::CheckRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , box(new ElidingCheckBox(qText(shownField.name), Body())) {
    QObject::connect(box, &QCheckBox::clicked, box, [this](bool on) { Set(on ? "True" : "False"); });
    Take(box, box, true);
}

void CheckRow::UpdateValue() {
    box->setChecked(static_cast<const PPDXBooleanControl*>(field.control)->IsTrue());
}

bool CheckRow::UpdateAllowed() {
    const CheckBoxState state = checkBoxState(context.texts, *field.control, box->isChecked());
    box->setEnabled(state.canChange);
    setPlainToolTip(*box, qText(state.whyOtherForbidden));
    return !state.whyOtherForbidden.empty();
}

// A combo box whose items are ticked one by one. Its list stays open meanwhile.
class TickBox final : public LazyComboBox {
public:
    explicit TickBox(QWidget* parent)
        : LazyComboBox(0, parent)
        , items(new QStandardItemModel(this)) {
        setModel(items);
    }

    void showPopup() override {
        view()->viewport()->installEventFilter(this); // repeated calls install it once
        view()->installEventFilter(this);
        LazyComboBox::showPopup();
    }

    QStandardItemModel& Items() { return *items; }
    void SetSummary(const QString& text) {
        summary = text;
        update();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool released = event->type() == QEvent::MouseButtonRelease && watched == view()->viewport();
        const bool pressed = event->type() == QEvent::KeyPress && watched == view() &&
                             static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
        if (released || pressed) {
            Toggle(items->itemFromIndex(view()->currentIndex()));
            return true;
        }
        return QComboBox::eventFilter(watched, event);
    }

    void paintEvent(QPaintEvent* /*event*/) override {
        QStylePainter painter(this);
        QStyleOptionComboBox option;
        initStyleOption(&option);
        option.currentText = summary;
        option.currentIcon = {};
        painter.drawComplexControl(QStyle::CC_ComboBox, option);
        painter.drawControl(QStyle::CE_ComboBoxLabel, option);
    }

    // The keys open the list: a closed box has no current choice to change.
    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key == Qt::Key_Down || key == Qt::Key_Up || key == Qt::Key_Space || key == Qt::Key_F4) {
            showPopup();
        } else {
            event->ignore();
        }
    }
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

private:
    static void Toggle(QStandardItem* item) {
        if (item != nullptr && item->isEnabled()) {
            item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
        }
    }

    QStandardItemModel* items;
    QString summary;
};

SeveralChoicesRow::SeveralChoicesRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , box(new TickBox(Body())) {
    MakeItems();
    QObject::connect(&box->Items(), &QStandardItemModel::itemChanged, box, [this] { TakeTicks(); });
    Take(box, box, false);
}

void SeveralChoicesRow::MakeItems() {
    choices = choicesOf(*field.control);
    updating = true;
    box->Items().clear();
    for (const PaneChoice& choice : choices) {
        auto* item = new QStandardItem(qText(choice.name));
        item->setCheckable(true);
        item->setEditable(false);
        box->Items().appendRow(item);
    }
    updating = false;
}

void SeveralChoicesRow::TakeTicks() {
    if (updating) {
        return;
    }
    std::string chosen;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (box->Items().item(static_cast<int>(i))->checkState() == Qt::Checked) {
            chosen += (chosen.empty() ? "" : "\n") + choices[i].keyword;
        }
    }
    Set(chosen);
}

void SeveralChoicesRow::UpdateValue() {
    const auto& popup = static_cast<const PPDXPopupControl&>(*field.control);
    if (popup.ItemCount() != choices.size()) {
        MakeItems();
    }
    updating = true;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        box->Items()
            .item(static_cast<int>(i))
            ->setCheckState(popup.IsKeywordSelected(choices[i].keyword.c_str()) ? Qt::Checked
                                                                                : Qt::Unchecked);
    }
    updating = false;
    const QString value = qText(shownValue(context.texts, field, PaneEditor::Value(*field.control)));
    box->SetSummary(value);
    setPlainToolTip(*box, value);
}

bool SeveralChoicesRow::UpdateAllowed() {
    const std::vector<bool> forbidden = context.editor.Forbidden(*field.control);
    updating = true;
    for (std::size_t i = 0; i < std::min(choices.size(), forbidden.size()); ++i) {
        QStandardItem* item = box->Items().item(static_cast<int>(i));
        item->setEnabled(!forbidden[i] || item->checkState() == Qt::Checked);
        item->setToolTip(forbidden[i]
                             ? plainToolTip(qText(whyForbidden(context.texts, *field.control, choices[i])))
                             : QString());
    }
    updating = false;
    return anyOf(forbidden);
}

} // namespace torka
