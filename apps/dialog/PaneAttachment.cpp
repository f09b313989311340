// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/PaneAttachment.h"

#include "apps/dialog/QueueNotice.h"
#include "platform/qt/LetterWidth.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSpinBox>
#include <QStyle>
#include <QTabWidget>

#include <algorithm>
#include <cstdlib>

namespace torka::dialog {

namespace {

QDialog* propertiesOf(const QPrintDialog& dialog) {
    const QList<QDialog*> dialogs = dialog.findChildren<QDialog*>();
    for (QDialog* candidate : dialogs) {
        if (candidate->findChild<QWidget*>(QStringLiteral("pageSetup")) != nullptr) {
            return candidate;
        }
    }
    return nullptr;
}

std::string queueOf(const std::string& destination) { return destination.substr(0, destination.find('/')); }

bool isSameSize(const QPageSize& one, const QPageSize& other) {
    constexpr int tolerance = 2; // points; descriptions round
    const QSize difference = one.sizePoints() - other.sizePoints();
    return std::abs(difference.width()) <= tolerance && std::abs(difference.height()) <= tolerance;
}

bool hasSize(const QPrinterInfo& info, const QPageSize& size) {
    const QList<QPageSize> sizes = info.supportedPageSizes();
    return info.supportsCustomPageSizes() ||
           std::ranges::any_of(sizes, [&size](const QPageSize& each) { return isSameSize(each, size); });
}

bool isSeparator(const QComboBox& list, int at) {
    return list.itemData(at, Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator");
}

} // namespace

PaneAttachment::PaneAttachment(QPrintDialog& printDialog, QPrinter& qtPrinter, const std::string& jobName,
                               WithoutPane look)
    : dialog(printDialog)
    , printer(qtPrinter)
    , paneTab(new PaneTab(printer, jobName))
    , queueNotice(new QLabel(&printDialog))
    , withoutPane(look) {
    dialog.setProperty(panePropertyName, false);
    if (withoutPane == WithoutPane::asWithoutUs) {
        paneTab->stayQuiet();
    }
    dialog.setOptionTabs({paneTab});
    printers = dialog.findChild<QComboBox*>(QStringLiteral("printers"));
    AddQueueNotice();
    FollowOwnTabs();
    connect(paneTab, &PaneTab::copiesChosen, this, [this](int copies) {
        if (auto* field = dialog.findChild<QSpinBox*>(QStringLiteral("copies"))) {
            field->setValue(copies);
        }
    });
}

PaneAttachment::~PaneAttachment() = default;

void PaneAttachment::Begin(PDEPlugIn* plugIn) {
    dialog.setProperty(panePropertyName, true);
    paneTab->usePlugIn(plugIn);
    // QPrintDialog has no signal for a change of printer; its combo box has one.
    if (printers != nullptr) {
        connect(printers, &QComboBox::currentIndexChanged, this, &PaneAttachment::FollowPrinter);
    }
    FollowPrinter();
}

bool PaneAttachment::Understands(const QPrintDialog& dialog) {
    return dialog.findChild<QComboBox*>(QStringLiteral("printers")) != nullptr &&
           dialog.findChild<QPushButton*>(QStringLiteral("properties")) != nullptr &&
           dialog.findChild<QSpinBox*>(QStringLiteral("copies")) != nullptr &&
           dialog.findChild<QCheckBox*>(QStringLiteral("collate")) != nullptr &&
           dialog.findChild<QWidget*>(QStringLiteral("optionsTab")) != nullptr;
}

std::string PaneAttachment::Destination() const {
    if (printers == nullptr) {
        return printer.printerName().toStdString();
    }
    const int last = printers->count() - 1;
    if (printers->currentIndex() == last &&
        (last > 0 ? isSeparator(*printers, last - 1)
                  : QPrinterInfo::printerInfo(printers->currentText()).isNull())) {
        return {}; // Qt's file destination stands behind the queues and a separator
    }
    return printers->currentText().toStdString();
}

std::string PaneAttachment::Queue() const { return queueOf(Destination()); }

bool PaneAttachment::ChooseQueue(const std::string& name) {
    const int at =
        printers == nullptr ? -1 : printers->findText(QString::fromStdString(name), Qt::MatchExactly);
    if (at >= 0) {
        printers->setCurrentIndex(at);
    }
    return at >= 0;
}

// What Qt's properties of this printer begin with: they write it when the person accepts the dialog, even if
// nobody has opened them.
void PaneAttachment::BeginLayout() {
    const QPrinterInfo info = QPrinterInfo::printerInfo(QString::fromStdString(followed));
    const QPageLayout::Orientation orientation = dialog.printer()->pageLayout().orientation();
    if (!info.isNull() && printer.printerName() != info.printerName()) {
        printer.setPrinterName(info.printerName()); // the page sizes of this queue
    }
    if (const QPageSize size = info.defaultPageSize(); !info.isNull() && size.isValid()) {
        printer.setPageSize(size);
    }
    if (wishedSize.isValid() && (followed.empty() || hasSize(info, wishedSize))) {
        printer.setPageSize(wishedSize);
    }
    printer.setPageOrientation(orientation);
    for (const char* name : {"number-up", "number-up-layout", "orientation-requested"}) {
        setEngineOption(printer, QLatin1String(name), QString());
    }
    acceptedLayout = printer.pageLayout();
}

// The queue whose pane is shown. A pane would replace the settings that an instance adds. In the print dialog
// of another program nobody could tell the person so: an instance has no pane there.
std::string PaneAttachment::PaneQueue(const std::string& destination) const {
    const bool isInstance = destination.find('/') != std::string::npos;
    return isInstance && withoutPane == WithoutPane::asWithoutUs ? std::string() : queueOf(destination);
}

void PaneAttachment::FollowPrinter() {
    const std::string destination = Destination();
    // Another instance of the queue has the same panel.
    const bool keepsPanel = paneTab->hasPanel() && PaneQueue(destination) == PaneQueue(followed);
    // A dialog that is shown again still has its properties.
    if (destination != followed || propertiesOf(dialog) == nullptr) {
        followed = destination;
        BeginLayout();
    }
    paneTab->setQueue(PaneQueue(destination));
    if (keepsPanel) {
        paneTab->dialogSettingsChanged();
    }
    HideWhatThePaneDecides();
    HideEmptyLocation();
    ShowQueueNotice();
    ShowTab();
}

void PaneAttachment::ShowTab() {
    const QList<QTabWidget*> tabWidgets = dialog.findChildren<QTabWidget*>();
    for (QTabWidget* tabs : tabWidgets) {
        if (const int at = tabs->indexOf(paneTab); at >= 0) {
            tabs->setTabText(at, paneTab->windowTitle());
            tabs->setTabVisible(at, withoutPane == WithoutPane::explained || paneTab->hasPanel());
        }
    }
}

void PaneAttachment::Close() {
    queueTimer.stop();
    paneTab->dialogWillClose();
    paneTab->dropPanel();
}

void PaneAttachment::Reopen() { FollowPrinter(); }

// The line stands above the buttons, where the person looks before printing.
void PaneAttachment::AddQueueNotice() {
    queueNotice->setObjectName(QStringLiteral("queueNotice"));
    queueNotice->setTextFormat(Qt::PlainText);
    queueNotice->setWordWrap(true);
    queueNotice->hide();
    auto* rows = qobject_cast<QBoxLayout*>(dialog.layout());
    if (rows != nullptr) {
        rows->insertWidget(std::max(rows->indexOf(dialog.findChild<QDialogButtonBox*>()), 0), queueNotice);
    }
    connect(&queueTimer, &QTimer::timeout, this, [this] {
        if (dialog.isVisible()) {
            ShowQueueNotice();
        }
    });
}

void PaneAttachment::ShowQueueNotice() {
    constexpr int queueAskInterval = 3000; // milliseconds
    const bool asks = withoutPane == WithoutPane::explained || paneTab->hasPanel();
    const std::string name = asks ? Queue() : std::string();
    const CFDictionaryRef state = name.empty() ? nullptr : queueState(name);
    if (state) {
        queueTimer.start(queueAskInterval);
    } else {
        queueTimer.stop(); // each question to a server that is gone would block the dialog
    }
    const QString text = torka::dialog::queueNotice(name, state);
    queueNotice->setText(text);
    queueNotice->setHidden(text.isEmpty());
}

void PaneAttachment::FollowOwnTabs() {
    if (auto* copies = dialog.findChild<QSpinBox*>(QStringLiteral("copies"))) {
        connect(copies, &QSpinBox::valueChanged, this, [this](int number) {
            // Qt writes it only when the person accepts the dialog.
            printer.setCopyCount(number);
            paneTab->copiesChanged();
        });
    }
    if (auto* collate = dialog.findChild<QCheckBox*>(QStringLiteral("collate"))) {
        connect(collate, &QCheckBox::toggled, this, [this](bool on) {
            printer.setCollateCopies(on);
            paneTab->dialogSettingsChanged();
        });
    }
    // Qt connected its own slot first; that slot runs the properties dialog to its end before this one runs.
    if (auto* properties = dialog.findChild<QPushButton*>(QStringLiteral("properties"))) {
        connect(properties, &QPushButton::clicked, this, &PaneAttachment::TakeProperties);
    }
    // Qt makes the properties dialog when it is first needed and replaces it with each printer. Only the
    // application sees the display of every one.
    QCoreApplication::instance()->installEventFilter(this);
}

bool PaneAttachment::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        auto* shown = qobject_cast<QDialog*>(watched);
        if (shown != nullptr && shown == propertiesOf(dialog)) {
            HideWhatThePaneDecides(*shown);
        }
    }
    return QObject::eventFilter(watched, event);
}

