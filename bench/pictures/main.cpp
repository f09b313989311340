// SPDX-License-Identifier: Apache-2.0
// Draws the pane for a description without a display: one picture for each page, at 100 % and 200 %, with a
// dark palette, and from right to left.
//
//     pane_pictures FOLDER [DESCRIPTION.ppd]

#include "bidi/records/CFileHdlr.h"
#include "pane/views/ConflictBar.h"
#include "pane/views/FieldPage.h"
#include "pane/views/GaugePanel.h"
#include "pane/views/PresetBar.h"
#include "pane/views/QuickAccessDialog.h"
#include "platform/TextEncoding.h"
#include "tests/support/TestSupport.h"
#include "tests/views/ViewFixture.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QStyleFactory>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <cstdio>

using namespace torka;
using namespace torka::tests;

namespace {

ServerExchange::State gaugeState = ServerExchange::State::read;

std::shared_ptr<const std::string> sampleData() {
    std::string file;
    for (const char* name : {"TrayInfo", "TonerInfo"}) {
        const std::wstring text =
            wideFromUtf8(readFile(std::string(TORKA_SOURCE_DIR) + "/samples/server-data/data/" + name));
        CFileHdlr::fileWriteData(name, text.data(), text.size() * sizeof(wchar_t), file);
    }
    return std::make_shared<const std::string>(std::move(file));
}

// Simulates two-way communication without a queue: the sample's records, or a controller that does not
// answer.
GaugeSource sampleGauges() {
    return {[] { return true; }, [] { return gaugeState; }, sampleData, [] {}, [](auto) {}};
}

void grabPopup(ViewedPane& pane, const QString& file) {
    QTimer::singleShot(0, qApp, [&] {
        QWidget* popup = QApplication::activeModalWidget();
        auto* line = popup->findChild<QLineEdit*>("popupJobNoteVal21");
        line->selectAll();
        QTest::keyClicks(line, QStringLiteral("4711"));
        QTest::keyClick(popup, Qt::Key_Return); // the text is too short, and the popup says so
        QCoreApplication::processEvents();
        popup->grab().save(file);
        static_cast<QDialog*>(popup)->reject();
    });
    pane.interface->popupJobNotes().handlePopupJobnoteUI();
}

QPalette darkPalette() {
    QPalette dark(QColor(50, 50, 52));
    dark.setColor(QPalette::Base, QColor(35, 35, 37));
    dark.setColor(QPalette::Highlight, QColor(60, 130, 210));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    return dark;
}

void grab(ViewedPane& pane, const QString& folder, const QString& name) {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    const QString file = folder + QLatin1Char('/') + name + QStringLiteral(".png");
    if (!pane.Root()->grab().save(file)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
    }
}

// Draws a chosen preset with changed settings, its menu, and the dialog that asks for a name.
void drawPresets(ViewedPane& pane, const QString& folder, const QString& prefix) {
    auto* bar = static_cast<PresetBar*>(pane.Find<QToolButton>("presets"));
    PresetStore store(pane.pane->data->PrinterName(), pane.Editor().Model(), *pane.pane->data);
    store.Save("Booklet, two-sided");
    store.Save("<b>R&D</b> proofs with a name that is far too long for its place");
    bar->Apply("Booklet, two-sided");
    pane.Editor().SetValue("*QVMirror", "True");
    QCoreApplication::processEvents();
    grab(pane, folder, prefix + QStringLiteral("-preset"));
    Q_EMIT bar->menu()->aboutToShow();
    bar->menu()->grab().save(folder + QLatin1Char('/') + prefix + QStringLiteral("-preset-menu.png"));
    bar->AskForSaving();
    auto* dialog = bar->findChild<QDialog*>();
    dialog->findChild<QLineEdit*>()->setText(QStringLiteral("Booklet, two-sided"));
    QCoreApplication::processEvents();
    dialog->grab().save(folder + QLatin1Char('/') + prefix + QStringLiteral("-preset-name.png"));
    dialog->reject();
}

void drawQuickAccess(ViewedPane& pane, const QString& folder, const QString& prefix) {
    auto& sheet = static_cast<QuickAccessSheet&>(pane.interface->customizeQuickAccess());
    sheet.openSheet();
    sheet.Dialog()->ChosenList()->setCurrentRow(1);
    QCoreApplication::processEvents();
    sheet.Dialog()->grab().save(folder + QLatin1Char('/') + prefix +
                                QStringLiteral("-quick-access-dialog.png"));
    sheet.doButtonCancelClicked();
}

void drawWatermarks(ViewedPane& pane, const QString& folder, const QString& prefix) {
    auto& watermarks = pane.pane->data->Watermarks();
    watermarks.Append(
        std::make_unique<ZANWatermark>("0,0,0,255,140,0,0,0,0,450,0,0,96,Helvetica-Bold,CONFIDENTIAL"));
    watermarks.Append(
        std::make_unique<ZANWatermark>("1,0,200,0,0,0,0,1,0,0,0,0,64,Times-Roman,Draft, not for sale"));
    watermarks.Select(0);
    pane.Widget().ShowPage("watermarks");
    grab(pane, folder, prefix + QStringLiteral("-watermarks"));
    auto* page = pane.Find<QListWidget>("watermarks")->parentWidget();
    for (QPushButton* button : page->findChildren<QPushButton*>()) {
        if (button->text() == QStringLiteral("Edit…")) {
            button->click();
        }
    }
    QCoreApplication::processEvents();
    auto* dialog = page->findChild<QDialog*>();
    dialog->grab().save(folder + QLatin1Char('/') + prefix + QStringLiteral("-watermark-dialog.png"));
    dialog->reject();
}

// A wide window shows the picture of the job beside the page.
void drawWide(ViewedPane& pane, const QString& folder, const QString& prefix) {
    const std::vector<std::vector<std::pair<const char*, const char*>>> jobs{
        {},
        {{"*QVDuplex", "LongEdge"}, {"*QVStaple", "Dual"}, {"*QVPunchHoles", "Two"}},
        {{"*QVNUpPages", "4"},
         {"*QVNUpBorder", "True"},
         {"*QVDuplex", "ShortEdge"},
         {"*QVStaple", "Front"},
         {"*QVFoldStyle", "Letter"},
         {"*QVBannerPage", "Start"},
         {"*QVSlipSheet", "Set"}},
        {{"*QVRIPBooklet", "Saddle"},
         {"*QVStaple", "Saddle"},
         {"*QVDuplex", "ShortEdge"},
         {"*QVBookCoverEnabled", "True"},
         {"*QVInterlvMedia", "True"},
         {"*QVTrimSides", "Three"}},
    };
    pane.Widget().ShowPage("QVFinishingPage");
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        std::vector<std::string> keywords;
        for (const auto& [keyword, value] : jobs[i]) {
            pane.Editor().SetValue(keyword, value);
            keywords.emplace_back(keyword);
        }
        pane.Root()->resize(i % 2 == 0 ? 1366 : 1100, 640);
        grab(pane, folder, prefix + QStringLiteral("-wide-%1").arg(i));
        pane.Editor().Reset(keywords);
    }
    pane.Root()->resize(820, 600);
}

