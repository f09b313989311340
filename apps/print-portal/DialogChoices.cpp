// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/DialogChoices.h"

#include "apps/print-portal/settings/DescribedChoices.h"
#include "platform/Spooler.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStandardPaths>
#include <QUrl>
#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace torka::portal {

namespace {

// GTK's name of its file destination. GTK translates it in its own dialog, and keeps ours as it is.
constexpr QLatin1String printToFile("Print to File");

using dialog::sheetOrders;

QComboBox* box(const QWidget& in, const char* name) { return in.findChild<QComboBox*>(QLatin1String(name)); }

void choose(QComboBox& field, int index) {
    field.setCurrentIndex(index);
    Q_EMIT field.activated(index); // Qt's properties follow what a person does
}

// The list in the row with this label; Qt puts a warning beside it. Null when no row has the label.
QComboBox* fieldOf(const QFormLayout& form, const QString& text) {
    for (int row = 0; row < form.rowCount(); ++row) {
        QLayoutItem* label = form.itemAt(row, QFormLayout::LabelRole);
        QLayoutItem* field = form.itemAt(row, QFormLayout::FieldRole);
        const auto* name = label == nullptr ? nullptr : qobject_cast<QLabel*>(label->widget());
        if (name != nullptr && name->text() == text && field != nullptr && field->widget() != nullptr) {
            return field->widget()->findChild<QComboBox*>();
        }
    }
    return nullptr;
}

bool isFile(const dialog::PrintDialog& dialog) { return dialog.queue().empty(); }

// The size of the queue that has these edges, whatever its name.
QPageSize sizeOf(const Paper& paper) {
    const QPageSize named(paper.millimetres, QPageSize::Millimeter, paper.displayName, QPageSize::FuzzyMatch);
    return named.isValid() ? named : QPageSize(QPageSize::A4);
}

void presetPages(dialog::PrintDialog& dialog, const PrintChoices& choices) {
    const auto check = [&](const char* name) {
        if (auto* button = dialog.findChild<QRadioButton*>(QLatin1String(name))) {
            button->setChecked(button->isEnabled());
        }
    };
    switch (choices.pages.value_or(Pages::All)) {
    case Pages::All:
        break;
    case Pages::Current:
        check("printCurrentPage");
        break;
    case Pages::Selection:
        check("printSelection");
        break;
    case Pages::Ranges:
        if (auto* line = dialog.findChild<QLineEdit*>(QStringLiteral("pagesLineEdit"));
            line != nullptr && !choices.ranges.isEmpty()) {
            check("pagesRadioButton");
            line->setText(choices.ranges.toString());
        }
        break;
    }
    if (QComboBox* sets = box(dialog, "pageSetCombo"); sets != nullptr && choices.pageSet) {
        constexpr std::array order{PageSet::All, PageSet::Odd, PageSet::Even};
        sets->setCurrentIndex(static_cast<int>(std::ranges::find(order, *choices.pageSet) - order.begin()));
    }
}

// The file that the dialog proposes. A program in a sandbox chooses the file's name only: the person may not
// see that a folder is a strange one.
QString proposedFile(const PrintChoices& choices, bool mayWriteAnywhere) {
    const QUrl uri(choices.outputUri, QUrl::StrictMode);
    const QFileInfo given(uri.isLocalFile() ? uri.toLocalFile() : QString());
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (mayWriteAnywhere && given.isAbsolute() && given.dir().exists()) {
        folder = given.absolutePath();
    } else if (!QDir(folder).exists()) {
        folder = QDir::homePath();
    }
    QString name = choices.outputName.isEmpty() ? given.completeBaseName() : choices.outputName;
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    while (name.startsWith(QLatin1Char('.'))) {
        name.remove(0, 1); // no hidden file
    }
    if (name.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) {
        name.chop(4);
    }
    if (name.isEmpty()) {
        name = QStringLiteral("output");
    }
    // GTK proposes the document's own name, which a person must not overwrite by accident.
    constexpr int mostNames = 1000;
    QString file = QDir(folder).filePath(name + QStringLiteral(".pdf"));
    for (int number = 2; QFileInfo::exists(file) && number < mostNames; ++number) {
        file = QDir(folder).filePath(QStringLiteral("%1-%2.pdf").arg(name).arg(number));
    }
    return file;
}

} // namespace

