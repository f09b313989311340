// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/FieldKeys.h"
#include "bundle/WaitDialog.h"
#include "output/BundleIdentifier.h"
#include "pane/panel/PaneInterface.h"
#include "pane/panel/TorkaFeaturesPDEPlugIn.h"
#include "pane/views/QtPaneInterface.h"
#include "platform/Alert.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/adapters/Adapters.h"
#include "platform/avahi/AvahiServiceDirectory.h"
#include "platform/posix/PosixBundle.h"
#include "platform/qt/PersonsTexts.h"
#include "platform/qt/QtAlertPresenter.h"
#include "platform/qt/QtEventLoop.h"

#include <QApplication>
#include <exception>

// Composes the plug-in: sets its own copies of the adapters when a host asks for the first class.

extern "C" __attribute__((visibility("default"))) torka::platform::PDEPlugIn*
torkaBundleInstantiate(const char* className, int interfaceVersion) noexcept;

namespace torka {

namespace {

// Alerts without a toolkit. Nobody can answer, so that each alert is logged and answered with its alternate
// button.
class LoggedAlerts final : public AlertPresenter {
public:
    AlertButton RunModal(const AlertText& text) override {
        myNSLogC("%s %s", text.title.c_str(), text.informative.c_str());
        return text.alternateButton.empty() ? AlertButton::defaultButton : AlertButton::alternateButton;
    }
};

void chooseSystemAdapters() {
    AdapterOptions adapters{.network = true, .spooler = true, .libraries = true};
    adapters.system.wait = WaitDialog::wait;
    chooseAdapters(std::move(adapters));
    setAlerts(std::make_unique<LoggedAlerts>());

    if (const Result<void> installed = useInstalledFieldKeys(); !installed) {
        myNSLogC("%s", installed.Why().Line().c_str());
    }
    const std::filesystem::path folder =
        bundleFolderAround(reinterpret_cast<const void*>(&torkaBundleInstantiate));
    const auto bundle = openBundle(folder); // its fault is logged
    registerBundle(bundle ? *bundle : nullptr);
}

// Removes the adapters that must not outlive the host's application object.
void dropToolkitAdapters() {
    setPaneInterfaceLoader({});
    setWaitPresenter(nullptr);
    setAlerts(std::make_unique<LoggedAlerts>());
    setServiceDirectory(nullptr);
    setMainEventLoop(nullptr);
}

void chooseToolkitAdapters() {
    auto loop = std::make_unique<QtEventLoop>();
    setServiceDirectory(std::make_unique<AvahiServiceDirectory>(*loop));
    setMainEventLoop(std::move(loop));
    setAlerts(std::make_unique<QtAlertPresenter>());
    setPaneInterfaceLoader(qtPaneInterfaceLoader());
    const BundleRef bundle = bundleWithIdentifier(bundleIdentifier);
    sayInPersonsLanguage(bundle); // the module's window
    setWaitPresenter(std::make_unique<WaitDialog>(bundle));
    qAddPostRoutine(dropToolkitAdapters);
}

// Logs why the plug-in cannot start, unless memory is missing for that, too.
void logStart(const char* reason) noexcept {
    try {
        myNSLogC("The features pane cannot start: %s", reason);
    } catch (...) {
        return;
    }
}

void compose() {
    if (!hasSystem()) {
        chooseSystemAdapters();
    }
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
        myNSLogC("The host has no application object of the toolkit: the features pane has no widgets.");
    } else if (GetMainEventLoop() == nullptr) {
        chooseToolkitAdapters();
    }
}

} // namespace

} // namespace torka

// A host may be written in C, or have no handler: no exception leaves the plug-in.
torka::platform::PDEPlugIn* torkaBundleInstantiate(const char* className, int interfaceVersion) noexcept {
    if (className == nullptr || interfaceVersion != torka::bundleInterfaceVersion) {
        return nullptr;
    }
    try {
        torka::compose();
        return torka::makeRegisteredClass(className).release();
    } catch (const std::exception& error) {
        torka::logStart(error.what());
    } catch (...) {
        torka::logStart("unknown exception");
    }
    return nullptr;
}
