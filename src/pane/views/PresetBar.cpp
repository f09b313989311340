#include "pane/views/PresetBar.h"

#include "pane/data/PDEData.h"
#include "pane/views/ExtraWords.h"
#include "pane/views/FieldTexts.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PresetNameDialog.h"

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

constexpr int mostCharacters = 24; // of a name in the button
constexpr int margin = 6;          // pixels beside text and arrow
constexpr int menuCharacters = 48; // of a name in the menu

QMessageBox* messageBox(QWidget* parent, QMessageBox::Icon icon, const QString& text) {
    auto* box = new QMessageBox(parent);
    box->setIcon(icon);
    box->setWindowTitle(parent->accessibleName());
    box->setTextFormat(Qt::PlainText); // before the text, which may look like markup
    box->setText(text);
    return box;
}

} // namespace

PresetBar::PresetBar(PaneContext& paneContext, QWidget* parent)
    : QToolButton(parent)
    , context(paneContext)
    , store(context.data->PrinterName(), context.editor.Model(), *context.data)
    , entries(new QMenu(this)) {
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
    context.editor.AddListener([self = QPointer<PresetBar>(this)](const PaneChange&) {
        if (self != nullptr && !self->chosen.empty()) {
            self->pause.start();
        }
    });
    ShowState();
}

// The settings that a dialog begins with may be those of a preset.
void PresetBar::showEvent(QShowEvent* event) {
    QToolButton::showEvent(event);
    if (!std::exchange(wasShown, true)) {
        QTimer::singleShot(0, this, [this] {
            if (chosen.empty()) {
                Choose(store.NameOf(store.PresentSettings()));
            }
        });
    }
}