bool asksForFile(const PrintChoices& choices) { return choices.printer == printToFile; }

void presetPrinter(QPrinter& printer, const PrintChoices& choices) {
    printer.setCopyCount(choices.copies.value_or(1));
    printer.setCollateCopies(choices.collate.value_or(true));
    printer.setPageOrder(choices.reverse.value_or(false) ? QPrinter::LastPageFirst
                                                         : QPrinter::FirstPageFirst);
    if (choices.color) {
        printer.setColorMode(*choices.color ? QPrinter::Color : QPrinter::GrayScale);
    }
    if (choices.sides) {
        printer.setDuplex(*choices.sides == Sides::LongEdge    ? QPrinter::DuplexLongSide
                          : *choices.sides == Sides::ShortEdge ? QPrinter::DuplexShortSide
                                                               : QPrinter::DuplexNone);
    }
}

void offerPagesForFiles(dialog::PrintDialog& dialog) {
    QComboBox* printers = box(dialog, "printers");
    if (printers == nullptr) {
        return;
    }
    const auto offer = [&dialog] {
        for (const char* name : {"pagesRadioButton", "pageSetCombo", "pageSetLabel"}) {
            if (auto* field = dialog.findChild<QWidget*>(QLatin1String(name));
                field != nullptr && isFile(dialog)) {
                field->setEnabled(true);
            }
        }
    };
    QObject::connect(printers, &QComboBox::currentIndexChanged, &dialog, offer, Qt::QueuedConnection);
    offer();
}

QDoubleSpinBox* addScale(dialog::PrintDialog& dialog, const PrintChoices& choices) {
    auto* scale = new QDoubleSpinBox(&dialog);
    scale->setObjectName(QStringLiteral("scale"));
    scale->setRange(1, 1000);
    scale->setDecimals(1);
    scale->setSuffix(QCoreApplication::translate("torka", " %"));
    scale->setValue(choices.scale.value_or(100));
    auto* label = new QLabel(QCoreApplication::translate("torka", "Sc&ale:"), &dialog);
    label->setBuddy(scale);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(scale);
    row->addStretch(1);
    const auto* collate = dialog.findChild<QWidget*>(QStringLiteral("collate"));
    QLayout* rows = collate == nullptr ? nullptr : collate->parentWidget()->layout();
    if (auto* grid = qobject_cast<QGridLayout*>(rows)) {
        grid->addLayout(row, grid->rowCount(), 0, 1, -1, Qt::AlignTop);
    } else if (auto* column = qobject_cast<QBoxLayout*>(rows)) {
        column->addLayout(row);
    } else {
        label->hide(); // the scale stays as the program gave it
        scale->hide();
    }
    return scale;
}

void presetDialog(dialog::PrintDialog& dialog, const PrintChoices& choices, bool mayWriteAnywhere) {
    QComboBox* printers = box(dialog, "printers");
    const bool isListed = !choices.printer.isEmpty() && dialog.chooseQueue(choices.printer.toStdString());
    auto* file = dialog.findChild<QLineEdit*>(QStringLiteral("filename"));
    if (file != nullptr) {
        file->setText(proposedFile(choices, mayWriteAnywhere));
    }
    if (!isListed && printers != nullptr && asksForFile(choices)) {
        printers->setCurrentIndex(printers->count() - 1); // Qt's file destination
    }
    if (choices.paper || choices.turn) {
        const bool isLandscape = choices.turn == Turn::Landscape || choices.turn == Turn::ReverseLandscape;
        dialog.setPage(choices.paper ? sizeOf(*choices.paper) : QPageSize(),
                       isLandscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    }
    presetPages(dialog, choices);
}

PropertyPresets::PropertyPresets(dialog::PrintDialog& printDialog, const PrintChoices& programChoices)
    : QObject(&printDialog)
    , dialog(printDialog)
    , choices(programChoices) {
    if (QComboBox* printers = box(dialog, "printers")) {
        connect(printers, &QComboBox::currentIndexChanged, this, [this] { isFilled = false; });
    }
    QCoreApplication::instance()->installEventFilter(this);
}

bool PropertyPresets::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        auto* shown = qobject_cast<QDialog*>(watched);
        if (shown != nullptr && dialog.findChildren<QDialog*>().contains(shown) &&
            shown->findChild<QWidget*>(QStringLiteral("pageSetup")) != nullptr && !isFilled) {
            isFilled = true;
            Fill(*shown);
            // Qt takes back what cancelled properties showed, our choices included.
            connect(shown, &QDialog::rejected, this, [this] { isFilled = isAccepted && isFilled; });
            isAccepted = false;
            connect(shown, &QDialog::accepted, this, [this] { isAccepted = true; });
        }
    }
    return QObject::eventFilter(watched, event);
}

