// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PresetBar.h"

#include "pane/data/PDEData.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/PresetNameDialog.h"
#include "platform/qt/LetterWidth.h"

#include <QActionGroup>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStyleOptionToolButton>
#include <QStylePainter>

#include <algorithm>
#include <utility>

namespace torka {
namespace {

constexpr int maximumCharacters = 24; // of a name in the button
constexpr int buttonMargin = 6;       // pixels beside text and arrow
constexpr int menuCharacters = 48;    // of a name in the menu

QMessageBox* messageBox(QWidget* parent, QMessageBox::Icon icon, const QString& text) {
    auto* box = new QMessageBox(parent);
    box->setIcon(icon);
    box->setWindowTitle(parent->accessibleName());
    box->setTextFormat(Qt::PlainText); // set before the text, which may look like markup
    box->setText(text);
    return box;
}

} // namespace

PresetBar::PresetBar(PaneContext& paneContext, QWidget* parent)
    : QToolButton(parent)
    , context(paneContext)
    , presets(context.texts, context.editor, *context.data)
    , entries(new QMenu(this))
    , names(new QActionGroup(this)) {
    setObjectName(QStringLiteral("presets"));
    setAccessibleName(context.Say(words::presets));
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    setPopupMode(QToolButton::InstantPopup);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setMenu(entries);
    entries->setToolTipsVisible(true);
    connect(entries, &QMenu::aboutToShow, this, [this] { FillMenu(); });
    pause.setSingleShot(true);
    pause.setInterval(0);
    connect(&pause, &QTimer::timeout, this, [this] { CompareNow(); });
    firstShown.setSingleShot(true);
    connect(&firstShown, &QTimer::timeout, this, [this] {
        presets.ChooseByPresentSettings();
        ShowState();
    });
    context.editor.AddListener([self = QPointer<PresetBar>(this)](const PaneChange&) {
        if (self != nullptr && !self->presets.Chosen().empty()) {
            self->pause.start();
        }
    });
    ShowState();
}

// A dialog may begin with the settings of a preset.
void PresetBar::showEvent(QShowEvent* event) {
    QToolButton::showEvent(event);
    if (!std::exchange(wasShown, true)) {
        firstShown.start(0);
    }
}

void PresetBar::FillMenu() {
    CompareNow();
    entries->clear();
    const auto shown = [this](const std::string& name) {
        return labelText(fontMetrics().elidedText(qText(name), Qt::ElideRight,
                                                  fontMetrics().averageCharWidth() * menuCharacters));
    };
    for (const std::string& name : presets.Names()) {
        QAction* action = entries->addAction(shown(name));
        action->setCheckable(true);
        action->setChecked(name == presets.Chosen() && !presets.IsChanged());
        action->setActionGroup(names);
        action->setToolTip(plainToolTip(qText(name)));
        connect(action, &QAction::triggered, this, [this, name] { Apply(name); });
    }
    if (!entries->isEmpty()) {
        entries->addSeparator();
    }
    const auto add = [&](const QString& text, void (PresetBar::*act)()) {
        QAction* action = entries->addAction(text);
        connect(action, &QAction::triggered, this, [this, act] { (this->*act)(); });
        return action;
    };
    add(context.Say(words::presetSaveAs), &PresetBar::AskForSaving);
    if (!presets.Chosen().empty()) {
        const QString name = shown(presets.Chosen());
        add(context.Say(words::presetUpdate, name), &PresetBar::Update)->setEnabled(presets.IsChanged());
        add(context.Say(words::presetRename, name), &PresetBar::AskForRenaming);
        add(context.Say(words::presetDelete, name), &PresetBar::AskForDeleting);
    }
    if (PresetChoice::CanServeAllPrograms()) {
        entries->addSeparator();
        add(context.Say(words::allPrograms), &PresetBar::ServeAllPrograms);
        const PresetChoice::Kept kept = presets.KeptForAllPrograms();
        if (kept.isAny) {
            add(context.Say(words::allProgramsNot), &PresetBar::ServeOnlyThisPane);
        } else if (!kept.problem.empty()) {
            // The reason may be long: the box has it whole.
            const QFontMetrics metrics = fontMetrics();
            const QString text = metrics.elidedText(qText(kept.problem), Qt::ElideRight,
                                                    3 * metrics.averageCharWidth() * maximumCharacters);
            connect(entries->addAction(labelText(text)), &QAction::triggered, this,
                    [this, problem = kept.problem] { Tell(problem); });
        }
    }
}

void PresetBar::CompareNow() {
    presets.Compare();
    ShowState();
}

QString PresetBar::StateText() const {
    const QFontMetrics metrics = fontMetrics();
    const QString name = metrics.elidedText(qText(presets.Chosen()), Qt::ElideRight,
                                            metrics.averageCharWidth() * maximumCharacters);
    return qText(presets.Shown(name.toStdString()));
}

void PresetBar::ShowState() {
    setText(labelText(StateText()));
    setPlainToolTip(*this, qText(presets.Tip()));
    updateGeometry();
    if (whenShown) {
        whenShown();
    }
}

void PresetBar::Apply(const std::string& name) { Tell(presets.Apply(name)); }

void PresetBar::Update() { Tell(presets.Update()); }

// Nothing of the pane shows the effect, so that a message does.
void PresetBar::ServeAllPrograms() {
    const PresetChoice::Served served = presets.ServeAllPrograms();
    if (!served.problem.empty()) {
        Tell(served.problem);
        return;
    }
    QStringList text{context.Say(words::allProgramsKept), qText(served.note)};
    text.removeAll(QString());
    auto* box = messageBox(this, QMessageBox::Information, text.join(QStringLiteral("\n\n")));
    box->addButton(context.Say(words::ok), QMessageBox::AcceptRole);
    Open(box);
}

void PresetBar::ServeOnlyThisPane() { Tell(presets.ServeOnlyThisPane()); }

void PresetBar::AskForSaving() {
    Open(new PresetNameDialog(
        context, {}, presets.Names(), [this](const std::string& name) { Tell(presets.Save(name)); }, this));
}

void PresetBar::AskForRenaming() {
    Open(new PresetNameDialog(
        context, presets.Chosen(), presets.Names(),
        [this](const std::string& name) { Tell(presets.Rename(name)); }, this));
}

void PresetBar::AskForDeleting() {
    auto* box =
        messageBox(this, QMessageBox::Question, context.Say(words::presetDeleteAsk, qText(presets.Chosen())));
    QPushButton* remove = box->addButton(context.Say(words::presetDeleteButton), QMessageBox::AcceptRole);
    QPushButton* keep = box->addButton(context.Say(words::cancel), QMessageBox::RejectRole);
    box->setDefaultButton(keep);
    box->setEscapeButton(keep);
    connect(remove, &QPushButton::clicked, this, [this] { Tell(presets.Remove()); });
    Open(box);
}

void PresetBar::Tell(const std::string& problem) {
    ShowState();
    if (!problem.empty()) {
        auto* box = messageBox(this, QMessageBox::Warning, qText(problem));
        box->addButton(context.Say(words::ok), QMessageBox::AcceptRole);
        Open(box);
    }
}

void PresetBar::Open(QDialog* opened) {
    dialog = opened;
    opened->setAttribute(Qt::WA_DeleteOnClose);
    opened->setWindowModality(Qt::WindowModal);
    opened->open();
}

// Wide enough for a name of usual length, so that the layout stays when the name changes.
QSize PresetBar::sizeHint() const {
    const int rest = style()->pixelMetric(QStyle::PM_SmallIconSize) + 4 * buttonMargin;
    return {std::max(fontMetrics().horizontalAdvance(StateText()) + rest,
                     fontMetrics().averageCharWidth() * maximumCharacters),
            QToolButton::sizeHint().height()};
}

QSize PresetBar::minimumSizeHint() const {
    return {letterWidth(fontMetrics()) * maximumCharacters / 2, QToolButton::sizeHint().height()};
}

// Cuts a text that is too long. The tooltip has the whole text.
void PresetBar::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.text.clear();
    option.features &=
        ~QStyleOptionToolButton::HasMenu; // the arrow is drawn below, as large as that of a popup
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
    const int sign = style()->pixelMetric(QStyle::PM_SmallIconSize);
    const QRect inner = rect().adjusted(buttonMargin, 0, -buttonMargin, 0);
    const QRect arrow =
        QStyle::alignedRect(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter, QSize(sign, sign), inner);
    paneIcon(PaneSign::open)
        .paint(&painter, arrow, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
    const QRect place =
        QStyle::visualRect(layoutDirection(), inner, inner.adjusted(0, 0, -sign - buttonMargin, 0));
    const Qt::Alignment leading =
        QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawItemText(place, static_cast<int>(leading.toInt()), palette(), isEnabled(),
                         fontMetrics().elidedText(StateText(), Qt::ElideMiddle, place.width()),
                         QPalette::ButtonText);
}

} // namespace torka
