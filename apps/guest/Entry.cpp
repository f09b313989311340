// SPDX-License-Identifier: Apache-2.0
#include "apps/guest/Entry.h"

#include "apps/dialog/PaneBundle.h"
#include "apps/guest/GuestDialog.h"
#include "platform/Log.h"
#include "platform/adapters/Adapters.h"
#include "platform/posix/PosixBundle.h"
#include "platform/qt/PersonsTexts.h"

#include <QApplication>
#include <QPrintDialog>
#include <QThread>
#include <exception>
#include <filesystem>

extern "C" __attribute__((visibility("default"))) void torkaAttachPane(void* dialog, int version) noexcept;

namespace torka::guest {

namespace {

// The process is not ours. Nothing here changes what the program shares with it: locale, signals,
// environment, file mode mask, or whether it can be traced.
const Result<BundleRef>& bundle() {
    static const Result<BundleRef> opened = [] {
        chooseAdapters(AdapterOptions{.spooler = true});
        return openBundle(folderOfObjectAt(reinterpret_cast<const void*>(&torkaAttachPane)) /
                          "TorkaFeatures.bundle");
    }();
    return opened;
}

// The plug-in, loaded with the first dialog; null when it cannot be loaded, which is logged once. Never
// destroyed: a dialog of the program may live until the process ends.
PDEPlugIn* plugIn() {
    static const dialog::PaneBundle* const loaded = []() -> const dialog::PaneBundle* {
        auto pane = bundle() ? dialog::startPaneBundle(*bundle()) : bundle().Why();
        if (!pane) {
            myNSLogC("This program's print dialogs have no pane: %s", pane.Why().Line().c_str());
            return nullptr;
        }
        return new dialog::PaneBundle(*std::move(pane));
    }();
    return loaded == nullptr ? nullptr : loaded->plugIn.get();
}

void attach(QObject* object) {
    auto* dialog = qobject_cast<QPrintDialog*>(object);
    if (dialog == nullptr || QThread::currentThread() != qApp->thread() ||
        !GuestDialog::Understands(*dialog)) {
        return;
    }
    if (bundle()) {
        sayInPersonsLanguage(*bundle()); // the tab is shown before its plug-in is loaded
    }
    GuestDialog::Attach(*dialog, plugIn);
}

void logFault(const char* reason) noexcept {
    try {
        myNSLogC("The print dialog stays without its pane: %s", reason);
    } catch (...) {
        return;
    }
}

} // namespace

} // namespace torka::guest

void torkaAttachPane(void* dialog, int version) noexcept {
    if (dialog == nullptr || version != torkaAttachVersion) {
        return;
    }
    try {
        torka::guest::attach(static_cast<QObject*>(dialog));
    } catch (const std::exception& error) {
        torka::guest::logFault(error.what());
    } catch (...) {
        torka::guest::logFault("unknown exception");
    }
}
