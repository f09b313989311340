#include "pane/views/FieldTexts.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "StringUtils.h"

#include <QLabel>
#include <QLocale>
#include <QStringList>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace torka {
namespace {

constexpr std::size_t mostReasons = 3; // named one by one

QString shownNumber(const PaneField& field, std::string_view value) {
    const ShownUnit unit = shownUnit(field);
    int decimals = unit.decimals;
    if (const auto* range = dynamic_cast<const PPDXFloatRangeControl*>(field.control)) {
        decimals = std::max(decimals, decimalsFor(range->Increment()));
    }
    const QString number = QLocale().toString(realValue(value) * unit.factor, 'f', decimals);
    return unit.name.isEmpty() ? number : number + QLatin1Char(' ') + unit.name;
}

QString shownSize(const PaneContext& context, std::string_view value) {
    const double points = context.metric ? pointsPerMillimetre : pointsPerInch;
    const int decimals = context.metric ? 1 : 2;
    const std::size_t blank = std::min(value.find(' '), value.size());
    return QLocale().toString(realValue(value.substr(0, blank)) / points, 'f', decimals) +
           QStringLiteral(" × ") +
           QLocale().toString(realValue(value.substr(blank)) / points, 'f', decimals) + QLatin1Char(' ') +
           context.Say(context.metric ? words::millimetres : words::inches);
}

} // namespace

QString labelText(const QString& plain) {
    return QString(plain).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString plainToolTip(const QString& plain) {
    return plain.isEmpty() ? QString()
                           : QLatin1String("<p>") +
                                 plain.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>")) +
                                 QLatin1String("</p>");
}

void setPlainToolTip(QWidget& widget, const QString& plain) {
    widget.setToolTip(plainToolTip(plain));
    widget.setAccessibleDescription(plain);
}

void alignLeading(QLabel& label) {
    label.setAlignment((label.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute |
                       Qt::AlignVCenter);
}

QString shownChoice(const PaneContext& context, const PPDXControl& control, std::string_view choice) {
    const std::string name = choiceName(control, choice);
    if (control.Type() == CNTL_TYPE::boolean && name == choice) {
        return context.Say(choice == "True" ? words::on : words::off);
    }
    return qText(name);
}

QString shownValue(const PaneContext& context, const PaneField& field, std::string_view value) {
    switch (field.control->Type()) {
    case CNTL_TYPE::popup: {
        QStringList names;
        while (!value.empty()) {
            const std::size_t end = std::min(value.find('\n'), value.size());
            names.append(shownChoice(context, *field.control, value.substr(0, end)));
            value.remove_prefix(std::min(end + 1, value.size()));
        }
        return names.isEmpty() ? context.Say(words::chooseSeveral) : names.join(QLatin1String(", "));
    }
    case CNTL_TYPE::boolean:
        return shownChoice(context, *field.control, value);
    case CNTL_TYPE::range:
    case CNTL_TYPE::floatRange:
        return shownNumber(field, value);
    case CNTL_TYPE::customPageSize:
        return shownSize(context, value);
    default:
        break;
    }
    constexpr qsizetype dots = 8; // always as many: the length is a secret too
    return isSecret(*field.control) && !value.empty() ? QString(dots, QChar(0x2022)) : qText(value);
}

QString shownSetting(const PaneContext& context, const PaneSetting& setting) {
    const PPDXControl* control = context.editor.FindControl(setting.keyword);
    if (control == nullptr) {
        return context.Say(words::settingIs, qText(setting.keyword), qText(setting.choice));
    }
    return context.Say(words::settingIs, qText(nameOf(*control)),
                       shownChoice(context, *control, setting.choice));
}

QString whyForbidden(const PaneContext& context, const PPDXControl& control, const PaneChoice& choice) {
    const auto reasons = context.editor.ForbiddenBy(control.Keyword(), choice.keyword);
    if (reasons.empty()) {
        return {};
    }
    QStringList names;
    for (std::size_t i = 0; i < std::min(reasons.size(), mostReasons); ++i) {
        names.append(shownSetting(context, reasons[i]));
    }
    if (reasons.size() > mostReasons) {
        names.append(context.Say(words::moreReasons, QString::number(reasons.size() - mostReasons)));
    }
    return context.Say(words::notAvailableWith, shownChoice(context, control, choice.keyword),
                       names.join(QLatin1String(", ")));
}

QString shownChanges(const PaneContext& context, const std::vector<PaneSetting>& changes) {
    QStringList parts;
    for (const PaneSetting& change : changes) {
        if (const PPDXControl* control = context.editor.FindControl(change.keyword)) {
            parts.append(context.Say(words::setTo, qText(nameOf(*control)),
                                     shownChoice(context, *control, change.choice)));
        }
    }
    return parts.join(QLatin1String(", "));
}

QString noteRules(const PaneContext& context, const PPDXControl& control) {
    const auto* note = dynamic_cast<const PPDXJobNote*>(&control);
    if (note == nullptr) {
        return {};
    }
    QStringList kinds;
    if (!takesAnyCharacter(note->NoteFlags())) {
        const std::uint8_t admitted = admittedCharacters(note->NoteFlags());
        for (const NoteCharacterKind& kind : noteCharacterKinds) {
            if ((admitted & kind.kind) != 0) {
                kinds.append(kind.kind == noteDigits    ? context.Say(words::allowedDigits)
                             : kind.kind == noteLetters ? context.Say(words::allowedLetters)
                             : kind.kind == noteBlank   ? context.Say(words::allowedSpaces)
                                                        : qText(kind.name));
            }
        }
    }
    QStringList rules;
    if (!kinds.isEmpty()) {
        rules.append(context.Say(words::allowedCharacters, kinds.join(QLatin1String(", "))));
    }
    const QString longest = QString::number(note->MaxLength());
    rules.append(context.Say(note->IsLengthReq() ? words::exactly : words::atMost, longest));
    if (note->MinLength() > 0) {
        rules.append(context.Say(words::atLeast, QString::number(note->MinLength())));
    }
    return rules.join(QLatin1Char(' '));
}

ShownUnit shownUnit(const PaneField& field) {
    ShownUnit shown{1.0, 0, qText(field.unit)};
    for (const int decimals : {1, 2, 3}) {
        const auto parts = static_cast<int>(std::lround(std::pow(10.0, decimals)));
        const QString fraction = QStringLiteral("1/%1 ").arg(parts);
        if (shown.name.startsWith(fraction)) {
            return {1.0 / parts, decimals, shown.name.mid(fraction.size()).trimmed()};
        }
    }
    return shown;
}

int decimalsFor(float increment) {
    int decimals = 0;
    double step = std::abs(static_cast<double>(increment));
    constexpr double tolerance = 1e-4; // a float's 0.1 is not quite that
    while (decimals < 4 && std::abs(step - std::round(step)) > tolerance * std::max(step, 1.0)) {
        step *= 10.0;
        ++decimals;
    }
    return decimals;
}

} // namespace torka