void PropertyPresets::Fill(const QDialog& properties) {
    if (QComboBox* sizes = box(properties, "pageSizeCombo")) {
        const QPageSize present = dialog.printer()->pageLayout().pageSize();
        for (int i = 0; i < sizes->count(); ++i) {
            if (sizes->itemData(i).value<QPageSize>().isEquivalentTo(present)) {
                choose(*sizes, i);
                break;
            }
        }
    }
    QComboBox* counts = box(properties, "pagesPerSheetCombo");
    if (counts != nullptr && choices.pagesPerSheet) {
        const int at =
            counts->findText(QString::number(*choices.pagesPerSheet) + QLatin1Char(' '), Qt::MatchStartsWith);
        choose(*counts, std::max(at, 0));
    }
    const auto order = std::ranges::find(sheetOrders, choices.pagesPerSheetOrder.toStdString());
    QComboBox* layouts = box(properties, "pagesPerSheetLayoutCombo");
    for (int i = 0; layouts != nullptr && order != sheetOrders.end() && i < layouts->count(); ++i) {
        if (layouts->itemData(i).toInt() == order - sheetOrders.begin()) {
            choose(*layouts, i);
        }
    }
    if (auto* group = properties.findChild<QWidget*>(QStringLiteral("pagesPerSheetButtonGroup"));
        group != nullptr && isFile(dialog)) {
        group->show();
    }
    FillOptions(properties);
}

void PropertyPresets::FillOptions(const QDialog& properties) {
    auto* page = properties.findChild<QWidget*>(QStringLiteral("cupsPropertiesPage"));
    if (page == nullptr || dialog.tab().hasPanel()) {
        return;
    }
    const auto described = describedChoices(platform::spooler().FetchPPD(dialog.queue()));
    const QList<QFormLayout*> forms = page->findChildren<QFormLayout*>();
    for (const auto& [keyword, choice] : choices.printerOptions) {
        const auto option = described.find(keyword);
        if (option == described.end()) {
            continue;
        }
        const auto index = static_cast<int>(option->second.choices.indexOf(choice));
        for (const QFormLayout* form : forms) {
            QComboBox* list = fieldOf(*form, option->second.text);
            if (list != nullptr && index >= 0 && index < list->count()) {
                choose(*list, index);
            }
        }
    }
}

void PropertyPresets::TakePagesPerSheet(PrintChoices& chosen) const {
    const QComboBox* counts = box(dialog, "pagesPerSheetCombo");
    const QComboBox* layouts = box(dialog, "pagesPerSheetLayoutCombo");
    if (!isFile(dialog)) {
        return;
    }
    chosen.pagesPerSheet = choices.pagesPerSheet;
    chosen.pagesPerSheetOrder = choices.pagesPerSheetOrder;
    if (isFilled && counts != nullptr && layouts != nullptr) {
        chosen.pagesPerSheet = counts->currentText().section(QLatin1Char(' '), 0, 0).toInt();
        const auto order = static_cast<std::size_t>(layouts->currentData().toInt());
        chosen.pagesPerSheetOrder = QLatin1String(sheetOrders.at(order < sheetOrders.size() ? order : 0));
    }
}

