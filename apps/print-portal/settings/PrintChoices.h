// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QPageRanges>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>
#include <utility>

// Translates between the settings of the print portal and the choices of a print dialog.
//
// The keys and their values are those of org.freedesktop.portal.Print, version 1, and GTK's own beside them
// ("cups-…", "printer", "output-uri"). Knows neither D-Bus nor widgets.

namespace torka::portal {

enum class Pages { All, Ranges, Current, Selection };
enum class PageSet { All, Even, Odd };
enum class Sides { One, LongEdge, ShortEdge };
enum class Turn { Portrait, Landscape, ReversePortrait, ReverseLandscape };

struct Paper {
    QString ppdName;     // main keyword's choice, such as "A4"; "" when unknown
    QString displayName; // for people
    QSizeF millimetres;  // of the upright sheet
};

struct Margins {
    double left, top, right, bottom; // millimetres
};

// What is absent is left to the dialog.
struct PrintChoices {
    QString printer;    // a queue's name, or GTK's name of a file destination
    QString outputUri;  // of a local file
    QString outputName; // proposed name of the file, without folder and suffix
    std::optional<int> copies;
    std::optional<bool> collate;
    std::optional<bool> reverse;
    std::optional<Pages> pages;
    QPageRanges ranges; // counted from 1
    std::optional<PageSet> pageSet;
    std::optional<Sides> sides;
    std::optional<Turn> turn;
    std::optional<Paper> paper;
    std::optional<Margins> margins;
    std::optional<int> pagesPerSheet;
    QString pagesPerSheetOrder; // CUPS "number-up-layout"
    std::optional<bool> color;
    std::optional<double> scale;                       // percent; the program applies it
    QList<std::pair<QString, QString>> printerOptions; // keyword and choice of the queue's description
};

// Reads what a program sends. A value of a wrong type, form or range counts as absent, and a sentence for the
// log names it. So does a key that is not carried.
PrintChoices readChoices(const QVariantMap& settings, const QVariantMap& pageSetup, QStringList& problems);

// Who lays out the pages: the program that draws them, or the print server.
enum class LaidOutBy { Program, Server };

// The settings that the program gets. GTK applies to its document whatever they say. For LaidOutBy::Server
// they therefore give copies, order and pages per sheet as neutral, since the job's options hold the person's
// choice. The selection of pages and the scale are always the program's, which alone knows the document.
// Keeps the keys of `received` that the choices do not replace.
QVariantMap writeSettings(const PrintChoices& choices, LaidOutBy laidOutBy, const QVariantMap& received);

QVariantMap writePageSetup(const PrintChoices& choices, const QVariantMap& received);

// The text without control characters, cut at `longest` characters.
QString plainLine(const QString& text, qsizetype longest);

} // namespace torka::portal
