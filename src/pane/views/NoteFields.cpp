// SPDX-License-Identifier: Apache-2.0
#include "pane/views/NoteFields.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "pane/panel/CustomizePaneController.h"
#include "pane/presentation/NoteRules.h"
#include "pane/views/Eliding.h"
#include "pane/views/FieldMessage.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"

#include <QAction>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

namespace torka {

void showAcceptedText(QLineEdit& line, const QString& typed, const CFStringRef& accepted) {
    const QString shown = qText(accepted);
    if (shown == line.text()) {
        return;
    }
    // What was taken out stood before the cursor.
    const auto lost = static_cast<int>(typed.size() - shown.size());
    const int cursor = line.cursorPosition() - std::max(lost, 0);
    line.setText(shown);
    line.setCursorPosition(std::clamp(cursor, 0, static_cast<int>(shown.size())));
}

void markRefusal(QLineEdit& line, const std::string& refusal) {
    const QString name = QStringLiteral("refusal");
    auto* mark = line.findChild<QAction*>(name);
    if (refusal.empty()) {
        delete mark;
        return;
    }
    if (mark == nullptr) {
        mark = line.addAction(paneIcon(PaneSign::warning), QLineEdit::TrailingPosition);
        mark->setObjectName(name);
    }
    mark->setToolTip(plainToolTip(qText(refusal)));
}

void showCounter(QLabel& label, const NoteCounter& counter, const std::string& rules) {
    label.setText(qText(counter.shown));
    label.setAccessibleName(qText(counter.spoken));
    const bool isWrong = !counter.broken.empty();
    setPlainToolTip(label, qText(isWrong ? counter.broken : rules));
    QFont font = label.parentWidget()->font();
    font.setBold(isWrong);
    label.setFont(font);
    label.setForegroundRole(isWrong ? QPalette::WindowText : QPalette::PlaceholderText);
}

NoteRow::NoteRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , line(new QLineEdit(Body()))
    , counter(new QLabel(Body()))
    , message(new FieldMessage(Body()))
    , tag(paneContext.controller.TagOfJobNote(shownField.keyword)) {
    if (isSecret(*field.control)) {
        line->setEchoMode(QLineEdit::Password);
        line->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
    } else if (Note().IsNumeric() && !Note().IsAlpha()) {
        line->setInputMethodHints(Qt::ImhPreferNumbers);
    }
    counter->setTextFormat(Qt::PlainText);
    counter->setForegroundRole(QPalette::PlaceholderText);
    counter->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    const QString widest = QString::number(std::max<std::int64_t>(Note().MaxLength(), 888));
    counter->setMinimumWidth( // the same for most notes, which aligns their fields
        counter->fontMetrics().horizontalAdvance(widest + QStringLiteral(" / ") + widest));
    auto* both = new QWidget(Body());
    auto* layout = new QGridLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(line, 0, 0);
    layout->addWidget(counter, 0, 1);
    layout->addWidget(message, 1, 0, 1, 2);
    layout->setColumnStretch(0, 1);
    QObject::connect(line, &QLineEdit::textEdited, line, [this](const QString& text) { Typed(text); });
    QObject::connect(line, &QLineEdit::editingFinished, line, [this] {
        context.editor.EndStep();
        Refuse({});
    });
    Take(both, line, false);
}

const PPDXJobNote& NoteRow::Note() const { return static_cast<const PPDXJobNote&>(*field.control); }

QString NoteRow::Description() const { return qText(noteRules(context.texts, *field.control)); }

void NoteRow::Typed(const QString& text) {
    TypedNote taken;
    typing = true; // the cursor is set below
    const auto take = [&] {
        auto& note = static_cast<PPDXJobNote&>(*field.control);
        taken = takeTypedText(context.texts, context.controller, tag, note, cfText(text));
    };
    context.editor.Edit(*field.control, take, true);
    typing = false;
    showAcceptedText(*line, text, taken.shown);
    Refuse(taken.refusal);
    ShowLength();
}

void NoteRow::Refuse(const std::string& refusal) {
    markRefusal(*line, refusal);
    message->Tell(qText(refusal));
}

void NoteRow::UpdateValue() {
    const QString text = qText(PaneEditor::Value(*field.control));
    if (!typing && text != line->text()) {
        line->setText(text);
    }
    ShowLength();
}

void NoteRow::ShowLength() {
    showCounter(*counter, noteCounter(context.texts, Note(), cfText(line->text())),
                noteRules(context.texts, Note()));
}

SwitchNoteRow::SwitchNoteRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent)
    : FieldRow(paneContext, shownField, parent)
    , box(new ElidingCheckBox(qText(shownField.name), Body()))
    , tag(paneContext.controller.TagOfJobNote(shownField.keyword)) {
    QObject::connect(box, &QCheckBox::clicked, box, [this](bool on) {
        const auto change = [&] {
            context.controller.controlTextDidChange(tag, cfString(on ? "True" : "False"));
            static_cast<PPDXJobNote*>(field.control)->SetNotesOnValue(on);
        };
        if (!context.editor.Edit(*field.control, change, false)) {
            ShowValue();
        }
    });
    Take(box, box, true);
}

void SwitchNoteRow::UpdateValue() { box->setChecked(PaneEditor::Value(*field.control) == "True"); }

} // namespace torka
