// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PopupJobNoteDialog.h"

#include "pane/presentation/PopupNoteForm.h"
#include "pane/views/NoteFields.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"
#include "platform/qt/LetterWidth.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace torka {
namespace {

class Window final : public QDialog {
public:
    Window(const PaneContext& paneContext, PopupNoteForm& popupForm, QWidget* parent)
        : QDialog(parent)
        , context(paneContext)
        , form(popupForm) {
        setPalette(readableColors());
        setObjectName(QStringLiteral("popupJobNotes"));
        setWindowTitle(context.Say(words::popupTitle));
        auto* rows = new QVBoxLayout(this);
        auto* introduction = new QLabel(context.Say(words::popupIntroduction), this);
        introduction->setTextFormat(Qt::PlainText);
        introduction->setWordWrap(true);
        introduction->setMinimumWidth(WidthFor(introduction->text(), 60));
        alignLeading(*introduction);
        rows->addWidget(introduction);
        grid = new QGridLayout;
        rows->addLayout(grid);
        grid->setColumnStretch(1, 1);
        for (const PopupNoteForm::Field& field : form.Fields()) {
            lines.push_back(field.isSwitch ? nullptr : AddLine(field));
            if (field.isSwitch) {
                AddSwitch(field);
            }
        }
        MakeMessage(*rows);
        MakePreferences(*rows);
        MakeButtons(*rows);
    }

    // The first call names the fields that break a rule and gives the first of them the focus. The second
    // call prints all the same.
    void accept() override {
        if (!isWarned && Warn()) {
            return;
        }
        PopupNoteForm::Keep({last->isChecked(), ask->isChecked()});
        QDialog::accept();
    }

private:
    int WidthFor(const QString& text, int maximumCharacters) const {
        const QFontMetrics metrics = fontMetrics();
        return std::min(metrics.horizontalAdvance(text) + 2, metrics.averageCharWidth() * maximumCharacters);
    }

    // Names the fields that break a rule, and returns whether there are any. Return no longer prints then,
    // only the button does.
    bool Warn() {
        const PopupNoteForm::Warning warning = form.BrokenFields();
        if (warning.text.empty()) {
            return false;
        }
        Tell(qText(warning.text));
        SetWarned(true);
        lines[warning.firstField]->setFocus();
        lines[warning.firstField]->selectAll();
        return true;
    }

    void SetWarned(bool warned) {
        if (warned != isWarned) {
            isWarned = warned;
            print->setText(context.Say(warned ? words::printAnyway : words::popupPrint));
            print->setAutoDefault(!warned);
            print->setDefault(!warned);
        }
    }

    void AddSwitch(const PopupNoteForm::Field& field) {
        auto* box = new QCheckBox(labelText(qText(field.name)), this);
        box->setObjectName(QStringLiteral("popupJobNoteVal") + qText(field.number));
        box->setChecked(PopupNoteForm::ValueOf(field) == "True");
        box->setEnabled(!field.isLocked);
        connect(box, &QCheckBox::clicked, this, [this, &field](bool on) { form.Switch(field, on); });
        grid->addWidget(box, grid->rowCount(), 1, 1, 2);
    }

    QLineEdit* AddLine(const PopupNoteForm::Field& field) {
        const QString name = qText(field.name);
        auto* label = new QLabel(labelText(name), this);
        label->setTextFormat(Qt::PlainText);
        label->setObjectName(QStringLiteral("popupJobNoteKey") + qText(field.number));
        label->setWordWrap(true);
        label->setMinimumWidth(WidthFor(name, 32));
        alignLeading(*label);
        auto* line = new QLineEdit(this);
        line->setObjectName(qText(field.outlet));
        line->setAccessibleName(name);
        line->setMinimumWidth(letterWidth(fontMetrics()) * 30);
        setPlainToolTip(*line, qText(field.rules));
        if (field.isSecret) {
            line->setEchoMode(QLineEdit::Password);
            line->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
        }
        line->setText(qText(PopupNoteForm::ValueOf(field)));
        line->setEnabled(!field.isLocked);
        label->setBuddy(line);
        auto* counter = new QLabel(this);
        counter->setTextFormat(Qt::PlainText);
        counter->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
        const int row = grid->rowCount();
        grid->addWidget(label, row, 0);
        grid->addWidget(line, row, 1);
        grid->addWidget(counter, row, 2);
        connect(line, &QLineEdit::textEdited, this, [this, &field, line, counter](const QString& text) {
            SetWarned(false);
            const TypedNote taken = form.Type(field, cfText(text));
            showAcceptedText(*line, text, taken.shown);
            markRefusal(*line, taken.refusal);
            Tell(qText(taken.refusal));
            showCounter(*counter, form.CounterOf(field), field.rules);
        });
        showCounter(*counter, form.CounterOf(field), field.rules);
        return line;
    }

