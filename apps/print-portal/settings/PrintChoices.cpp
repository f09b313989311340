// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/settings/PrintChoices.h"

#include <QLocale>
#include <QPageSize>
#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace torka::portal {

namespace {

constexpr qsizetype longestValue = 1024; // characters
constexpr qsizetype mostSettings = 1000; // of one request; more are not read
constexpr int mostCopies = 9999;
constexpr double largestEdge = 10000; // millimetres

template <class Choice>
struct Word {
    Choice choice;
    const char* word;
};

constexpr std::array pagesWords{Word<Pages>{Pages::All, "all"}, Word<Pages>{Pages::Ranges, "ranges"},
                                Word<Pages>{Pages::Current, "current"},
                                Word<Pages>{Pages::Selection, "selection"}};
constexpr std::array pageSetWords{Word<PageSet>{PageSet::All, "all"}, Word<PageSet>{PageSet::Even, "even"},
                                  Word<PageSet>{PageSet::Odd, "odd"}};
// GTK names the edge along which the sheet is turned: "horizontal" is *Duplex DuplexNoTumble.
constexpr std::array sidesWords{Word<Sides>{Sides::One, "simplex"},
                                Word<Sides>{Sides::LongEdge, "horizontal"},
                                Word<Sides>{Sides::ShortEdge, "vertical"}};
constexpr std::array turnWords{Word<Turn>{Turn::Portrait, "portrait"},
                               Word<Turn>{Turn::Landscape, "landscape"},
                               Word<Turn>{Turn::ReversePortrait, "reverse_portrait"},
                               Word<Turn>{Turn::ReverseLandscape, "reverse_landscape"}};
constexpr std::array boolWords{Word<bool>{true, "true"}, Word<bool>{false, "false"}};
// RFC 8011, 5.2.13
constexpr std::array qualityWords{Word<int>{3, "draft"}, Word<int>{3, "low"}, Word<int>{4, "normal"},
                                  Word<int>{5, "high"}};
constexpr std::array orders{"lrtb", "lrbt", "rltb", "rlbt", "tblr", "tbrl", "btlr", "btrl"};
constexpr std::array sheetCounts{1, 2, 4, 6, 9, 16};

template <class Choice, std::size_t count>
bool read(const std::array<Word<Choice>, count>& words, const QString& text, std::optional<Choice>& choice) {
    const auto found =
        std::ranges::find_if(words, [&](const auto& w) { return text == QLatin1String(w.word); });
    if (found == words.end()) {
        return false;
    }
    choice = found->choice;
    return true;
}

template <class Choice, std::size_t count>
QString written(const std::array<Word<Choice>, count>& words, const std::optional<Choice>& choice) {
    if (!choice) {
        return {};
    }
    return QLatin1String(std::ranges::find(words, *choice, &Word<Choice>::choice)->word);
}

// In the C locale; "" for an absent number.
QString written(const std::optional<int>& number) { return number ? QString::number(*number) : QString(); }

bool readNumber(const QString& text, double smallest, double largest, double& number) {
    bool isNumber = false;
    const double value = QLocale::c().toDouble(text, &isNumber);
    if (!isNumber || !std::isfinite(value) || value < smallest || value > largest) {
        return false;
    }
    number = value;
    return true;
}

bool readInt(const QString& text, int smallest, int largest, std::optional<int>& number) {
    double value = 0;
    if (!readNumber(text, smallest, largest, value) || std::floor(value) != value) {
        return false;
    }
    number = static_cast<int>(value);
    return true;
}

// "0-2,4,9-11", counted from 0. GTK writes an open end as "-1": "4--1".
bool readRanges(const QString& text, QPageRanges& ranges) {
    constexpr int largestPage = 9998; // the dialog takes pages up to 9999
    QPageRanges result;
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString& part : parts) {
        const qsizetype dash = part.indexOf(QLatin1Char('-'));
        std::optional<int> first;
        std::optional<int> last;
        if (!readInt(part.left(dash), 0, largestPage, first) ||
            !readInt(dash < 0 ? part : part.mid(dash + 1), -1, largestPage, last)) {
            return false;
        }
        const int end = *last < 0 ? largestPage : *last;
        if (end < *first) {
            return false;
        }
        result.addRange(*first + 1, end + 1);
    }
    ranges = result;
    return true;
}

