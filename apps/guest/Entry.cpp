// SPDX-License-Identifier: Apache-2.0
#include "apps/guest/Entry.h"

#include "apps/dialog/PaneBundle.h"
#include "apps/guest/GuestDialog.h"
#include "platform/Log.h"
#include "platform/adapters/Adapters.h"
#include "platform/posix/PosixBundle.h"

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
void chooseSystem() {
    static const bool isChosen = [] {
        chooseAdapters(AdapterOptions{.spooler = true});
        return true;
    }();
    static_cast<void>(isChosen);
}

// The plug-in, loaded with the first dialog; null when it cannot be loaded, which is logged once. Never
// destroyed: a dialog of the program may live until the process ends.
PDEPlugIn* plugIn() {
    static const dialog::PaneBundle* const loaded = []() -> const dialog::PaneBundle* {
        const std::filesystem::path folder =
            folderOfObjectAt(reinterpret_cast<const void*>(&torkaAttachPane)) / "TorkaFeatures.bundle";
        auto bundle = dialog::loadPaneBundle(folder);
        if (!bundle) {
            myNSLogC("This program's print dialogs have no pane: %s", bundle.Why().Line().c_str());
            return nullptr;
        }
        return new dialog::PaneBundle(*std::move(bundle));
    }();
    return loaded == nullptr ? nullptr : loaded->plugIn.get();
}

void attach(QObject* object) {
    auto* dialog = qobject_cast<QPrintDialog*>(object);
    if (dialog == nullptr || QThread::currentThread() != qApp->thread() ||
        !GuestDialog::Understands(*dialog)) {
        return;
    }
    chooseSystem();
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