    void MakeMessage(QVBoxLayout& rows) {
        auto* line = new QHBoxLayout;
        sign = new QLabel(this);
        const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
        sign->setFixedSize(size, size);
        message = new QLabel(this);
        message->setObjectName(QStringLiteral("popupJobNoteMessage"));
        message->setTextFormat(Qt::PlainText);
        message->setWordWrap(true);
        message->setMinimumHeight(fontMetrics().height() * 2); // the layout stays when a text appears
        alignLeading(*message);
        line->addWidget(sign);
        line->addWidget(message, 1);
        rows.addLayout(line);
    }

    void Tell(const QString& text) {
        const QSize size = sign->size();
        sign->setPixmap(text.isEmpty() ? QPixmap()
                                       : paneIcon(PaneSign::warning).pixmap(size, devicePixelRatioF()));
        message->setText(text);
    }

    void MakePreferences(QVBoxLayout& rows) {
        const PopupNoteForm::Preferences present = form.PresentPreferences();
        last = new QCheckBox(context.Say(words::popupLast), this);
        const QString row = qText(form.Fields().front().number.substr(0, 1));
        last->setObjectName(QStringLiteral("popupJobNoteLast") + row);
        last->setChecked(present.beginsWithLast);
        last->setVisible(form.HasRemembered());
        setPlainToolTip(*last, context.Say(words::popupLastHint));
        ask = new QCheckBox(context.Say(words::popupAsk), this);
        ask->setObjectName(QStringLiteral("popupJobNoteAsk"));
        ask->setChecked(present.asksAlways);
        setPlainToolTip(*ask, context.Say(words::popupAskHint));
        rows.addWidget(last);
        rows.addWidget(ask);
    }

    void MakeButtons(QVBoxLayout& rows) {
        auto* buttons = new QDialogButtonBox(this);
        print = buttons->addButton(context.Say(words::popupPrint), QDialogButtonBox::AcceptRole);
        print->setDefault(true);
        buttons->addButton(context.Say(words::popupCancel), QDialogButtonBox::RejectRole)
            ->setAutoDefault(false);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        rows.addStretch(1);
        rows.addWidget(buttons);
    }

    const PaneContext& context;
    PopupNoteForm& form;
    std::vector<QLineEdit*> lines; // of the form's fields; null for a switch
    QGridLayout* grid = nullptr;
    QLabel* sign = nullptr;
    QLabel* message = nullptr;
    QCheckBox* last = nullptr;
    QCheckBox* ask = nullptr;
    QPushButton* print = nullptr;
    bool isWarned = false; // about the present texts
};

} // namespace

PopupJobNoteDialog::PopupJobNoteDialog(PaneContext& paneContext, QWidget* paneRoot)
    : context(paneContext)
    , root(paneRoot) {}

void PopupJobNoteDialog::observeControlTextDidChange(std::string_view outlet) { observed.emplace(outlet); }

bool PopupJobNoteDialog::handlePopupJobnoteUI() {
    PopupNoteForm form(context.texts, context.controller, observed);
    if (!form.MustAsk()) {
        return true;
    }
    form.KeepTextsBefore();
    // The print dialog may end during exec() and delete the window.
    const QPointer<Window> window = new Window(context, form, root != nullptr ? root->window() : nullptr);
    const bool accepted = window->exec() == QDialog::Accepted && window != nullptr;
    delete window.data();
    if (!accepted) {
        form.Restore();
    }
    form.KeepTextsAfter();
    context.editor.Refresh();
    return accepted;
}

} // namespace torka
