// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldRow.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "pane/presentation/FieldTexts.h"
#include "pane/views/ChoiceFields.h"
#include "pane/views/ForbiddenList.h"
#include "pane/views/NoteFields.h"
#include "pane/views/NumberFields.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QSizePolicy>
#include <QStyle>
#include <QStyleOptionToolButton>
#include <QToolButton>
#include <QToolTip>
#include <QWhatsThis>

#include <algorithm>
#include <functional>

namespace torka {
namespace {

// Tells why some choices are forbidden: as a tooltip and to assistive technology. A click opens the reasons
// with what can be done about them. It asks for the reasons when they are shown.
class WhyButton final : public QToolButton {
public:
    WhyButton(std::function<QString()> tellReasons, const std::function<void(QToolButton&)>& open,
              QWidget* parent)
        : QToolButton(parent)
        , reasons(std::move(tellReasons)) {
        connect(this, &QToolButton::clicked, this, [this, open] { open(*this); });
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::ToolTip) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(reasons()), this);
            return true;
        }
        if (event->type() == QEvent::FocusIn) {
            setAccessibleDescription(reasons());
        }
        return QToolButton::event(event);
    }

private:
    std::function<QString()> reasons;
};

void makeSmall(QToolButton* button, PaneSign sign, const QString& name) {
    button->setIcon(paneIcon(sign));
    button->setAutoRaise(true);
    button->setAccessibleName(name);
    QSizePolicy policy = button->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // the row keeps its layout when the button appears
    button->setSizePolicy(policy);
    button->hide();
}

// The two small buttons stand behind the control of the row.
constexpr int placeOfInformation = 1;
constexpr int placeOfReset = 2;

// The wheel scrolls the page and changes a setting only when its field has the focus.
class WheelGuard final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || widget == nullptr || widget->hasFocus()) {
            return false;
        }
        event->ignore();
        return true;
    }
};

// The controls of the row whose drawings the style keeps, and that the wheel would change.
QList<QWidget*> changingControls(const QWidget& row) {
    QList<QWidget*> controls = row.findChildren<QWidget*>();
    controls.removeIf([](const QWidget* child) {
        return qobject_cast<const QComboBox*>(child) == nullptr &&
               qobject_cast<const QAbstractSpinBox*>(child) == nullptr &&
               qobject_cast<const QAbstractSlider*>(child) == nullptr;
    });
    return controls;
}

} // namespace

FieldRow::FieldRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : context(paneContext)
    , field(shownField)
    , body(new QWidget(parent)) {}

FieldRow::~FieldRow() = default;

void FieldRow::Take(QWidget* control, QWidget* focusWidget, bool named) {
    focus = focusWidget;
    const QString name = qText(field.name);
    if (!named) {
        label = new QLabel(body->parentWidget());
        label->setTextFormat(Qt::PlainText);
        label->setText(labelText(name)); // it becomes the buddy of the control
        label->setWordWrap(true);
        alignLeading(*label);
    }
    focus->setAccessibleName(name);
    focus->setObjectName(qText(field.keyword));
    auto* layout = new QHBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(control, 1);
    // A layout puts its spacing before a button, but not before a spacer.
    const QSize room = SmallButtonSize() + QSize(layout->spacing(), 0);
    for ([[maybe_unused]] const int place : {placeOfInformation, placeOfReset}) {
        layout->addSpacerItem(
            new QSpacerItem(room.width(), room.height(), QSizePolicy::Fixed, QSizePolicy::Fixed));
    }
    setPlainToolTip(*focus, Description());
    wheelGuard = std::make_unique<WheelGuard>();
    for (QWidget* changing : changingControls(*body)) {
        changing->installEventFilter(wheelGuard.get());
        shareColors(*changing);
    }
    ShowLock();
}

// The size that a tool button with a sign has.
QSize FieldRow::SmallButtonSize() const {
    QStyleOptionToolButton option;
    option.initFrom(body);
    const int sign = body->style()->pixelMetric(QStyle::PM_ButtonIconSize, nullptr, body);
    option.iconSize = QSize(sign, sign);
    return body->style()->sizeFromContents(QStyle::CT_ToolButton, &option, option.iconSize, body);
}

