// SPDX-License-Identifier: Apache-2.0
#include "apps/guest/GuestDialog.h"

#include "apps/dialog/Submission.h"
#include "platform/Log.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPageRanges>
#include <QPointer>
#include <QPrintDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <exception>

namespace torka::guest {

namespace {

// Qt refuses such ranges when the person presses Print.
bool showsBrokenPageRanges(const QPrintDialog& dialog) {
    const auto* chosen = dialog.findChild<QRadioButton*>(QStringLiteral("pagesRadioButton"));
    const auto* ranges = dialog.findChild<QLineEdit*>(QStringLiteral("pagesLineEdit"));
    return chosen != nullptr && ranges != nullptr && chosen->isChecked() &&
           QPageRanges::fromString(ranges->text()).isEmpty();
}

std::string nameOfJob(const QPrintDialog& dialog) {
    const QString name = dialog.printer()->docName();
    return (name.isEmpty() ? QGuiApplication::applicationDisplayName() : name).toStdString();
}

// The sides that the pane has chosen, in Qt's terms: Qt sends its own with every job of a queue that has the
// common option, and the two must agree.
QPrinter::DuplexMode sidesOf(const dialog::PaneTab& tab) {
    for (const char* keyword : {"*QVDuplex", "*Duplex"}) {
        const std::string choice = utf8Text(cfCast<CFString>(tab.settings().Value(cfString(keyword))));
        if (choice == "LongEdge" || choice == "DuplexNoTumble") {
            return QPrinter::DuplexLongSide;
        }
        if (choice == "ShortEdge" || choice == "DuplexTumble") {
            return QPrinter::DuplexShortSide;
        }
    }
    return QPrinter::DuplexNone;
}

bool isInput(const QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
        return true;
    default:
        return false;
    }
}

// The pane's settings that differ from the description's defaults. The ticket counts alone for the first job;
// these are for the others of a program that sends several. No note is among them.
QStringList changedSettings(const dialog::PaneTab& tab) {
    constexpr double sameNumber = 1e-6; // of its size; a float has seven digits
    QStringList options;
    const auto textOf = [&tab](const std::string& keyword) {
        return QString::fromStdString(
            utf8Text(cfCast<CFString>(tab.settings().Value(cfString("*" + keyword)))));
    };
    for (const auto& [keyword, standard] : tab.decidedByPane().defaults) {
        // The dialog decides these three.
        const bool isOwn = keyword == "PageSize" || keyword == "PageRegion" || keyword == "Collate";
        const QString choice = textOf(keyword);
        if (!isOwn && !choice.isEmpty() && choice.toStdString() != standard) {
            options << QString::fromStdString(keyword) << choice;
        }
    }
    for (const auto& [keyword, standard] : tab.decidedByPane().numbers) {
        bool isNumber = false;
        const double number = textOf(keyword).toDouble(&isNumber);
        if (isNumber && std::abs(number - standard) > sameNumber * std::max(1.0, std::abs(standard))) {
            options << QString::fromStdString(keyword) << textOf(keyword);
        }
    }
    // The size that this choice of the list means.
    if (const QString size = textOf("CustomPrintSize");
        textOf("QVPrintSize") == QLatin1String("CustomPrintSize") && !size.isEmpty()) {
        options << QStringLiteral("CustomPrintSize") << size;
    }
    return options;
}

// Runs what an event or a signal of the program started: no exception may pass through it.
template <class Work>
void guarded(const Work& work) noexcept {
    try {
        work();
    } catch (const std::exception& error) {
        myNSLogC("The pane of a print dialog fails: %s", error.what());
    } catch (...) {
        myNSLogC("The pane of a print dialog fails.");
    }
}

} // namespace

bool GuestDialog::Understands(const QPrintDialog& dialog) {
    const auto* buttons = dialog.findChild<QDialogButtonBox*>();
    return dialog.printer() != nullptr && buttons != nullptr &&
           buttons->button(QDialogButtonBox::Ok) != nullptr && dialog::PaneAttachment::Understands(dialog);
}

void GuestDialog::Attach(QPrintDialog& dialog, PlugInLoader loader) {
    if (!dialog.property(dialog::panePropertyName).isValid()) {
        new GuestDialog(dialog, *dialog.findChild<QDialogButtonBox*>(), loader); // the dialog owns it
    }
}

GuestDialog::GuestDialog(QPrintDialog& printDialog, QDialogButtonBox& buttons, PlugInLoader loader)
    : QObject(&printDialog)
    , dialog(printDialog)
    , pane(std::make_unique<dialog::PaneAttachment>(printDialog, *choices, nameOfJob(printDialog),
                                                    dialog::WithoutPane::asWithoutUs))
    , loadPlugIn(loader) {
    connect(&buttons, &QDialogButtonBox::clicked, this, [this, &buttons](QAbstractButton* button) {
        if (button == buttons.button(QDialogButtonBox::Ok)) {
            guarded([&] { PressPrint(buttons); });
        }
    });
    dialog.installEventFilter(this);
    pane->Tab().installEventFilter(this);
    QCoreApplication::instance()->installEventFilter(this); // until the pane begins
}