QString writtenRanges(const QPageRanges& ranges) {
    QStringList parts;
    const QList<QPageRanges::Range> list = ranges.toRangeList();
    for (const auto& range : list) {
        parts += range.from == range.to ? QString::number(range.from - 1)
                                        : QStringLiteral("%1-%2").arg(range.from - 1).arg(range.to - 1);
    }
    return parts.join(QLatin1Char(','));
}

// PWG 5101.1 names of the sizes that Qt knows by an identifier.
struct PaperName {
    const char* name;
    QPageSize::PageSizeId size;
};
constexpr std::array paperNames{PaperName{"iso_a3", QPageSize::A3},
                                PaperName{"iso_a4", QPageSize::A4},
                                PaperName{"iso_a5", QPageSize::A5},
                                PaperName{"iso_a6", QPageSize::A6},
                                PaperName{"iso_a2", QPageSize::A2},
                                PaperName{"iso_b4", QPageSize::B4},
                                PaperName{"iso_b5", QPageSize::B5},
                                PaperName{"jis_b4", QPageSize::JisB4},
                                PaperName{"jis_b5", QPageSize::JisB5},
                                PaperName{"na_letter", QPageSize::Letter},
                                PaperName{"na_legal", QPageSize::Legal},
                                PaperName{"na_ledger", QPageSize::Tabloid},
                                PaperName{"na_executive", QPageSize::Executive}};

// Edges are needed: GTK's own names are far more than those of the table.
bool readPaperName(const QString& text, PrintChoices& choices) {
    const auto found = std::ranges::find_if(
        paperNames, [&](const auto& known) { return text == QLatin1String(known.name); });
    if (found == paperNames.end()) {
        return true; // the edges tell the size
    }
    const QPageSize size(found->size);
    choices.paper = Paper{size.key(), size.name(), size.size(QPageSize::Millimeter)};
    return true;
}

bool readEdge(const QString& text, bool isWidth, PrintChoices& choices) {
    double edge = 0;
    if (!readNumber(text, 1, largestEdge, edge)) {
        return false;
    }
    Paper paper = choices.paper.value_or(Paper{{}, {}, QSizeF(0, 0)});
    (isWidth ? paper.millimetres.rwidth() : paper.millimetres.rheight()) = edge;
    choices.paper = paper;
    return true;
}

QString writtenPaperName(const PrintChoices& choices) {
    if (!choices.paper) {
        return {};
    }
    for (const PaperName& known : paperNames) {
        if (choices.paper->ppdName == QPageSize::key(known.size)) {
            return QLatin1String(known.name);
        }
    }
    return QStringLiteral("custom-") + choices.paper->displayName; // as GTK names it
}

QString writtenEdge(const PrintChoices& choices, bool isWidth) {
    if (!choices.paper) {
        return {};
    }
    return QString::number(isWidth ? choices.paper->millimetres.width() : choices.paper->millimetres.height(),
                           'f', 3);
}

enum class Owner {
    Dialog,  // the choice counts for the program as it does for the dialog
    Layout,  // the program gets it only when it lays the pages out itself
    Program, // goes through unchanged
};

// One key in both directions. `read` returns false for a value that is not valid. `write` returns a null text
// for a key that the program does not get.
struct Row {
    const char* key;
    Owner owner;
    bool (*read)(PrintChoices&, const QString&);
    QString (*write)(const PrintChoices&);
    const char* neutral; // for Owner::Layout, when the server lays out
};

using C = PrintChoices;
using Text = QString;

