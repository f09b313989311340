// SPDX-License-Identifier: Apache-2.0
#include "pane/views/NoteFields.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "pane/panel/CustomizePaneController.h"
#include "pane/presentation/NoteRules.h"
#include "pane/views/Eliding.h"
#include "pane/views/PlainTexts.h"

#include <QCheckBox>
#include <QHBoxLayout>
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
    auto* layout = new QHBoxLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(line, 1);
    layout->addWidget(counter);
    QObject::connect(line, &QLineEdit::textEdited, line, [this](const QString& text) { Typed(text); });
    QObject::connect(line, &QLineEdit::editingFinished, line, [this] { context.editor.EndStep(); });
    Take(both, line, false);
}

const PPDXJobNote& NoteRow::Note() const { return static_cast<const PPDXJobNote&>(*field.control); }

QString NoteRow::Description() const { return qText(noteRules(context.texts, *field.control)); }

void NoteRow::Typed(const QString& text) {
    CFStringRef result;
    typing = true; // the cursor is set below
    context.editor.Edit(
        *field.control, [&] { result = context.controller.controlTextDidChange(tag, cfText(text)); }, true);
    typing = false;
    showAcceptedText(*line, text, result);
    ShowLength();
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
