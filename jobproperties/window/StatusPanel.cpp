// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/StatusPanel.h"

#include "jobproperties/window/Glyphs.h"
#include "jobproperties/window/LetterWidth.h"
#include "jobproperties/window/LevelGauge.h"
#include "jobproperties/window/PlainText.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace torka::jobproperties {

namespace {

constexpr std::size_t maximumRows = 200;

QString percentText(int level) {
    return QLocale().toString(std::clamp(level, 0, 100)) + StatusPanel::tr(" %");
}

// Returns a special level in words; empty for a known number.
QString specialText(int level) {
    switch (level) {
    case SDM_LEVEL_UNLIMITED:
        return StatusPanel::tr("unlimited");
    case SDM_LEVEL_SOME:
        return StatusPanel::tr("some");
    default:
        return level < 0 ? StatusPanel::tr("unknown") : QString();
    }
}

QLabel* makeText() {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText); // a server's text is never markup
    label->setWordWrap(true);
    return label;
}

void setSmall(QLabel* label) {
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.88);
    label->setFont(font);
}

struct Item {
    std::string_view key;
    const char* label;
};
constexpr std::array<Item, 11> knownItems{{{"ServerName", QT_TRANSLATE_NOOP("StatusPanel", "Name")},
                                           {"ServerVersion", QT_TRANSLATE_NOOP("StatusPanel", "Version")},
                                           {"ProductFamily", QT_TRANSLATE_NOOP("StatusPanel", "Family")},
                                           {"ServerOS", QT_TRANSLATE_NOOP("StatusPanel", "System")},
                                           {"PCLSupport", QT_TRANSLATE_NOOP("StatusPanel", "PCL")},
                                           {"PSSupport", QT_TRANSLATE_NOOP("StatusPanel", "PostScript")},
                                           {"HueKeeper", QT_TRANSLATE_NOOP("StatusPanel", "HueKeeper")},
                                           {"MemAvailable", QT_TRANSLATE_NOOP("StatusPanel", "Memory free")},
                                           {"MemSize", QT_TRANSLATE_NOOP("StatusPanel", "Memory")},
                                           {"DiskAvailable", QT_TRANSLATE_NOOP("StatusPanel", "Disk free")},
                                           {"DiskTotal", QT_TRANSLATE_NOOP("StatusPanel", "Disk")}}};

QString itemLabel(const std::string& key) {
    const auto* found =
        std::find_if(knownItems.begin(), knownItems.end(), [&](const Item& item) { return item.key == key; });
    return found == knownItems.end() ? shown(key) : StatusPanel::tr(found->label);
}

} // namespace

StatusPanel::StatusPanel(const Server& givenServer, QWidget* parent)
    : QScrollArea(parent)
    , server(givenServer) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(tr("Printer status"));
    auto* content = new QWidget;
    column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 6, 0);
    notice = makeText();
    column->addWidget(notice);
    toner = MakeSection(tr("Toner"));
    tray = MakeSection(tr("Trays"));
    auto* box = new QGroupBox(tr("Server"));
    informationText = makeText();
    informationText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    (new QVBoxLayout(box))->addWidget(informationText);
    information = box;
    information->hide();
    column->addWidget(information);
    column->addStretch(1);
    setWidget(content);
    setMinimumWidth(letterWidth(fontMetrics()) * 30);
}

StatusPanel::Section StatusPanel::MakeSection(const QString& title) {
    Section section;
    section.box = new QGroupBox(title);
    section.rows = new QVBoxLayout(section.box);
    section.rows->setSpacing(8);
    section.box->hide();
    column->addWidget(section.box);
    return section;
}

StatusPanel::Section::Row StatusPanel::MakeRow() {
    auto* warning = new QLabel;
    warning->setTextFormat(Qt::PlainText);
    Section::Row row{new QWidget, makeText(), makeText(), makeText(), warning, new LevelGauge};
    auto* lines = new QVBoxLayout(row.widget);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(2);
    auto* head = new QHBoxLayout;
    head->setSpacing(letterWidth(row.widget->fontMetrics()));
    head->addWidget(row.name, 1);
    head->addWidget(row.warning);
    row.state->setWordWrap(false);
    head->addWidget(row.state);
    lines->addLayout(head);
    lines->addWidget(row.gauge);
    setSmall(row.detail);
    lines->addWidget(row.detail);
    return row;
}

void StatusPanel::Fit(Section& section, std::size_t count) {
    count = std::min(count, maximumRows);
    while (section.shown.size() > count) {
        delete section.shown.back().widget;
        section.shown.pop_back();
    }
    while (section.shown.size() < count) {
        section.shown.push_back(MakeRow());
        section.rows->addWidget(section.shown.back().widget);
    }
    section.box->setVisible(count > 0);
}