// paper-format comes before the edges, which hold where they differ.
const std::array<Row, 23> rows{{
    {"printer", Owner::Dialog,
     [](C& c, const Text& t) {
         c.printer = t;
         return true;
     },
     [](const C& c) { return c.printer; }, nullptr},
    {"output-uri", Owner::Dialog,
     [](C& c, const Text& t) {
         c.outputUri = t;
         return true;
     },
     [](const C& c) { return c.outputUri; }, nullptr},
    {"output-basename", Owner::Dialog,
     [](C& c, const Text& t) {
         c.outputName = t;
         return true;
     },
     [](const C& c) { return c.outputName; }, nullptr},
    // The job and the file that is saved are PDF, whatever the program used before.
    {"output-file-format", Owner::Dialog, [](C&, const Text&) { return true; },
     [](const C&) { return QStringLiteral("pdf"); }, nullptr},
    {"n-copies", Owner::Layout, [](C& c, const Text& t) { return readInt(t, 1, mostCopies, c.copies); },
     [](const C& c) { return written(c.copies); }, "1"},
    {"collate", Owner::Layout, [](C& c, const Text& t) { return read(boolWords, t, c.collate); },
     [](const C& c) { return written(boolWords, c.collate); }, "false"},
    {"reverse", Owner::Layout, [](C& c, const Text& t) { return read(boolWords, t, c.reverse); },
     [](const C& c) { return written(boolWords, c.reverse); }, "false"},
    {"print-pages", Owner::Dialog, [](C& c, const Text& t) { return read(pagesWords, t, c.pages); },
     [](const C& c) { return written(pagesWords, c.pages); }, nullptr},
    {"page-ranges", Owner::Dialog, [](C& c, const Text& t) { return readRanges(t, c.ranges); },
     [](const C& c) { return c.pages == Pages::Ranges ? writtenRanges(c.ranges) : QString(); }, nullptr},
    {"page-set", Owner::Dialog, [](C& c, const Text& t) { return read(pageSetWords, t, c.pageSet); },
     [](const C& c) { return written(pageSetWords, c.pageSet); }, nullptr},
    {"duplex", Owner::Dialog, [](C& c, const Text& t) { return read(sidesWords, t, c.sides); },
     [](const C& c) { return written(sidesWords, c.sides); }, nullptr},
    {"orientation", Owner::Dialog, [](C& c, const Text& t) { return read(turnWords, t, c.turn); },
     [](const C& c) { return written(turnWords, c.turn); }, nullptr},
    {"paper-format", Owner::Dialog, [](C& c, const Text& t) { return readPaperName(t, c); }, writtenPaperName,
     nullptr},
    {"paper-width", Owner::Dialog, [](C& c, const Text& t) { return readEdge(t, true, c); },
     [](const C& c) { return writtenEdge(c, true); }, nullptr},
    {"paper-height", Owner::Dialog, [](C& c, const Text& t) { return readEdge(t, false, c); },
     [](const C& c) { return writtenEdge(c, false); }, nullptr},
    {"number-up", Owner::Layout,
     [](C& c, const Text& t) {
         return readInt(t, 1, sheetCounts.back(), c.pagesPerSheet) &&
                std::ranges::find(sheetCounts, *c.pagesPerSheet) != sheetCounts.end();
     },
     [](const C& c) { return written(c.pagesPerSheet); }, "1"},
    {"number-up-layout", Owner::Layout,
     [](C& c, const Text& t) {
         c.pagesPerSheetOrder = t;
         return std::ranges::any_of(orders, [&](const char* order) { return t == QLatin1String(order); });
     },
     [](const C& c) { return c.pagesPerSheetOrder.isEmpty() ? QString() : c.pagesPerSheetOrder; }, "lrtb"},
    {"use-color", Owner::Dialog, [](C& c, const Text& t) { return read(boolWords, t, c.color); },
     [](const C& c) { return written(boolWords, c.color); }, nullptr},
    {"scale", Owner::Dialog,
     [](C& c, const Text& t) {
         double percent = 0;
         const bool isValid = readNumber(t, 1, 1000, percent);
         c.scale = isValid ? std::optional(percent) : std::nullopt;
         return isValid;
     },
     [](const C& c) { return c.scale ? QLocale::c().toString(*c.scale) : QString(); }, nullptr},
    // Where GTK shows its file chooser, and how fine its own drawing is.
    {"output-dir", Owner::Program, [](C&, const Text&) { return true; }, nullptr, nullptr},
    {"printer-lpi", Owner::Program, [](C&, const Text&) { return true; }, nullptr, nullptr},
    // GTK sends them beside "resolution", with the same meaning.
    {"resolution-x", Owner::Program, [](C&, const Text&) { return true; }, nullptr, nullptr},
    {"resolution-y", Owner::Program, [](C&, const Text&) { return true; }, nullptr, nullptr},
}};

constexpr QLatin1String optionPrefix("cups-");