void drawAll(const std::string& ppd, const QString& folder, const QString& prefix) {
    using Clock = std::chrono::steady_clock;
    auto model = ppd.empty() ? samplePane() : paneOfFile(ppd);
    const auto begin = Clock::now();
    ViewedPane pane(std::move(model), ppd.empty() ? std::optional(sampleGauges()) : std::nullopt);
    const auto loaded = Clock::now();
    pane.Draw();
    const auto drawn = Clock::now();
    pane.Root()->resize(820, 600);
    pane.Root()->show();
    QCoreApplication::processEvents();
    const auto painted = Clock::now();
    const auto ms = [](auto span) { return std::chrono::duration<double, std::milli>(span).count(); };
    std::printf("%s: loaded %.1f ms, drawn %.1f ms, painted %.1f ms\n", qPrintable(prefix),
                ms(loaded - begin), ms(drawn - loaded), ms(painted - drawn));
    auto& widget = pane.Widget();
    const auto pages = widget.PageIdentifiers();
    for (std::size_t i = 0; i < std::min<std::size_t>(pages.size(), 9); ++i) {
        const auto before = Clock::now();
        widget.ShowPage(pages[i]);
        QCoreApplication::processEvents();
        std::printf("  page %s %.1f ms\n", pages[i].c_str(), ms(Clock::now() - before));
        grab(pane, folder, prefix + QStringLiteral("-%1-").arg(i) + QString::fromStdString(pages[i]));
    }
    if (!ppd.empty()) {
        return;
    }
    drawWide(pane, folder, prefix);
    widget.ShowPage("QVFinishingPage");
    pane.Editor().SetValue("*QVStaple", "Saddle");
    pane.Editor().SetValue("*QVFoldStyle", "Half");
    pane.Editor().SetValue("*MediaType", "Labels");
    if (auto* box = pane.Find<QComboBox>("*QVFoldStyle")) {
        box->showPopup();
        QCoreApplication::processEvents();
        box->view()->window()->grab().save(folder + QLatin1Char('/') + prefix + QStringLiteral("-popup.png"));
        box->hidePopup();
    }
    const auto before = Clock::now();
    pane.Editor().SetValue("*QVDuplex", "LongEdge");
    QCoreApplication::processEvents();
    std::printf("  click %.2f ms\n", ms(Clock::now() - before));
    grab(pane, folder, prefix + QStringLiteral("-conflict"));
    pane.Editor().Resolve();
    grab(pane, folder, prefix + QStringLiteral("-resolved"));
    pane.Editor().Undo();
    pane.Root()->resize(pane.Root()->minimumSizeHint());
    grab(pane, folder, prefix + QStringLiteral("-smallest"));
    std::printf("  smallest %d x %d\n", pane.Root()->width(), pane.Root()->height());
    pane.Root()->resize(820, 600);
    pane.Editor().Redo();
    widget.ShowPage("summary");
    grab(pane, folder, prefix + QStringLiteral("-summary"));
    widget.ShowPage("QVFinishingPage");
    drawPresets(pane, folder, prefix);
    drawQuickAccess(pane, folder, prefix);
    drawWatermarks(pane, folder, prefix);
    widget.SearchField()->setText(QStringLiteral("finishing"));
    widget.SearchNow();
    grab(pane, folder, prefix + QStringLiteral("-search-page"));
    widget.SearchField()->setText(QStringLiteral("fold"));
    widget.SearchNow();
    grab(pane, folder, prefix + QStringLiteral("-search"));
    grabPopup(pane, folder + QLatin1Char('/') + prefix + QStringLiteral("-notes.png"));
    gaugeState = ServerExchange::State::failed;
    pane.Find<GaugePanel>("gauges")->Update();
    grab(pane, folder, prefix + QStringLiteral("-silent"));
    gaugeState = ServerExchange::State::read;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QString folder = QString::fromLocal8Bit(argc > 1 ? argv[1] : ".");
    ScopedMemorySystem system;
    if (argc > 2) {
        drawAll(argv[2], folder, QStringLiteral("other"));
        return 0;
    }
    drawAll({}, folder, QStringLiteral("light"));
    QApplication::setPalette(darkPalette());
    drawAll({}, folder, QStringLiteral("dark"));
    QApplication::setPalette(QPalette());
    QApplication::setLayoutDirection(Qt::RightToLeft);
    drawAll({}, folder, QStringLiteral("rtl"));
    return 0;
}