namespace {

bool isChosen(const QDialog& properties, const char* name) {
    const auto* button = properties.findChild<QRadioButton*>(QLatin1String(name));
    return button != nullptr && button->isChecked();
}

bool showsLandscape(const QDialog& properties) {
    return isChosen(properties, "landscape") || isChosen(properties, "reverseLandscape");
}

// The page size that the properties show. The entry for a size that the person types carries none.
QPageSize shownPageSize(const QDialog& properties) {
    const auto* sizes = properties.findChild<QComboBox*>(QStringLiteral("pageSizeCombo"));
    if (sizes == nullptr || sizes->currentData().value<QPageSize>().isValid()) {
        return sizes == nullptr ? QPageSize() : sizes->currentData().value<QPageSize>();
    }
    const auto* width = properties.findChild<QDoubleSpinBox*>(QStringLiteral("pageWidth"));
    const auto* height = properties.findChild<QDoubleSpinBox*>(QStringLiteral("pageHeight"));
    const auto* units = properties.findChild<QComboBox*>(QStringLiteral("unitCombo"));
    if (width == nullptr || height == nullptr || units == nullptr) {
        return {};
    }
    const QSizeF edges(width->value(), height->value()); // as the sheet lies
    // The two enumerations of units are the same.
    const auto unit = static_cast<QPageSize::Unit>(units->currentData().value<QPageLayout::Unit>());
    return QPageSize(showsLandscape(properties) ? edges.transposed() : edges, unit);
}

// "4" for the entry "4 (2 x 2)"; "" for a single page.
QString shownPagesPerSheet(const QDialog& properties) {
    const auto* layouts = properties.findChild<QComboBox*>(QStringLiteral("pagesPerSheetCombo"));
    const int pages = layouts == nullptr ? 1 : layouts->currentText().section(QLatin1Char(' '), 0, 0).toInt();
    return pages > 1 ? QString::number(pages) : QString();
}

QString shownSheetOrder(const QDialog& properties) {
    const auto* orders = properties.findChild<QComboBox*>(QStringLiteral("pagesPerSheetLayoutCombo"));
    const auto at = static_cast<std::size_t>(orders == nullptr ? 0 : orders->currentData().toInt());
    return QLatin1String(sheetOrders.at(at < sheetOrders.size() ? at : 0));
}

} // namespace

