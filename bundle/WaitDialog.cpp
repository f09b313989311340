// SPDX-License-Identifier: Apache-2.0
#include "bundle/WaitDialog.h"

#include <QApplication>
#include <QEventLoop>
#include <QProgressDialog>

#include <algorithm>
#include <thread>
#include <utility>

namespace torka {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds shownAfter{400};
constexpr milliseconds quietTime{700}; // maximum pause between two reports of a wait
// A wait without limit shows a busy bar.
constexpr int busyRange = 0;

bool cancelled = false;
bool isShown = false;
QEventLoop* innermostLoop = nullptr; // the loop of the innermost wait under way

void cancel() {
    cancelled = true;
    if (innermostLoop != nullptr) {
        innermostLoop->quit();
    }
}

struct WaitText {
    const char* key;
    const char* english;
};

WaitText textOf(WaitFor what) {
    switch (what) {
    case WaitFor::commandJob:
        return {"WAIT_COMMAND", "The printer’s queue is at work…"};
    case WaitFor::dataFile:
        return {"WAIT_DATA", "Waiting for the controller’s answer…"};
    case WaitFor::lockFile:
        return {"WAIT_LOCK", "The controller’s data are being written…"};
    case WaitFor::idlePrinter:
        return {"WAIT_IDLE", "Waiting until the printer is idle…"};
    case WaitFor::moduleReady:
        return {"WAIT_MODULE", "The full properties are being opened…"};
    }
    return {"WAIT_TITLE", "Waiting for the Printer"};
}

QString localized(const BundleRef& bundle, WaitText text) {
    const CFStringRef english = cfString(text.english);
    const CFStringRef found =
        bundle ? bundle->LocalizedString(cfString(text.key), english, "Localizable") : english;
    return QString::fromStdString(utf8Text(found));
}

} // namespace

WaitDialog::WaitDialog(BundleRef pluginBundle)
    : bundle(std::move(pluginBundle)) {
    quiet.setSingleShot(true);
    quiet.setInterval(quietTime);
    QObject::connect(&quiet, &QTimer::timeout, &quiet, [this] { Hide(); });
}

WaitDialog::~WaitDialog() { Hide(); }

void WaitDialog::Begin() { cancelled = false; }

void WaitDialog::Show(const WaitProgress& progress) {
    if (cancelled) {
        return;
    }
    if (!dialog) {
        if (progress.waited < shownAfter) {
            return;
        }
        dialog = new QProgressDialog(QApplication::activeWindow());
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowTitle(localized(bundle, {"WAIT_TITLE", "Waiting for the Printer"}));
        dialog->setCancelButtonText(localized(bundle, {"CANCEL", "Cancel"}));
        dialog->setWindowModality(Qt::ApplicationModal);
        dialog->setAutoReset(false);
        dialog->setAutoClose(false);
        dialog->setMinimumDuration(0);
        QObject::connect(dialog, &QProgressDialog::canceled, dialog, &cancel);
        dialog->show();
        isShown = true;
    }
    dialog->setLabelText(localized(bundle, textOf(progress.what)));
    const int limit = progress.limit.count() > 0 ? static_cast<int>(progress.limit.count()) : busyRange;
    dialog->setMaximum(limit);
    dialog->setValue(std::min(static_cast<int>(progress.waited.count()), std::max(limit - 1, 0)));
    quiet.start();
}

void WaitDialog::Hide() {
    quiet.stop();
    isShown = false;
    if (dialog) {
        dialog->disconnect();
        dialog->close();
        dialog = nullptr;
    }
}

void WaitDialog::End() {
    Hide();
    cancelled = false;
}

bool WaitDialog::wait(milliseconds duration) {
    if (duration.count() <= 0 || cancelled) {
        return !cancelled;
    }
    if (QApplication::instance() == nullptr) {
        std::this_thread::sleep_for(duration);
        return true;
    }
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(duration);
    QEventLoop* const outer = std::exchange(innermostLoop, &loop);
    loop.exec(isShown ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
    innermostLoop = outer;
    return !cancelled;
}

} // namespace torka
