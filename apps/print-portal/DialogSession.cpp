// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/DialogSession.h"

#include "apps/common/OutsideText.h"
#include "apps/dialog/Said.h"
#include "apps/dialog/Submission.h"
#include "apps/print-portal/Delivery.h"
#include "apps/print-portal/ParentWindow.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QTabWidget>
#include <QThread>
#include <QTimer>
#include <cstdio>
#include <utility>

namespace torka::portal {

namespace {

// QWidget::isAncestorOf knows one window only.
bool belongsTo(const QWidget* window, const QWidget& ancestor) {
    const QWidget* at = window->parentWidget();
    while (at != nullptr && at != &ancestor) {
        at = at->parentWidget();
    }
    return at != nullptr;
}

// The tab of a queue without a pane only says so.
void showFirstTab(const dialog::PrintDialog& dialog) {
    if (auto* tabs = dialog.findChild<QTabWidget*>(QStringLiteral("tabs"))) {
        tabs->setCurrentIndex(0);
    }
}

} // namespace

void whenLoopsHaveEnded(QObject* context, const std::function<void()>& work) {
    constexpr int pause = 50; // milliseconds
    QTimer::singleShot(QThread::currentThread()->loopLevel() > 1 ? pause : 0, context, [context, work] {
        if (QThread::currentThread()->loopLevel() > 1) {
            whenLoopsHaveEnded(context, work);
        } else {
            work();
        }
    });
}

DialogSession::DialogSession(PDEPlugIn& plugIn, DialogWish dialogWish, QObject* parent)
    : QObject(parent)
    , wish(std::move(dialogWish)) {
    presetPrinter(printer, wish.choices);
    dialog = std::make_unique<dialog::PrintDialog>(printer, plugIn, wish.title.toStdString());
    dialog->setOption(QAbstractPrintDialog::PrintToFile, true);
    dialog->setOption(QAbstractPrintDialog::PrintSelection, wish.hasSelection);
    dialog->setOption(QAbstractPrintDialog::PrintCurrentPage, wish.hasCurrentPage);
    presets = new PropertyPresets(*dialog, wish.choices);
    connect(dialog.get(), &QDialog::finished, this, &DialogSession::Take);
}

DialogSession::~DialogSession() = default;

void DialogSession::Open() {
    standBefore(*dialog, wish.parentWindow, wish.isModal);
    dialog->showPane(); // resizes it before the window's place is chosen
    dialog->show();     // Qt lists the file destination now
    presetDialog(*dialog, wish.choices, !wish.isSandboxed);
    if (wish.laidOutBy == LaidOutBy::Program) {
        offerPagesForFiles(*dialog);
        scale = addScale(*dialog, wish.choices);
    }
    if (!wish.choices.printer.isEmpty() && wish.choices.printer.toStdString() != dialog->destination() &&
        !dialog->queue().empty()) {
        Log(QStringLiteral("there is no queue %1 any more").arg(wish.choices.printer));
    }
    if (!dialog->tab().hasPanel()) {
        showFirstTab(*dialog);
    }
    // Return prints. In Qt's own first field it opens the list of printers on some desktops.
    if (const auto* buttons = dialog->findChild<QDialogButtonBox*>()) {
        buttons->button(QDialogButtonBox::Ok)->setFocus();
    }
    dialog->raise();
    dialog->activateWindow();
}

void DialogSession::Log(const QString& problem) const {
    std::fprintf(stderr, "%s: %s\n", apps::printable(wish.title.toStdString()).c_str(),
                 apps::printable(problem.toStdString()).c_str());
}

void DialogSession::Take(int result) {
    if (isOver) {
        return;
    }
    Response response = result == QDialog::Accepted ? Response::Success : Response::Cancelled;
    const std::string queue = response == Response::Success ? dialog->queue() : std::string();
    if (const std::string problem = queue.empty() ? std::string() : platform::queueProblem(queue);
        !problem.empty()) {
        tellPerson(
            wish.title,
            dialog::said("The print server does not take the job: %1").arg(dialog::saidMessage(problem)));
        response = Response::Ended;
    } else if (response == Response::Success) {
        TakeChoices();
    }
    isOver = true;
    Q_EMIT answered(response);
    End();
}

void DialogSession::TakeChoices() {
    platform::JobOptions options = dialog::jobOptions(*dialog);
    QStringList problems;
    presets->Complete(options, problems);
    for (const QString& problem : std::as_const(problems)) {
        Log(problem);
    }
    chosen = chosenIn(*dialog, wish.choices, options);
    presets->TakePagesPerSheet(chosen);
    if (scale != nullptr) {
        chosen.scale = scale->value();
    }
    job.queue = dialog->queue();
    job.outputFile = job.queue.empty() ? printer.outputFileName() : QString();
    job.options =
        wish.laidOutBy == LaidOutBy::Program ? withoutDrawn(std::move(options)) : std::move(options);
}

void DialogSession::Close() {
    if (!isOver) {
        isOver = true;
        End();
    }
}

// The properties and the pane's questions run event loops inside the dialog's functions. They end first.
void DialogSession::End() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        auto* question = qobject_cast<QDialog*>(window);
        if (question != nullptr && question->isVisible() && belongsTo(question, *dialog)) {
            question->reject();
        }
    }
    if (QThread::currentThread()->loopLevel() > 1) {
        constexpr int pause = 50; // milliseconds
        QTimer::singleShot(pause, this, &DialogSession::End);
        return;
    }
    if (dialog->isVisible()) {
        dialog->reject();
    }
    deleteLater();
}

} // namespace torka::portal
