#include "pane/views/PopupJobNoteDialog.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "pane/data/PanelState.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/panel/CustomizePaneController.h"
#include "pane/presentation/NoteRules.h"
#include "pane/views/NoteFields.h"
#include "pane/views/PaneIcons.h"
#include "pane/views/PlainTexts.h"

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
#include <memory>
#include <vector>

namespace torka {
namespace {

// What a note holds, to bring it back.
struct NoteState {
    CFStringRef text;
    bool isUtf8 = false;
    bool isOn = false;
};

NoteState stateOf(const PPDXJobNote& note) {
    return {note.CopyNotes(), note.NotesAreUTF8(), note.GetNotesOnValue()};
}

void restore(PPDXJobNote& note, const NoteState& state) {
    if (state.isUtf8) {
        note.SetUTF8Notes(state.text);
    } else {
        note.SetCurrentControlWithCFString(state.text);
    }
    note.SetNotesOnValue(state.isOn);
}

class Window final : public QDialog {
public:
    Window(PaneContext& paneContext, const std::set<std::string, std::less<>>& observedOutlets,
           std::vector<PPDXJobNote*> shownNotes, QWidget* parent)
        : QDialog(parent)
        , context(paneContext)
        , observed(observedOutlets)
        , notes(std::move(shownNotes)) {
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
        const auto numbers = popupJobNoteFields(notes.size());
        for (std::size_t i = 0; i < notes.size(); ++i) {
            AddField(*notes[i], numbers[i]);
        }
        MakeMessage(*rows);
        MakePreferences(*rows);
        auto* buttons = new QDialogButtonBox(this);
        print = buttons->addButton(context.Say(words::popupPrint), QDialogButtonBox::AcceptRole);
        print->setDefault(true);
        buttons->addButton(context.Say(words::popupCancel), QDialogButtonBox::RejectRole)
            ->setAutoDefault(false);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        rows->addStretch(1);
        rows->addWidget(buttons);
    }

    // Names the fields that break a rule once, with the first of them in focus; then it goes on with them.
    void accept() override {
        if (!isWarned && Warn()) {
            return;
        }
        TakePreferences();
        QDialog::accept();
    }

private:
    int WidthFor(const QString& text, int mostCharacters) const {
        const QFontMetrics metrics = fontMetrics();
        return std::min(metrics.horizontalAdvance(text) + 2, metrics.averageCharWidth() * mostCharacters);
    }

    struct Field {
        PPDXJobNote* note;
        QLineEdit* line;
        QLabel* counter;
        std::uint32_t tag;
        bool isLocked;
    };

    // Whether a field breaks a rule. Return then prints no more: the person chooses the button.
    bool Warn() {
        std::vector<std::string> sentences;
        QLineEdit* first = nullptr;
        for (const Field& field : fields) {
            std::string sentence = CounterOf(field).broken;
            if (!sentence.empty()) {
                sentences.push_back(std::move(sentence));
                first = first == nullptr ? field.line : first;
            }
        }
        if (first == nullptr) {
            return false;
        }
        Tell(qText(joined(sentences, "\n")));
        SetWarned(true);
        first->setFocus();
        first->selectAll();
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

    NoteCounter CounterOf(const Field& field) const {
        return noteCounter(context.texts, *field.note, cfText(field.line->text()), field.isLocked);
    }

    void AddField(PPDXJobNote& note, const std::string& number) {
        const QString name = qText(nameOf(note));
        const QString place = qText(number);
        const int row = grid->rowCount();
        const bool isLocked = context.editor.LockOf(note) != PaneLock::none;
        const std::uint32_t tag = context.controller.TagOfJobNote(note.Keyword());
        if (note.IsOnOffSwitch()) {
            auto* box = new QCheckBox(labelText(name), this);
            box->setObjectName(QStringLiteral("popupJobNoteVal") + place);
            box->setChecked(PaneEditor::Value(note) == "True");
            box->setEnabled(!isLocked);
            connect(box, &QCheckBox::clicked, this, [this, tag, changed = &note](bool on) {
                context.controller.controlTextDidChange(tag, cfString(on ? "True" : "False"));
                changed->SetNotesOnValue(on);
            });
            grid->addWidget(box, row, 1, 1, 2);
            return;
        }
        const bool secret = isSecret(note);
        const std::string outlet = (secret ? "popupJobNoteSec" : "popupJobNoteVal") + number;
        auto* label = new QLabel(labelText(name), this);
        label->setTextFormat(Qt::PlainText);
        label->setObjectName(QStringLiteral("popupJobNoteKey") + place);
        label->setWordWrap(true);
        label->setMinimumWidth(WidthFor(name, 32));
        alignLeading(*label);
        auto* line = new QLineEdit(this);
        line->setObjectName(qText(outlet));
        line->setAccessibleName(name);
        line->setMinimumWidth(fontMetrics().averageCharWidth() * 30);
        setPlainToolTip(*line, qText(noteRules(context.texts, note)));
        if (secret) {
            line->setEchoMode(QLineEdit::Password);
            line->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText);
        }
        line->setText(qText(PaneEditor::Value(note)));
        line->setEnabled(!isLocked);
        label->setBuddy(line);
        auto* counter = new QLabel(this);
        counter->setTextFormat(Qt::PlainText);
        counter->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
        grid->addWidget(label, row, 0);
        grid->addWidget(line, row, 1);
        grid->addWidget(counter, row, 2);
        const Field field{&note, line, counter, tag, isLocked};
        fields.push_back(field);
        const bool isChecked = observed.contains(outlet);
        connect(line, &QLineEdit::textEdited, this, [this, field, isChecked](const QString& text) {
            const CFStringRef typed = cfText(text);
            SetWarned(false);
            if (isChecked) {
                const CFStringRef accepted = context.controller.controlTextDidChange(field.tag, typed);
                showAcceptedText(*field.line, text, accepted);
                Tell(field.line->text() == text ? QString() : qText(noteRules(context.texts, *field.note)));
            } else {
                field.note->SetCurrentControlWithCFString(typed);
            }
            ShowLength(field);
        });
        ShowLength(field);
    }