void PropertyPresets::Complete(platform::JobOptions& options, QStringList& problems) const {
    const dialog::DescribedOptions& decided = dialog.tab().decidedByPane();
    if (choices.sides.value_or(Sides::One) != Sides::One && decided.sides) {
        problems += QStringLiteral("the pane decides the sides, not the program");
    }
    if (choices.pagesPerSheet.value_or(1) > 1 && decided.pagesPerSheet) {
        problems += QStringLiteral("the pane decides the pages per sheet, not the program");
    }
    if (choices.paper && !isFile(dialog) && dialog.lacksWishedSize()) {
        problems += QStringLiteral("the queue has no paper %1, but %2")
                        .arg(sizeOf(*choices.paper).name(), dialog.printer()->pageLayout().pageSize().name());
    }
    if (isFile(dialog) || isFilled) {
        return;
    }
    const auto set = [&](const std::string& name, const std::string& value) {
        std::erase_if(options, [&](const auto& option) { return option.first == name; });
        options.emplace_back(name, value);
    };
    if (choices.pagesPerSheet && *choices.pagesPerSheet > 1 && !decided.pagesPerSheet) {
        set("number-up", std::to_string(*choices.pagesPerSheet));
        if (!choices.pagesPerSheetOrder.isEmpty()) {
            set("number-up-layout", choices.pagesPerSheetOrder.toStdString());
        }
    }
    if (dialog.tab().hasPanel()) {
        for (const auto& [keyword, choice] : choices.printerOptions) {
            problems += QStringLiteral("the pane decides %1, not the program's %2").arg(keyword, choice);
        }
        return;
    }
    const auto described = describedChoices(platform::spooler().FetchPPD(dialog.queue()));
    for (const auto& [keyword, choice] : choices.printerOptions) {
        const auto option = described.find(keyword);
        if (keyword == QLatin1String("print-quality") ||
            (option != described.end() && option->second.choices.contains(choice) && !isOfDialog(keyword))) {
            set(keyword.toStdString(), choice.toStdString());
        } else if (!isOfDialog(keyword)) {
            problems += QStringLiteral("the queue has no choice %1=%2").arg(keyword, choice);
        }
    }
}

namespace {

QString optionOf(const platform::JobOptions& options, std::string_view name) {
    const auto found = std::ranges::find(options, name, &platform::JobOptions::value_type::first);
    return found == options.end() ? QString() : QString::fromStdString(found->second);
}

void takePages(dialog::PrintDialog& dialog, PrintChoices& chosen) {
    const QPrinter& printer = *dialog.printer();
    switch (printer.printRange()) {
    case QPrinter::AllPages:
        chosen.pages = Pages::All;
        break;
    case QPrinter::Selection:
        chosen.pages = Pages::Selection;
        break;
    case QPrinter::CurrentPage:
        chosen.pages = Pages::Current;
        break;
    case QPrinter::PageRange:
        chosen.pages = Pages::Ranges;
        break;
    }
    chosen.ranges = printer.pageRanges();
    if (chosen.pages == Pages::Ranges && chosen.ranges.isEmpty()) {
        chosen.pages = Pages::All;
    }
    chosen.pageSet = PageSet::All;
    if (const QComboBox* sets = box(dialog, "pageSetCombo"); sets != nullptr && sets->isEnabled()) {
        // The option among the job's is exchanged for ranges that begin at an even page.
        chosen.pageSet = sets->currentIndex() == 1   ? PageSet::Odd
                         : sets->currentIndex() == 2 ? PageSet::Even
                                                     : PageSet::All;
    }
}

// GTK counts even and odd among the chosen pages, a person among the document's. The single pages say it for
// both.
void spellOutPageSet(PrintChoices& chosen) {
    constexpr int mostPages = 2000; // more would make a text that programs cut
    if (chosen.pages != Pages::Ranges || chosen.pageSet.value_or(PageSet::All) == PageSet::All) {
        return;
    }
    const int wanted = chosen.pageSet == PageSet::Even ? 0 : 1;
    QPageRanges single;
    int count = 0;
    const QList<QPageRanges::Range> list = chosen.ranges.toRangeList();
    for (const auto& range : list) {
        for (int page = range.from; page <= range.to; ++page) {
            if (page % 2 == wanted) {
                single.addPage(page);
                if (++count > mostPages) {
                    return;
                }
            }
        }
    }
    if (!single.isEmpty()) {
        chosen.ranges = single;
        chosen.pageSet = PageSet::All;
    }
}

Turn turnOf(const QPrinter& printer, const QString& requested) {
    if (requested == QLatin1String("5")) { // RFC 8011, 5.2.10
        return Turn::ReverseLandscape;
    }
    if (requested == QLatin1String("6")) {
        return Turn::ReversePortrait;
    }
    return printer.pageLayout().orientation() == QPageLayout::Landscape ? Turn::Landscape : Turn::Portrait;
}

} // namespace

