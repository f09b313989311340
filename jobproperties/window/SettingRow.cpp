// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/SettingRow.h"

#include "jobproperties/core/Text.h"
#include "jobproperties/window/Glyphs.h"
#include "jobproperties/window/LetterWidth.h"
#include "jobproperties/window/PlainText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <memory>

namespace torka::jobproperties {

namespace {

constexpr int maximumValueLength = 700; // bytes; the interface's maximum for a value

// Keeps a wheel event that scrolls the page from changing the editor under the pointer.
class WheelGuard : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || widget == nullptr || widget->hasFocus()) {
            return QObject::eventFilter(watched, event);
        }
        event->ignore();
        return true;
    }
};

template <typename Widget>
Widget* guarded(Widget* widget) {
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(new WheelGuard(widget));
    return widget;
}

// Escapes a text for a widget that would treat an ampersand as the mark of a shortcut.
QString withoutShortcut(QString text) { return text.replace('&', QStringLiteral("&&")); }

// Returns the number of decimals that the increment needs, at least one.
int decimalsOf(double increment) {
    int decimals = 1;
    for (double step = increment * 10; decimals < 6 && std::abs(step - std::round(step)) > 1e-6; step *= 10) {
        ++decimals;
    }
    return decimals;
}

// Returns the number of a value, or nothing when it is outside the described bounds.
std::optional<double> numberWithin(const std::string& value, const DescribedSetting& described) {
    const auto number = decimalNumber(trimmed(value));
    return number && *number >= described.minimum && *number <= described.maximum ? number : std::nullopt;
}

} // namespace

SettingRow::SettingRow(JobSettings& givenSettings, std::string givenKey,
                       const DescribedSetting* givenDescribed, const QString& label, QWidget* parent)
    : QWidget(parent)
    , settings(givenSettings)
    , key(std::move(givenKey))
    , described(givenDescribed)
    , shownLabel(label) {
    searchText = label + '\n' + shown(key);
    if (described != nullptr) {
        for (const DescribedChoice& choice : described->choices) {
            searchText += '\n' + shown(choice.label);
        }
    }
    searchText = searchText.toLower();
    Build(label);
    ShowValue();
}

void SettingRow::Build(const QString& label) {
    const int em = letterWidth(fontMetrics());
    name = new QLabel(withoutShortcut(label));
    name->setWordWrap(true);
    name->setTextFormat(Qt::PlainText);
    name->setFixedWidth(em * 26);
    QFont bold = name->font(); // the font of a changed setting, so that the row keeps its height
    bold.setBold(true);
    name->setMinimumHeight(QFontMetrics(bold)
                               .boundingRect(QRect(0, 0, em * 26, QWIDGETSIZE_MAX), Qt::TextWordWrap, label)
                               .height());
    editor = MakeEditor();
    editor->setAccessibleName(label);
    editor->setObjectName(shown(key));
    name->setBuddy(editor);
    setFocusProxy(editor);
    undo = new GlyphButton(Glyph::Undo);
    undo->setAccessibleName(tr("Restore %1").arg(label));
    undo->setToolTip(tr("Restore the value that the job came with"));
    QSizePolicy policy = undo->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    undo->setSizePolicy(policy);
    connect(undo, &GlyphButton::clicked, this, [this] {
        const JobSetting* setting = settings.Find(key);
        Take(setting == nullptr ? std::string() : std::string(setting->handedOver));
        ShowValue();
        editor->setFocus();
    });

    auto* place = new QWidget;
    place->setMaximumWidth(em * 48);
    auto* column = new QVBoxLayout(place);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(editor);
    if (const Lock lock = settings.LockOf(key); lock != Lock::None) {
        editor->setEnabled(false);
        column->addWidget(MakeLockNote(lock));
    }
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 1, 0, 1);
    row->addWidget(name, 0, Qt::AlignVCenter);
    row->addWidget(place, 100); // gets its full width before the empty rest gets any
    row->addWidget(undo, 0, Qt::AlignVCenter);
    row->addStretch(1);
}

QWidget* SettingRow::MakeLockNote(Lock lock) {
    const QString reason =
        lock == Lock::Server ? tr("Locked by the print server") : tr("Set by your administrator");
    auto* note = new QWidget;
    auto* row = new QHBoxLayout(note);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    auto* glyph = new GlyphButton(Glyph::Lock);
    glyph->setAccessibleName(tr("%1: %2").arg(shownLabel, reason));
    glyph->setToolTip(plainToolTip(reason));
    auto* text = new QLabel(reason);
    text->setTextFormat(Qt::PlainText);
    QFont font = text->font();
    font.setPointSizeF(font.pointSizeF() * 0.88);
    text->setFont(font);
    row->addWidget(glyph);
    row->addWidget(text, 1);
    editor->setAccessibleDescription(reason);
    return note;
}

QWidget* SettingRow::MakeEditor() {
    if (described == nullptr) {
        return MakeLine();
    }
    const std::string value = settings.Value(key);
    switch (described->kind) {
    case SettingKind::Choice:
        return described->choices.empty() ? MakeLine() : MakeChoice();
    case SettingKind::Choices:
        return described->choices.empty() ? MakeLine() : MakeChoices();
    case SettingKind::Switch:
        return value == "True" || value == "False" ? MakeSwitch() : MakeLine();
    case SettingKind::Whole:
        return numberWithin(value, *described) && std::abs(described->minimum) < 1e9 &&
                       described->maximum < 1e9
                   ? MakeWhole()
                   : MakeLine();
    case SettingKind::Decimal:
        return numberWithin(value, *described) ? MakeDecimal() : MakeLine();
    case SettingKind::Text:
        break;
    }
    return MakeLine();
}