void PresetBar::FillMenu() {
    CompareNow();
    entries->clear();
    auto* group = new QActionGroup(entries);
    const auto shown = [this](const std::string& name) {
        return labelText(fontMetrics().elidedText(qText(name), Qt::ElideRight,
                                                  fontMetrics().averageCharWidth() * menuCharacters));
    };
    for (const std::string& name : store.Names()) {
        QAction* action = entries->addAction(shown(name));
        action->setCheckable(true);
        action->setChecked(name == chosen && !isChanged);
        action->setActionGroup(group);
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
    if (!chosen.empty()) {
        const QString name = shown(chosen);
        add(context.Say(words::presetUpdate, name), &PresetBar::Update)->setEnabled(isChanged);
        add(context.Say(words::presetRename, name), &PresetBar::AskForRenaming);
        add(context.Say(words::presetDelete, name), &PresetBar::AskForDeleting);
    }
}

void PresetBar::Choose(const std::string& name) {
    chosen = name;
    settingsOfChosen = chosen.empty() ? nullptr : store.PresentSettings();
    isChanged = false;
    ShowState();
}

void PresetBar::CompareNow() {
    isChanged = !chosen.empty() && !CFEqual(settingsOfChosen, store.PresentSettings());
    ShowState();
}

QString PresetBar::StateText() const {
    if (chosen.empty()) {
        return context.Say(words::presets);
    }
    const QFontMetrics metrics = fontMetrics();
    const QString name =
        metrics.elidedText(qText(chosen), Qt::ElideRight, metrics.averageCharWidth() * mostCharacters);
    return isChanged ? context.Say(words::presetChanged, name) : name;
}

void PresetBar::ShowState() {
    setText(labelText(StateText()));
    QString whole = context.Say(words::presetTip);
    if (!chosen.empty()) {
        const QString name = qText(chosen);
        whole = isChanged ? context.Say(words::presetChanged, name) : name;
    }
    setPlainToolTip(*this, whole);
    updateGeometry();
}

void PresetBar::Apply(const std::string& name) {
    PresetStore::Result result = PresetStore::Result::done;
    context.editor.EditAll([&] { result = store.Apply(name); });
    if (Done(result, name)) {
        Choose(name);
    }
}

void PresetBar::AskForSaving() {
    Open(new PresetNameDialog(
        context, {}, store.Names(),
        [this](const std::string& name) {
            if (Done(store.Save(name), name)) {
                Choose(name);
            }
        },
        this));
}

void PresetBar::Update() {
    if (!chosen.empty() && Done(store.Save(chosen), chosen)) {
        Choose(chosen);
    }
}

void PresetBar::AskForRenaming() {
    Open(new PresetNameDialog(
        context, chosen, store.Names(),
        [this](const std::string& name) {
            if (Done(store.Rename(chosen, name), chosen)) {
                chosen = name;
                ShowState();
            }
        },
        this));
}

void PresetBar::AskForDeleting() {
    auto* box = messageBox(this, QMessageBox::Question, context.Say(words::presetDeleteAsk, qText(chosen)));
    QPushButton* remove = box->addButton(context.Say(words::presetDeleteButton), QMessageBox::AcceptRole);
    QPushButton* keep = box->addButton(context.Say(words::cancel), QMessageBox::RejectRole);
    box->setDefaultButton(keep);
    box->setEscapeButton(keep);
    connect(remove, &QPushButton::clicked, this, [this] {
        if (Done(store.Remove(chosen), chosen)) {
            Choose({});
        }
    });
    Open(box);
}

bool PresetBar::Done(PresetStore::Result result, const std::string& name) {
    switch (result) {
    case PresetStore::Result::done:
        return true;
    case PresetStore::Result::badName:
        Tell(context.Say(words::presetBadName));
        break;
    case PresetStore::Result::nameTaken:
        Tell(context.Say(words::presetTaken));
        break;
    case PresetStore::Result::full:
        Tell(context.Say(words::presetFull));
        break;
    case PresetStore::Result::notWritten:
        Tell(context.Say(words::presetNotWritten, qText(store.File().string())));
        break;
    case PresetStore::Result::notFound: // another dialog removed it
        Tell(context.Say(words::presetGone, qText(name)));
        if (name == chosen) {
            Choose({});
        }
        break;
    }
    return false;
}

void PresetBar::Tell(const QString& text) {
    auto* box = messageBox(this, QMessageBox::Warning, text);
    box->addButton(context.Say(words::ok), QMessageBox::AcceptRole);
    Open(box);
}

void PresetBar::Open(QDialog* opened) {
    dialog = opened;
    opened->setAttribute(Qt::WA_DeleteOnClose);
    opened->setWindowModality(Qt::WindowModal);
    opened->open();
}

// Wide enough for a name of usual length, so that the line stays as it is while names come and go.
QSize PresetBar::sizeHint() const {
    const int rest = style()->pixelMetric(QStyle::PM_SmallIconSize) + 4 * margin;
    return {std::max(fontMetrics().horizontalAdvance(StateText()) + rest,
                     fontMetrics().averageCharWidth() * mostCharacters),
            QToolButton::sizeHint().height()};
}

QSize PresetBar::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * mostCharacters / 2, QToolButton::sizeHint().height()};
}

// The text is cut where there is no room for it; the tooltip has it whole.
void PresetBar::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.text.clear();
    option.features &= ~QStyleOptionToolButton::HasMenu; // its arrow is drawn here, as large as a popup's
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
    const int sign = style()->pixelMetric(QStyle::PM_SmallIconSize);
    const QRect inner = rect().adjusted(margin, 0, -margin, 0);
    const QRect arrow =
        QStyle::alignedRect(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter, QSize(sign, sign), inner);
    paneIcon(PaneSign::open)
        .paint(&painter, arrow, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
    const QRect place = QStyle::visualRect(layoutDirection(), inner, inner.adjusted(0, 0, -sign - margin, 0));
    const Qt::Alignment leading =
        QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawItemText(place, static_cast<int>(leading.toInt()), palette(), isEnabled(),
                         fontMetrics().elidedText(StateText(), Qt::ElideMiddle, place.width()),
                         QPalette::ButtonText);
}

} // namespace torka