// Accepted properties count at once; Qt writes them to the QPrinter only when the person accepts the dialog.
void PaneAttachment::TakeProperties() {
    const QDialog* properties = propertiesOf(dialog);
    if (properties == nullptr || properties->result() != QDialog::Accepted) {
        return;
    }
    if (const QPageSize size = shownPageSize(*properties); size.isValid()) {
        wishedSize = size.isEquivalentTo(wishedSize) ? wishedSize : QPageSize();
        printer.setPageSize(size);
    }
    printer.setPageOrientation(showsLandscape(*properties) ? QPageLayout::Landscape : QPageLayout::Portrait);
    // RFC 8011, 5.2.10
    const bool isReverse =
        isChosen(*properties, "reverseLandscape") || isChosen(*properties, "reversePortrait");
    setEngineOption(printer, QStringLiteral("orientation-requested"),
                    !isReverse                    ? QString()
                    : showsLandscape(*properties) ? QStringLiteral("5")
                                                  : QStringLiteral("6"));
    if (!paneTab->decidedByPane().pagesPerSheet) {
        const QString pages = shownPagesPerSheet(*properties);
        setEngineOption(printer, QStringLiteral("number-up"), pages);
        setEngineOption(printer, QStringLiteral("number-up-layout"),
                        pages.isEmpty() ? QString() : shownSheetOrder(*properties));
    }
    acceptedLayout = printer.pageLayout();
    paneTab->dialogSettingsChanged();
}