bool isKeyword(QStringView text) {
    constexpr qsizetype longestKeyword = 40; // PPD 4.3
    return !text.isEmpty() && text.size() <= longestKeyword && std::ranges::all_of(text, [](QChar c) {
        return c.unicode() > 0x20 && c.unicode() < 0x7f && !QStringLiteral(".:/*\"").contains(c);
    });
}

// Standard keys that a program keeps from another dialog, and the main keyword with the same meaning
// (PPD 4.3).
struct Kept {
    const char* key;
    const char* keyword;
};
constexpr std::array keptKeys{Kept{"default-source", "InputSlot"}, Kept{"media-type", "MediaType"},
                              Kept{"output-bin", "OutputBin"}};

bool readOption(const QString& key, const QString& value, PrintChoices& choices) {
    for (const Kept& kept : keptKeys) {
        if (key == QLatin1String(kept.key)) {
            choices.printerOptions.emplaceBack(QLatin1String(kept.keyword), value);
            return true;
        }
    }
    if (key == QLatin1String("resolution")) {
        std::optional<int> dots;
        if (!readInt(value, 1, 100000, dots)) {
            return false;
        }
        choices.printerOptions.emplaceBack(QStringLiteral("Resolution"), QStringLiteral("%1dpi").arg(*dots));
        return true;
    }
    if (key == QLatin1String("quality")) {
        std::optional<int> number;
        const bool isValid = read(qualityWords, value, number);
        if (isValid) {
            choices.printerOptions.emplaceBack(QStringLiteral("print-quality"), QString::number(*number));
        }
        return isValid;
    }
    if (!key.startsWith(optionPrefix) || !isKeyword(QStringView(key).mid(optionPrefix.size()))) {
        return false;
    }
    choices.printerOptions.emplaceBack(key.mid(optionPrefix.size()), value);
    return true;
}

QString shortened(const QString& text) { return plainLine(text, 60); }

void readPageSetup(const QVariantMap& setup, PrintChoices& choices, QStringList& problems) {
    const auto number = [&](const char* key, double smallest) -> std::optional<double> {
        const QVariant value = setup.value(QLatin1String(key));
        if (!value.isValid()) {
            return std::nullopt;
        }
        const double edge = value.typeId() == QMetaType::Double ? value.toDouble() : -1;
        if (std::isfinite(edge) && edge >= smallest && edge <= largestEdge) {
            return edge;
        }
        problems += QStringLiteral("the page setup's %1 is no length").arg(QLatin1String(key));
        return std::nullopt;
    };
    const auto text = [&](const char* key) {
        const QVariant value = setup.value(QLatin1String(key));
        return value.typeId() == QMetaType::QString ? plainLine(value.toString(), 100) : QString();
    };
    const auto width = number("Width", 1);
    const auto height = number("Height", 1);
    if (width && height) {
        const QString display = text("DisplayName");
        choices.paper = Paper{text("PPDName"), display.isEmpty() ? text("Name") : display, {*width, *height}};
    }
    const auto left = number("MarginLeft", 0);
    const auto top = number("MarginTop", 0);
    const auto right = number("MarginRight", 0);
    const auto bottom = number("MarginBottom", 0);
    if (left && top && right && bottom) {
        choices.margins = Margins{*left, *top, *right, *bottom};
    }
    if (setup.contains(QStringLiteral("Orientation")) &&
        !read(turnWords, text("Orientation"), choices.turn)) {
        problems += QStringLiteral("the page setup's Orientation is none");
    }
}

} // namespace

QString plainLine(const QString& text, qsizetype longest) {
    QString line = text.left(longest);
    if (!line.isEmpty() && line.back().isHighSurrogate()) {
        line.chop(1);
    }
    std::ranges::replace_if(
        line, [](QChar c) { return !c.isPrint() && !c.isSurrogate(); }, QChar(u' '));
    return line;
}