void GuestDialog::Begin() {
    if (hasBegun) {
        return;
    }
    hasBegun = true;
    QCoreApplication::instance()->removeEventFilter(this);
    guarded([this] { pane->Begin(loadPlugIn()); });
}

GuestDialog::~GuestDialog() = default;

bool GuestDialog::eventFilter(QObject* watched, QEvent* event) {
    if (!hasBegun) {
        if (watched == &dialog && event->type() == QEvent::Paint) {
            QTimer::singleShot(0, this, &GuestDialog::Begin);
        } else if (isInput(*event) || (watched == &dialog && event->type() == QEvent::Hide)) {
            Begin();
        } else if (watched != &dialog) {
            return false; // seen for the application
        }
    }
    if (watched == &dialog && !event->spontaneous()) {
        if (event->type() == QEvent::Hide) {
            guarded([this] { DialogHides(); });
        } else if (event->type() == QEvent::Show && isClosed) {
            isClosed = false;
            guarded([this] { pane->Reopen(); });
        }
    } else if (watched == &pane->Tab() && event->type() == QEvent::Show) {
        pane->MakeRoom();
    }
    return QObject::eventFilter(watched, event);
}

// The box emits clicked() before accepted(), which closes the dialog. While its signals are blocked the
// dialog stays open.
void GuestDialog::PressPrint(QDialogButtonBox& buttons) {
    mayPrint = false;
    if (!pane->Tab().hasPanel() || showsBrokenPageRanges(dialog)) {
        return;
    }
    const QPointer<GuestDialog> alive(this); // the program may delete the dialog while a question is open
    bool granted = false;
    if (!isAsking) {
        isAsking = true;
        const auto kept = choices;
        guarded([&] { granted = pane->MayPrint(); });
        if (!alive) {
            return;
        }
        isAsking = false;
    }
    mayPrint = granted && dialog.isVisible();
    const bool wasBlocked = buttons.blockSignals(!mayPrint || buttons.signalsBlocked());
    // When this click is over. Qt may have refused it, too; the ticket that was sent finds no job then.
    QTimer::singleShot(0, this, [this, &buttons, wasBlocked] {
        buttons.blockSignals(wasBlocked);
        mayPrint = false;
    });
}

void GuestDialog::DialogHides() {
    if (isClosed) {
        return;
    }
    isClosed = true;
    if (dialog.result() == QDialog::Accepted && pane->Tab().hasPanel()) {
        const QPointer<GuestDialog> alive(this);
        const auto kept = choices;
        // The program itself may accept its dialog, past the Print button.
        const bool granted = mayPrint || pane->MayPrint();
        if (!alive) {
            return;
        }
        if (granted) {
            WriteJobOptions();
        } else {
            HoldJob();
        }
    }
    mayPrint = false;
    pane->Close();
}

void GuestDialog::WriteJobOptions() {
    QPrinter& printer = *dialog.printer();
    // Qt has written what properties show that the person cancelled.
    printer.setPageSize(pane->AcceptedLayout().pageSize());
    printer.setPageOrientation(pane->AcceptedLayout().orientation());
    if (pane->Tab().decidedByPane().sides) {
        printer.setDuplex(sidesOf(pane->Tab()));
    }
    QStringList options =
        dialog::guestJobOptions(dialog::engineOptions(printer), *choices, pane->Tab().decidedByPane());
    for (const auto& [name, value] : dialog::ticketOptions(pane->Tab())) {
        options << QString::fromStdString(name) << QString::fromStdString(value);
    }
    options << changedSettings(pane->Tab());
    if (!dialog::setEngineOptions(printer, options)) {
        Tell(tr("The settings of \u201c%1\u201d do not reach this job: the program prints in a way that has "
                "no "
                "place for them.")
                 .arg(pane->Tab().windowTitle()));
    }
}

// The pane refuses a job that the program sends all the same. Held, it prints nothing with the wrong
// settings.
void GuestDialog::HoldJob() {
    QPrinter& printer = *dialog.printer();
    dialog::setEngineOption(printer, QStringLiteral("job-hold-until"), QStringLiteral("indefinite"));
    Tell(tr("The job waits in the queue, because its settings in \u201c%1\u201d cannot be printed. Cancel it "
            "there, or release it to print without them.")
             .arg(pane->Tab().windowTitle()));
}

// Later, because the dialog is hiding. Without waiting, because the program prints meanwhile.
void GuestDialog::Tell(const QString& text) {
    myNSLogC("%s", text.toStdString().c_str());
    QTimer::singleShot(0, qApp, [text] {
        auto* box = new QMessageBox(QMessageBox::Warning, tr("Print"), QString(), QMessageBox::Ok);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setTextFormat(Qt::PlainText); // before the text, which may look like markup
        box->setText(text);
        box->open();
    });
}

} // namespace torka::guest