// A low screen has no line to spare.
void PaneAttachment::HideEmptyLocation() {
    auto* location = dialog.findChild<QLabel*>(QStringLiteral("location"));
    const auto* rows =
        location == nullptr ? nullptr : qobject_cast<QGridLayout*>(location->parentWidget()->layout());
    const int at = rows == nullptr ? -1 : rows->indexOf(location);
    if (at < 0) {
        return;
    }
    int row = 0;
    int column = 0;
    int span = 0;
    rows->getItemPosition(at, &row, &column, &span, &span);
    const QLayoutItem* first = rows->itemAtPosition(row, 0);
    if (column > 0 && first != nullptr && qobject_cast<QLabel*>(first->widget()) != nullptr) {
        const bool isOurs = withoutPane == WithoutPane::explained || paneTab->hasPanel();
        first->widget()->setHidden(isOurs && location->text().isEmpty());
        location->setHidden(isOurs && location->text().isEmpty());
    }
}

// The colour mode of Qt reaches no queue; where there is a pane, the pane decides it.
void PaneAttachment::HideWhatThePaneDecides() {
    if (!paneTab->hasPanel() && !hidesOwnFields) {
        return; // what Qt or the program has hidden stays so
    }
    hidesOwnFields = paneTab->hasPanel();
    auto* color = dialog.findChild<QGroupBox*>(QStringLiteral("colorMode"));
    auto* sides = dialog.findChild<QGroupBox*>(QStringLiteral("duplex"));
    auto* page = dialog.findChild<QWidget*>(QStringLiteral("optionsTab"));
    if (color == nullptr || sides == nullptr || page == nullptr) {
        return;
    }
    color->setHidden(paneTab->hasPanel());
    sides->setHidden(paneTab->decidedByPane().sides);
    const QList<QTabWidget*> tabWidgets = dialog.findChildren<QTabWidget*>();
    for (QTabWidget* tabs : tabWidgets) {
        if (const int at = tabs->indexOf(page); at >= 0) {
            tabs->setTabVisible(at, !(color->isHidden() && sides->isHidden()));
        }
    }
}