QWidget* SettingRow::MakeChoice() {
    auto* box = guarded(new QComboBox);
    for (const DescribedChoice& choice : described->choices) {
        box->addItem(shown(choice.label), shown(choice.key));
    }
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(12);
    connect(box, &QComboBox::currentIndexChanged, this,
            [this, box](int) { Take(box->currentData().toString().toStdString()); });
    showEditor = [box](const std::string& value) {
        int index = box->findData(shown(value), Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive);
        if (index < 0) { // a choice from the server
            box->addItem(value.empty() ? tr("(none)") : shown(value), shown(value));
            index = box->count() - 1;
        }
        box->setCurrentIndex(index);
    };
    return box;
}

QWidget* SettingRow::MakeChoices() {
    auto* group = new QWidget;
    auto* column = new QVBoxLayout(group);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    std::vector<QCheckBox*> boxes;
    for (const DescribedChoice& choice : described->choices) {
        boxes.push_back(new QCheckBox(withoutShortcut(shown(choice.label))));
        boxes.back()->setAccessibleName(tr("%1: %2").arg(shownLabel, shown(choice.label)));
        column->addWidget(boxes.back());
    }
    for (QCheckBox* box : boxes) {
        connect(box, &QCheckBox::toggled, this, [this, boxes](bool) {
            std::string value;
            for (std::size_t i = 0; i < boxes.size(); ++i) {
                if (boxes[i]->isChecked()) {
                    value += (value.empty() ? "" : ",") + described->choices[i].key;
                }
            }
            Take(value);
        });
    }
    group->setFocusProxy(boxes.front());
    showEditor = [this, boxes](const std::string& value) {
        const auto keys = split(value, ',');
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            boxes[i]->setChecked(std::find(keys.begin(), keys.end(), described->choices[i].key) !=
                                 keys.end());
        }
    };
    return group;
}

QWidget* SettingRow::MakeSwitch() {
    auto* box = new QCheckBox;
    const auto stateText = [this](bool on) {
        for (const DescribedChoice& choice : described->choices) {
            if (choice.key == (on ? "True" : "False")) {
                return withoutShortcut(shown(choice.label));
            }
        }
        return on ? tr("On") : tr("Off");
    };
    connect(box, &QCheckBox::toggled, this, [this, box, stateText](bool on) {
        box->setText(stateText(on));
        Take(on ? "True" : "False");
    });
    showEditor = [box, stateText](const std::string& value) {
        box->setChecked(value == "True");
        box->setText(stateText(box->isChecked()));
    };
    return box;
}

QWidget* SettingRow::MakeWhole() {
    auto* box = guarded(new QSpinBox);
    box->setRange(static_cast<int>(described->minimum), static_cast<int>(described->maximum));
    box->setSingleStep(std::max(1, static_cast<int>(std::min(described->increment, 1e6))));
    connect(box, &QSpinBox::valueChanged, this, [this](int value) { Take(std::to_string(value)); });
    showEditor = [box](const std::string& value) {
        box->setValue(static_cast<int>(decimalNumber(trimmed(value)).value_or(box->minimum())));
    };
    return box;
}

QWidget* SettingRow::MakeDecimal() {
    auto* box = guarded(new QDoubleSpinBox);
    box->setDecimals(decimalsOf(described->increment));
    box->setRange(described->minimum, described->maximum);
    box->setSingleStep(described->increment);
    connect(box, &QDoubleSpinBox::valueChanged, this, [this](double value) { Take(decimalText(value)); });
    showEditor = [box](const std::string& value) {
        box->setValue(decimalNumber(trimmed(value)).value_or(box->minimum()));
    };
    return box;
}

QWidget* SettingRow::MakeLine() {
    auto* line = new QLineEdit;
    const bool hasLimit = described != nullptr && described->maximumLength > 0;
    line->setMaxLength(hasLimit ? static_cast<int>(described->maximumLength) : maximumValueLength);
    if (described != nullptr && described->secret) {
        line->setEchoMode(QLineEdit::Password);
    }
    connect(line, &QLineEdit::textEdited, this, [this](const QString& text) { Take(text.toStdString()); });
    showEditor = [line](const std::string& value) { line->setText(shown(value)); };
    return line;
}

void SettingRow::Take(const std::string& value) {
    if (isShowing) {
        return;
    }
    settings.Edit(key, value);
    ShowChanged();
    Q_EMIT Edited();
}

void SettingRow::ShowValue() {
    {
        const QScopedValueRollback showing(isShowing, true);
        showEditor(settings.Value(key));
    }
    ShowChanged();
}

void SettingRow::ShowChanged() {
    const JobSetting* setting = settings.Find(key);
    const bool isChanged = setting != nullptr && setting->value != setting->handedOver;
    QFont font = name->font();
    font.setBold(isChanged);
    name->setFont(font);
    undo->setVisible(isChanged && settings.LockOf(key) == Lock::None);
}

void SettingRow::SetHelp(const QString& help) {
    name->setToolTip(plainToolTip(help));
    editor->setToolTip(plainToolTip(help));
    editor->setWhatsThis(plainToolTip(help));
}

bool SettingRow::Matches(const QStringList& words, const QString& context) const {
    return std::all_of(words.begin(), words.end(), [&](const QString& word) {
        return searchText.contains(word) || context.contains(word);
    });
}

} // namespace torka::jobproperties