// Replaces the room that the row kept.
void FieldRow::PutIn(QToolButton* button, int place) {
    auto* layout = static_cast<QHBoxLayout*>(body->layout());
    button->setFixedSize(SmallButtonSize());
    delete layout->takeAt(place);
    layout->insertWidget(place, button);
    // The keys reach it after what stands before it in the row.
    QWidget* before = focus;
    for (QWidget* next = body->nextInFocusChain(); next != body && body->isAncestorOf(next);
         next = next->nextInFocusChain()) {
        if (next != button && next != reset && next->focusPolicy() != Qt::NoFocus) {
            before = next;
        }
    }
    QWidget::setTabOrder(before, button);
}

void FieldRow::MakeInformation() {
    information = new WhyButton([this] { return Reasons(); },
                                [this](QToolButton& button) { ShowReasons(button); }, body);
    makeSmall(information, PaneSign::information, context.Say(words::whyForbidden));
    PutIn(information, placeOfInformation);
}

void FieldRow::MakeReset() {
    reset = new QToolButton(body);
    const QString tip = qText(shownReset(context.texts, field));
    makeSmall(reset, PaneSign::reset, tip);
    reset->setToolTip(plainToolTip(tip));
    PutIn(reset, placeOfReset);
    QObject::connect(reset, &QToolButton::clicked, reset, [this] {
        context.editor.Reset(*field.control);
        focus->setFocus(); // the button is hidden now
    });
}

void FieldRow::Set(const std::string& value) {
    if (!context.editor.SetValue(*field.control, value)) {
        ShowValue(); // the value was refused, or equals the old one
    }
}

void FieldRow::ShowLock() {
    const QString why = qText(whyLocked(context.texts, *field.control));
    if (why.isEmpty()) {
        return;
    }
    body->setEnabled(false);
    setPlainToolTip(*focus, why);
    body->setToolTip(plainToolTip(why));
}

void FieldRow::ShowValue() {
    UpdateValue();
    ShowReset();
}

void FieldRow::ShowReset() {
    const bool differs =
        body->isEnabled() && PaneEditor::Value(*field.control) != PaneEditor::DefaultValue(*field.control);
    if (differs && reset == nullptr) {
        MakeReset();
    }
    if (reset != nullptr) {
        reset->setVisible(differs);
    }
}

void FieldRow::ShowAllowed() {
    const bool isAnyForbidden = body->isEnabled() && UpdateAllowed();
    if (isAnyForbidden && information == nullptr) {
        MakeInformation();
    }
    if (information != nullptr) {
        information->setVisible(isAnyForbidden);
    }
}

QString FieldRow::Reasons() const { return qText(whyForbidden(context.texts, *field.control)); }

void FieldRow::ShowReasons(QToolButton& button) {
    const ForbiddenChoices forbidden = forbiddenChoices(context.texts, *field.control);
    if (forbidden.choices.empty()) {
        QWhatsThis::showText(button.mapToGlobal(button.rect().bottomLeft()), plainToolTip(Reasons()),
                             &button);
        return;
    }
    showForbiddenChoices(context, forbidden, *field.control, button);
}

std::unique_ptr<FieldRow> makeFieldRow(PaneContext& context, const PaneField& field, QWidget* parent) {
    switch (field.control->Type()) {
    case CNTL_TYPE::boolean:
        return std::make_unique<CheckRow>(context, field, parent);
    case CNTL_TYPE::popup:
        if (static_cast<const PPDXPopupControl*>(field.control)->CanSelectMultipleItems()) {
            return std::make_unique<SeveralChoicesRow>(context, field, parent);
        }
        return std::make_unique<PopupRow>(context, field, parent);
    case CNTL_TYPE::customPageSize:
        return std::make_unique<SizeRow>(context, field, parent);
    case CNTL_TYPE::jobNote:
        if (static_cast<const PPDXJobNote*>(field.control)->IsOnOffSwitch()) {
            return std::make_unique<SwitchNoteRow>(context, field, parent);
        }
        return std::make_unique<NoteRow>(context, field, parent);
    default:
        return std::make_unique<NumberRow>(context, field, parent);
    }
}

} // namespace torka