void PaneAttachment::HideWhatThePaneDecides(QDialog& properties) const {
    if (!paneTab->hasPanel()) {
        return;
    }
    // The options of the description once more.
    auto* tabs = properties.findChild<QTabWidget*>(QStringLiteral("tabs"));
    auto* options = properties.findChild<QWidget*>(QStringLiteral("cupsPropertiesPage"));
    if (tabs != nullptr && options != nullptr && tabs->indexOf(options) >= 0) {
        tabs->setTabVisible(tabs->indexOf(options), false);
    }
    auto* layout = properties.findChild<QWidget*>(QStringLiteral("pagesPerSheetButtonGroup"));
    if (layout != nullptr && paneTab->decidedByPane().pagesPerSheet) {
        layout->hide();
    }
}

void PaneAttachment::BringPaneToFront() {
    const QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        // "Options >>" opens the tabs. In every language it is the only button with ">>".
        if (button->text().contains(QLatin1String(">>"))) {
            button->click();
            break;
        }
    }
    const QList<QTabWidget*> tabWidgets = dialog.findChildren<QTabWidget*>();
    for (QTabWidget* tabs : tabWidgets) {
        if (const int at = tabs->indexOf(paneTab); at >= 0) {
            tabs->setCurrentIndex(at);
        }
    }
}

void PaneAttachment::ShowPane() {
    BringPaneToFront();
    MakeRoom();
}

void PaneAttachment::MakeRoom() {
    // Qt sizes its dialog for a few radio buttons; the pane and the picture of the job need more space.
    const QFontMetrics metrics = dialog.fontMetrics();
    const QRect available = dialog.screen()->availableGeometry();
    // A tenth of the screen stays free; a low screen has only the height of the title bar to spare.
    constexpr int low = 600; // points
    QSize room = available.size() * 9 / 10;
    if (available.height() <= low) {
        room.setHeight(available.height() - dialog.style()->pixelMetric(QStyle::PM_TitleBarHeight));
    }
    dialog.resize(
        dialog.size().expandedTo({letterWidth(metrics) * 176, metrics.height() * 54}).boundedTo(room));
    if (dialog.isVisible()) {
        QRect frame = dialog.frameGeometry();
        frame.moveRight(std::min(frame.right(), available.right()));
        frame.moveBottom(std::min(frame.bottom(), available.bottom()));
        dialog.move(std::max(frame.left(), available.left()), std::max(frame.top(), available.top()));
    }
}

// After the pane has held a job back: it may have gone to the field that the person has to change.
void PaneAttachment::ShowFieldOfPane() {
    BringPaneToFront();
    if (QWidget* field = paneTab->focusWidget()) {
        field->setFocus(Qt::OtherFocusReason);
    }
}

void PaneAttachment::SetPage(const QPageSize& size, QPageLayout::Orientation orientation) {
    if (size.isValid()) {
        wishedSize = size;
        const std::string destination = Destination();
        // A file takes every size.
        if (destination.empty() ||
            hasSize(QPrinterInfo::printerInfo(QString::fromStdString(destination)), size)) {
            printer.setPageSize(size);
        }
    }
    printer.setPageOrientation(orientation);
    acceptedLayout = printer.pageLayout();
    paneTab->dialogSettingsChanged();
}

bool PaneAttachment::LacksWishedSize() const {
    return wishedSize.isValid() && !isSameSize(acceptedLayout.pageSize(), wishedSize);
}

bool PaneAttachment::MayPrint() {
    // Qt has also written what cancelled properties showed.
    printer.setPageSize(acceptedLayout.pageSize());
    printer.setPageOrientation(acceptedLayout.orientation());
    // Qt resets the colour mode of a queue without a colour model, whatever its own tab shows.
    if (const auto* gray = dialog.findChild<QRadioButton*>(QStringLiteral("grayscale"));
        gray != nullptr && gray->isChecked() && !paneTab->hasPanel()) {
        printer.setColorMode(QPrinter::GrayScale);
    }
    const QPointer<PaneTab> alive(paneTab);
    const bool granted = paneTab->preparePrint();
    if (!granted && alive) {
        ShowFieldOfPane();
    }
    return granted;
}

} // namespace torka::dialog
