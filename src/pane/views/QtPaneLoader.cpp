// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PDEData.h"
#include "pane/exchange/ServerExchange.h"
#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/panel/UI_Panel.h"
#include "pane/views/QtPaneInterface.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <QApplication>

namespace torka {
namespace {

constexpr std::string_view interfaceFile = "TorkaFeaturesPDE.ui";

std::string localized(const BundleRef& bundle, const char* key, const char* english, std::string_view table) {
    const CFStringRef text = bundle->LocalizedString(cfString(key), cfString(english), table);
    return text ? utf8Text(text) : english;
}

GaugeSource gaugeSourceOf(TorkaFeaturesPDE& panel) {
    GaugeSource source;
    source.isOn = [&panel] { return panel.GetPDEDataPtr()->isBIDIEnabled(); };
    source.state = [&panel] { return panel.Server().GetState(); };
    source.data = [&panel] { return panel.Server().getBidiDataCopy(); };
    source.readAgain = [&panel] { panel.requestServerData(ServerExchange::Failures::told); };
    source.whenChanged = [&panel](std::function<void()> listener) {
        panel.Server().AddListener(std::move(listener));
    };
    return source;
}

PaneSetup setupOf(TorkaFeaturesPDE& owner, const BundleRef& bundle) {
    PaneSetup setup{*owner.getPPDPtr(), owner.GetUI_PanelPtr()->GetCustomizePane(), owner.GetPDEDataPtr(),
                    &owner};
    setup.text = [bundle](const PaneWord& word) { return localized(bundle, word.key, word.english, "Pane"); };
    setup.bidiText = [bundle](const char* key, const char* english) {
        return qText(localized(bundle, key, english, "BidiStrings"));
    };
    setup.metric = system().MeasuresInMetric();
    setup.gauges = gaugeSourceOf(owner);
    setup.keepAlive = [&owner] { return owner.shared_from_this(); };
    setup.openFullProperties = [&owner] { owner.launchFullProperties(); };
    setup.resetToDefaults = [&owner] { owner.defaultsButtonClicked(); };
    setup.customizeQuickAccess = [&owner] { owner.customizeQuickAccessButtonClicked(); };
    setup.beganWithLastJob = [&owner] { return owner.beganWithLastJob(); };
    setup.applicationDidBecomeActive = [&owner] { owner.applicationDidBecomeActive(); };
    setup.becomeCurrent = [&owner] { owner.becomeCurrent(); };
    setup.twoWayFailed = [&owner] { return owner.Server().GetState() == ServerExchange::State::failed; };
    return setup;
}

} // namespace

PaneInterfaceLoader qtPaneInterfaceLoader() {
    return [](TorkaFeaturesPDE& owner, const BundleRef& bundle) -> std::unique_ptr<PaneInterface> {
        if (bundle == nullptr || qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
            myNSLogC(
                "The features pane has no widgets: it needs its bundle and an application with windows.");
            return nullptr;
        }
        const std::filesystem::path file = bundle->ResourcePath(interfaceFile);
        if (file.empty()) {
            myNSLogC("The bundle has no interface file TorkaFeaturesPDE.ui.");
            return nullptr;
        }
        std::string problem;
        std::unique_ptr<QtPaneInterface> loaded =
            QtPaneInterface::Load(QString::fromStdString(file.string()), setupOf(owner, bundle), problem);
        if (loaded == nullptr) {
            myNSLogC("The interface file cannot be used: %s", problem.c_str());
        }
        return loaded;
    };
}

} // namespace torka