PrintChoices chosenIn(dialog::PrintDialog& dialog, const PrintChoices& received,
                      const platform::JobOptions& options) {
    const QPrinter& printer = *dialog.printer();
    PrintChoices chosen;
    chosen.outputUri = received.outputUri;
    chosen.outputName = received.outputName;
    chosen.scale = received.scale;
    chosen.printer = QString::fromStdString(dialog.destination());
    if (isFile(dialog)) {
        chosen.printer = printToFile;
        chosen.outputUri = QUrl::fromLocalFile(printer.outputFileName()).toString(QUrl::FullyEncoded);
    }
    chosen.copies = printer.copyCount();
    chosen.collate = printer.collateCopies();
    chosen.reverse = printer.pageOrder() == QPrinter::LastPageFirst;
    takePages(dialog, chosen);
    spellOutPageSet(chosen);
    if (!dialog.tab().decidedByPane().sides) {
        const QString sides = optionOf(options, "sides");
        chosen.sides = sides == QLatin1String("two-sided-long-edge")    ? Sides::LongEdge
                       : sides == QLatin1String("two-sided-short-edge") ? Sides::ShortEdge
                                                                        : Sides::One;
    }
    chosen.turn = turnOf(printer, optionOf(options, "orientation-requested"));
    // Qt's dialog shows no difference between a page and the same page upside down.
    if ((received.turn == Turn::ReverseLandscape && chosen.turn == Turn::Landscape) ||
        (received.turn == Turn::ReversePortrait && chosen.turn == Turn::Portrait)) {
        chosen.turn = received.turn;
    }
    const QPageSize size = printer.pageLayout().pageSize();
    chosen.paper = Paper{size.key(), size.name(), size.size(QPageSize::Millimeter)};
    const bool isSamePaper =
        received.paper &&
        std::abs(received.paper->millimetres.width() - chosen.paper->millimetres.width()) < 1 &&
        std::abs(received.paper->millimetres.height() - chosen.paper->millimetres.height()) < 1;
    const QMarginsF least = printer.pageLayout().margins(QPageLayout::Millimeter);
    chosen.margins = isSamePaper && received.margins
                         ? received.margins
                         : Margins{least.left(), least.top(), least.right(), least.bottom()};
    if (const QString count = optionOf(options, "number-up"); !count.isEmpty()) {
        chosen.pagesPerSheet = count.toInt();
        chosen.pagesPerSheetOrder = optionOf(options, "number-up-layout");
    }
    if (!dialog.tab().hasPanel()) {
        chosen.color = optionOf(options, "print-color-mode") != QLatin1String("monochrome");
        const auto described = describedChoices(platform::spooler().FetchPPD(dialog.queue()));
        for (const auto& [name, value] : options) {
            const QString keyword = QString::fromStdString(name);
            if (described.contains(keyword) && !isOfDialog(keyword)) {
                chosen.printerOptions.emplaceBack(keyword, QString::fromStdString(value));
            }
        }
    }
    return chosen;
}

platform::JobOptions withoutDrawn(platform::JobOptions options) {
    constexpr std::array<std::string_view, 3> drawn{"page-ranges", "page-set", "orientation-requested"};
    std::erase_if(options,
                  [&](const auto& option) { return std::ranges::find(drawn, option.first) != drawn.end(); });
    return options;
}

} // namespace torka::portal
