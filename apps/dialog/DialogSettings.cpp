// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/DialogSettings.h"

#include "output/PagesPerSheet.h"

#include <QPageRanges>
#include <QPrintEngine>
#include <QStringList>
#include <algorithm>
#include <array>
#include <string_view>

namespace torka::dialog {

namespace {

// The property in which Qt's CUPS plug-in keeps the options of the dialog's own tabs: a list of alternating
// names and values.
constexpr auto jobOptionsProperty = static_cast<QPrintEngine::PrintEnginePropertyKey>(0xfe00);

constexpr std::array<std::string_view, 8> standardOptions{"number-up",      "number-up-layout", "page-set",
                                                          "job-hold-until", "job-priority",     "job-sheets",
                                                          "job-billing",    "outputorder"};

QString serverOption(const QPrinter& printer, QStringView name) {
    const QStringList options = engineOptions(printer);
    for (qsizetype at = 0; at + 1 < options.size(); at += 2) {
        if (options[at] == name) {
            return options[at + 1];
        }
    }
    return {};
}

void set(PrintSettings& settings, const char* key, const CFTypeRef& value) {
    settings.SetValue(cfString(key), value, false);
}

CFDictionaryRef paperInfo(const QPrinter& printer) {
    const QPageSize size = printer.pageLayout().pageSize();
    // A size of the description carries its keyword. A size that the person entered carries no keyword, or
    // one that Qt made up ("Custom.…").
    const bool isCustom = size.key().isEmpty() || size.key().startsWith(QLatin1String("Custom."));
    const CFStringRef name = cfString((isCustom ? size.name() : size.key()).toStdString());
    constexpr double millimetre = 72 / 25.4; // points; Qt gives points as whole numbers
    const QSizeF points =
        isCustom ? size.size(QPageSize::Millimeter) * millimetre : size.size(QPageSize::Point);
    std::vector<CFTypeRef> rectangle;
    for (const double edge : {0.0, 0.0, points.height(), points.width()}) { // top, left, bottom, right
        rectangle.push_back(CFNumberCreate(edge));
    }
    std::vector<CFDictionary::Pair> pairs{
        {cfString("com.apple.print.PaperInfo.PMPaperName"), name},
        {cfString("com.apple.print.PaperInfo.PMCustomPaper"), CFBooleanCreate(isCustom)},
        {cfString("com.apple.print.PaperInfo.PMUnadjustedPaperRect"), CFArrayCreate(std::move(rectangle))}};
    pairs.emplace_back(cfString("com.apple.print.PaperInfo.ppd.PMPaperName"), name);
    return CFDictionaryCreate(pairs);
}

std::string sidesOf(QPrinter::DuplexMode mode, bool isLandscape) {
    switch (mode) {
    case QPrinter::DuplexLongSide:
        return "two-sided-long-edge";
    case QPrinter::DuplexShortSide:
        return "two-sided-short-edge";
    case QPrinter::DuplexAuto:
        return isLandscape ? "two-sided-short-edge" : "two-sided-long-edge";
    case QPrinter::DuplexNone:
        break;
    }
    return {};
}

} // namespace

QStringList engineOptions(const QPrinter& printer) {
    // printEngine() is not const, because its callers may also set properties. This one only reads.
    QPrintEngine* engine = printer.printEngine();
    return engine == nullptr ? QStringList() : engine->property(jobOptionsProperty).toStringList();
}

bool setEngineOptions(QPrinter& printer, const QStringList& options) {
    QPrintEngine* engine = printer.printEngine();
    if (engine == nullptr) {
        return false;
    }
    engine->setProperty(jobOptionsProperty, options);
    return engineOptions(printer) == options;
}

void setEngineOption(QPrinter& printer, const QString& name, const QString& value) {
    QStringList options;
    const QStringList before = engineOptions(printer);
    for (qsizetype at = 0; at + 1 < before.size(); at += 2) {
        if (before[at] != name) {
            options << before[at] << before[at + 1];
        }
    }
    if (!value.isEmpty()) {
        options << name << value;
    }
    setEngineOptions(printer, options);
}

QStringList guestJobOptions(const QStringList& program, const QPrinter& accepted,
                            const DescribedOptions& decidedByPane) {
    constexpr std::array laidOut{"number-up", "number-up-layout", "orientation-requested"};
    QStringList options;
    const auto take = [&](const QStringList& from, bool layout) {
        for (qsizetype at = 0; at + 1 < from.size(); at += 2) {
            const std::string name = from[at].toStdString();
            const bool isLayout = std::ranges::find(laidOut, name) != laidOut.end();
            // The own dialog has the ranges from its QPrinter.
            const bool isStandard =
                name == "page-ranges" || std::ranges::find(standardOptions, name) != standardOptions.end();
            if (isLayout == layout && (isLayout || isStandard) &&
                !(decidedByPane.pagesPerSheet && name.starts_with("number-up"))) {
                options << from[at] << from[at + 1];
            }
        }
    };
    take(program, false);
    take(engineOptions(accepted), true);
    return options;
}

std::uint16_t QtPageFormat::Orientation() const {
    const QString turned = serverOption(printer, u"orientation-requested"); // RFC 8011, 5.2.10
    if (turned == QLatin1String("5")) {
        return kPMReverseLandscape;
    }
    if (turned == QLatin1String("6")) {
        return kPMReversePortrait;
    }
    return printer.pageLayout().orientation() == QPageLayout::Landscape ? kPMLandscape : kPMPortrait;
}

DialogCallback::DialogCallback(const QPrinter& qtPrinter, std::shared_ptr<DialogPrintSettings> dialogSettings,
                               const std::string& queue)
    : session(std::make_shared<CupsSession>(queue))
    , settings(std::move(dialogSettings))
    , format(std::make_shared<QtPageFormat>(qtPrinter)) {}

std::shared_ptr<Printer> DialogCallback::PMPrinter() const {
    platform::PMPrinter current;
    PMSessionGetCurrentPrinter(session, current);
    return current;
}

OSStatus DialogPrintSettings::SetCopies(std::uint32_t copies) {
    const OSStatus status = kept.SetCopies(copies);
    if (status == noErr && whenCopiesChange) {
        whenCopiesChange(static_cast<int>(copies));
    }
    return status;
}

void DialogPrintSettings::TakeCopies(int copies) {
    kept.SetCopies(static_cast<std::uint32_t>(std::max(1, copies)));
}

void takeOverDialogSettings(const QPrinter& printer, const DescribedOptions& decidedByPane,
                            const std::string& jobName, DialogPrintSettings& settings) {
    set(settings, "com.apple.print.subTicket.paper_info_ticket", paperInfo(printer));
    set(settings, "com.apple.print.PrintSettings.PMCopyCollate", CFBooleanCreate(printer.collateCopies()));
    const int pages = decidedByPane.pagesPerSheet ? 1 : serverOption(printer, u"number-up").toInt();
    if (!setPagesPerSheet(settings, pages)) {
        setPagesPerSheet(settings, 1);
    }
    set(settings, "com.apple.print.JobInfo.PMJobName", cfString(jobName));
    settings.TakeCopies(printer.copyCount());
}

JobOptions standardJobOptions(const QPrinter& printer, const DescribedOptions& decidedByPane, bool hasPane) {
    JobOptions options;
    options.emplace_back("copies", std::to_string(std::max(1, printer.copyCount())));
    if (printer.copyCount() > 1) {
        options.emplace_back("collate", printer.collateCopies() ? "true" : "false");
    }
    const QPageLayout layout = printer.pageLayout();
    if (const std::string size = layout.pageSize().key().toStdString(); !size.empty()) {
        options.emplace_back("PageSize", size);
    }
    const bool isLandscape = layout.orientation() == QPageLayout::Landscape;
    if (isLandscape) {
        options.emplace_back("orientation-requested", "4");
    }
    if (const std::string sides = sidesOf(printer.duplex(), isLandscape);
        !decidedByPane.sides && !sides.empty()) {
        options.emplace_back("sides", sides);
    }
    if (const QPageRanges ranges = printer.pageRanges(); !ranges.isEmpty()) {
        options.emplace_back("page-ranges", ranges.toString().remove(QLatin1Char(' ')).toStdString());
    }
    if (printer.pageOrder() == QPrinter::LastPageFirst) {
        options.emplace_back("outputorder", "reverse");
    }
    const QStringList chosen = engineOptions(printer);
    for (qsizetype at = 0; at + 1 < chosen.size(); at += 2) {
        const std::string name = chosen[at].toStdString();
        const bool isStandard = std::ranges::find(standardOptions, name) != standardOptions.end();
        if ((isStandard || !hasPane) && !chosen[at + 1].isEmpty() &&
            !(decidedByPane.pagesPerSheet && name.starts_with("number-up"))) {
            options.emplace_back(name, chosen[at + 1].toStdString());
        }
    }
    // PWG 5100.13, "print-color-mode". A description with a colour model has its own choice among the
    // properties.
    if (!hasPane && printer.colorMode() == QPrinter::GrayScale &&
        std::ranges::find(options, "ColorModel", &JobOptions::value_type::first) == options.end()) {
        options.emplace_back("print-color-mode", "monochrome");
    }
    return options;
}

} // namespace torka::dialog