    void ShowLength(const Field& field) {
        showCounter(*field.counter, CounterOf(field), noteRules(context.texts, *field.note));
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
        message->setMinimumHeight(fontMetrics().height() * 2); // so that nothing moves when it speaks
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

    bool HasRemembered() const {
        return std::ranges::any_of(notes, [this](const PPDXJobNote* note) {
            return isPopupJobNoteRemembered(context.editor.Model(), *note);
        });
    }

    void MakePreferences(QVBoxLayout& rows) {
        const bool inForce = gPopupJobNotesSavedEnable == '1';
        const QString row = qText(popupJobNoteFields(notes.size()).front().substr(0, 1));
        last = new QCheckBox(context.Say(words::popupLast), this);
        last->setObjectName(QStringLiteral("popupJobNoteLast") + row);
        last->setChecked(inForce && gPopupJobNotesSavedShowLast == '1');
        last->setVisible(HasRemembered());
        setPlainToolTip(*last, context.Say(words::popupLastHint));
        ask = new QCheckBox(context.Say(words::popupAsk), this);
        ask->setObjectName(QStringLiteral("popupJobNoteAsk"));
        ask->setChecked(!inForce || gPopupJobNotesSavedSetting != '0' || gPopupJobNotesDefaultsButton != 0);
        setPlainToolTip(*ask, context.Say(words::popupAskHint));
        rows.addWidget(last);
        rows.addWidget(ask);
    }

    // They are in force from the first time on that the person wants something else than the defaults.
    void TakePreferences() {
        if (last->isChecked() || !ask->isChecked()) {
            gPopupJobNotesSavedEnable = '1';
        }
        gPopupJobNotesSavedShowLast = last->isChecked() ? '1' : '0';
        gPopupJobNotesSavedSetting = ask->isChecked() ? '1' : '0';
        gPopupJobNotesDefaultsButton = 0;
    }

    PaneContext& context;
    const std::set<std::string, std::less<>>& observed;
    std::vector<PPDXJobNote*> notes;
    std::vector<Field> fields;
    QGridLayout* grid = nullptr;
    QLabel* sign = nullptr;
    QLabel* message = nullptr;
    QCheckBox* last = nullptr;
    QCheckBox* ask = nullptr;
    QPushButton* print = nullptr;
    bool isWarned = false; // of the fields as they are now
};

// Texts of secret notes are kept nowhere.
void takeTexts(const std::vector<PPDXJobNote*>& notes, std::array<std::string, popupJobNoteCount>& texts) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
        texts[i] = i < notes.size() && !isSecret(*notes[i]) ? PaneEditor::Value(*notes[i]) : std::string();
    }
}

} // namespace

PopupJobNoteDialog::PopupJobNoteDialog(PaneContext& paneContext, QWidget* paneRoot)
    : context(paneContext)
    , root(paneRoot) {}

void PopupJobNoteDialog::observeControlTextDidChange(std::string_view outlet) { observed.emplace(outlet); }

bool PopupJobNoteDialog::handlePopupJobnoteUI() {
    const std::vector<PPDXJobNote*> notes = popupJobNotes(context.editor.Model());
    if (notes.empty() || !mustAskForPopupJobNotes(notes)) {
        return true;
    }
    std::vector<NoteState> before;
    for (const PPDXJobNote* note : notes) {
        before.push_back(stateOf(*note));
    }
    takeTexts(notes, gPopupJobNotesSavedNote);
    // Watched: the print dialog may go while the person is asked, and take the window along.
    const QPointer<Window> window =
        new Window(context, observed, notes, root != nullptr ? root->window() : nullptr);
    const bool accepted = window->exec() == QDialog::Accepted && window != nullptr;
    delete window.data();
    if (!accepted) {
        for (std::size_t i = 0; i < notes.size(); ++i) {
            restore(*notes[i], before[i]);
        }
    }
    takeTexts(notes, gPopupJobNotesNote);
    context.editor.Refresh();
    return accepted;
}

} // namespace torka