PrintChoices readChoices(const QVariantMap& settings, const QVariantMap& pageSetup, QStringList& problems) {
    PrintChoices choices;
    if (settings.size() > mostSettings || pageSetup.size() > mostSettings) {
        problems += QStringLiteral("the request has more than %1 settings").arg(mostSettings);
        return choices;
    }
    const auto valueOf = [&](const QString& key) {
        const QVariant value = settings.value(key);
        const QString text = value.typeId() == QMetaType::QString ? value.toString() : QString();
        const bool isValid =
            !text.isEmpty() && text.size() <= longestValue && plainLine(text, longestValue) == text;
        return isValid ? text : QString();
    };
    const auto refuse = [&](const QString& key) {
        problems += QStringLiteral("the setting %1=%2 is not carried")
                        .arg(shortened(key), shortened(settings.value(key).toString()));
    };
    QStringList known;
    for (const Row& row : rows) {
        const QString key = QLatin1String(row.key);
        known += key;
        if (!settings.contains(key)) {
            continue;
        }
        PrintChoices changed = choices;
        const QString text = valueOf(key);
        if (!text.isEmpty() && row.read(changed, text)) {
            choices = changed;
        } else if (!settings.value(key).toString().isEmpty() ||
                   settings.value(key).typeId() != QMetaType::QString) {
            refuse(key);
        }
    }
    if (choices.paper &&
        (choices.paper->millimetres.width() < 1 || choices.paper->millimetres.height() < 1)) {
        choices.paper.reset(); // one edge alone
    }
    for (auto at = settings.begin(); at != settings.end(); ++at) {
        if (!known.contains(at.key())) {
            const QString text = valueOf(at.key());
            if (text.isEmpty() || !readOption(at.key(), text, choices)) {
                refuse(at.key());
            }
        }
    }
    readPageSetup(pageSetup, choices, problems);
    return choices;
}

QVariantMap writeSettings(const PrintChoices& choices, LaidOutBy laidOutBy, const QVariantMap& received) {
    QVariantMap settings;
    for (auto at = received.begin(); at != received.end() && settings.size() < mostSettings; ++at) {
        // What the person left out of the printer's options must not come back.
        if (at.value().typeId() == QMetaType::QString && !at.key().startsWith(optionPrefix)) {
            settings.insert(at.key(), at.value());
        }
    }
    for (const Row& row : rows) {
        if (row.owner == Owner::Program) {
            continue;
        }
        const bool isNeutral = row.owner == Owner::Layout && laidOutBy == LaidOutBy::Server;
        const QString text = isNeutral ? QString(QLatin1String(row.neutral)) : row.write(choices);
        if (text.isEmpty()) {
            settings.remove(QLatin1String(row.key));
        } else {
            settings.insert(QLatin1String(row.key), text);
        }
    }
    for (const char* key : {"default-source", "media-type", "output-bin", "resolution", "quality"}) {
        settings.remove(QLatin1String(key)); // a printer's options by now
    }
    for (const auto& [keyword, choice] : choices.printerOptions) {
        settings.insert(optionPrefix + keyword, choice);
    }
    return settings;
}

QVariantMap writePageSetup(const PrintChoices& choices, const QVariantMap& received) {
    QVariantMap setup;
    for (const char* key : {"PPDName", "Name", "DisplayName", "Width", "Height"}) {
        if (const QVariant kept = received.value(QLatin1String(key)); kept.isValid() && !choices.paper) {
            setup.insert(QLatin1String(key), kept);
        }
    }
    if (choices.paper) {
        if (!choices.paper->ppdName.isEmpty()) {
            setup.insert(QStringLiteral("PPDName"), choices.paper->ppdName);
        }
        setup.insert(QStringLiteral("Name"), writtenPaperName(choices));
        setup.insert(QStringLiteral("DisplayName"), choices.paper->displayName);
        setup.insert(QStringLiteral("Width"), choices.paper->millimetres.width());
        setup.insert(QStringLiteral("Height"), choices.paper->millimetres.height());
    }
    const Margins margins = choices.margins.value_or(Margins{0, 0, 0, 0});
    setup.insert(QStringLiteral("MarginLeft"), margins.left);
    setup.insert(QStringLiteral("MarginTop"), margins.top);
    setup.insert(QStringLiteral("MarginRight"), margins.right);
    setup.insert(QStringLiteral("MarginBottom"), margins.bottom);
    setup.insert(QStringLiteral("Orientation"),
                 written(turnWords, std::optional(choices.turn.value_or(Turn::Portrait))));
    return setup;
}

} // namespace torka::portal