void StatusPanel::Refresh() {
    const auto toners = server.Toners();
    const auto trays = server.Trays();
    const auto values = server.Information();
    if (toners.value != shownToners) {
        ShowToners(toners.value);
    }
    if (trays.value != shownTrays) {
        ShowTrays(trays.value);
    }
    if (values.value != shownInformation) {
        ShowInformation(values.value);
    }
    QString text;
    if (!server.IsTwoWay()) {
        text = tr("Two-way communication is off, so toner and trays are not known.");
    } else if (!toners && !trays) {
        text = tr("The print server has not sent its state. Settings can be edited all the same.");
    }
    if (notice->text() != text) {
        notice->setText(text);
    }
    notice->setVisible(!text.isEmpty());
}

namespace {

void showWarning(QLabel* label, const QString& text) {
    label->setVisible(!text.isEmpty());
    label->setText(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
}

} // namespace

void StatusPanel::ShowToners(const std::vector<Toner>& toners) {
    shownToners = toners;
    Fit(toner, toners.size());
    for (std::size_t i = 0; i < toner.shown.size(); ++i) {
        const Toner& now = toners[i];
        const Section::Row& row = toner.shown[i];
        const bool isWaste = now.kind == SDM_SUPPLY_WASTE;
        const QString state = now.level < 0 ? specialText(now.level)
                              : isWaste     ? tr("%1 full").arg(percentText(now.level))
                                            : percentText(now.level);
        QString warning;
        if (isWaste && now.highLevel >= 0 && now.level >= now.highLevel) {
            warning = tr("Replace");
        } else if (!isWaste && now.lowLevel >= 0 && now.level >= 0 && now.level <= now.lowLevel) {
            warning = now.level == 0 ? tr("Empty") : tr("Low");
        }
        row.name->setText(shown(now.name));
        row.state->setText(state);
        row.detail->setText(now.capacity > 0 && now.level >= 0 && !isWaste
                                ? tr("about %1 pages")
                                      .arg(QLocale().toString(static_cast<qlonglong>(
                                          std::int64_t{now.capacity} * std::min(now.level, 100) / 100)))
                                : QString());
        row.detail->setVisible(!row.detail->text().isEmpty());
        showWarning(row.warning, warning);
        row.gauge->SetColors(LevelGauge::ColorsFromText(shown(now.color)));
        row.gauge->SetLevel(now.level == SDM_LEVEL_UNLIMITED ? 100 : now.level);
        row.gauge->setAccessibleName(shown(now.name));
        row.gauge->setAccessibleDescription(warning.isEmpty() ? state : state + ", " + warning);
    }
}

void StatusPanel::ShowTrays(const std::vector<Tray>& trays) {
    shownTrays = trays;
    Fit(tray, trays.size());
    for (std::size_t i = 0; i < tray.shown.size(); ++i) {
        const Tray& now = trays[i];
        const Section::Row& row = tray.shown[i];
        QString state = specialText(now.level);
        if (now.level >= 0) {
            state = now.capacity > 0
                        ? tr("%1 of %2").arg(QLocale().toString(now.level), QLocale().toString(now.capacity))
                        : tr("%1 sheets").arg(QLocale().toString(now.level));
        }
        QStringList media;
        for (const std::string* text : {&now.mediaName, &now.mediaSize, &now.mediaType, &now.mediaColor}) {
            if (!text->empty() && !media.contains(shown(*text))) {
                media.push_back(shown(*text));
            }
        }
        row.name->setText(shown(now.name.empty() ? now.key : now.name));
        row.state->setText(state);
        row.detail->setText(media.join(QStringLiteral(" · ")));
        row.detail->setVisible(!media.isEmpty());
        showWarning(row.warning, now.level == 0 ? tr("Empty") : QString());
        int percent = -1;
        if (now.level == SDM_LEVEL_UNLIMITED) {
            percent = 100;
        } else if (now.level == 0) {
            percent = 0;
        } else if (now.level > 0 && now.capacity > 0) {
            percent =
                static_cast<int>(std::min<std::int64_t>(100, std::int64_t{now.level} * 100 / now.capacity));
        }
        row.gauge->SetLevel(percent);
        row.gauge->setAccessibleName(row.name->text());
        row.gauge->setAccessibleDescription(media.isEmpty() ? state : state + ", " + row.detail->text());
    }
}

void StatusPanel::ShowInformation(const KeyValues& values) {
    shownInformation = values;
    QStringList lines;
    for (const KeyValue& entry : values) {
        if (!entry.value.empty() && static_cast<std::size_t>(lines.size()) < maximumRows) {
            lines.push_back(tr("%1: %2").arg(itemLabel(entry.key), shown(entry.value)));
        }
    }
    informationText->setText(lines.join('\n'));
    information->setVisible(!lines.isEmpty());
}

} // namespace torka::jobproperties
