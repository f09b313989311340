// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/TorkaFeaturesPDEPlugIn.h"

#include "pane/panel/BundleHelpers.h"
#include "pane/panel/TorkaFeaturesPDE.h"

namespace torka {

bool TorkaFeaturesPDEPlugIn::initWithBundle(const BundleRef& /*bundle*/) { return true; }

std::optional<std::vector<PDEPanelRef>>
TorkaFeaturesPDEPlugIn::PDEPanelsForType(const CFStringRef& type, const PDEPlugInCallbackRef& host) {
    if (!CFEqual(type, cfString(printDialogPanelType))) {
        return std::vector<PDEPanelRef>();
    }
    PDEPanelRef panel = TorkaFeaturesPDE::initWithCallback(host);
    if (!panel) {
        return std::nullopt;
    }
    return std::vector<PDEPanelRef>{std::move(panel)};
}

std::unique_ptr<PDEPlugIn> makeRegisteredClass(std::string_view registeredName) {
    if (registeredName == "TorkaFeaturesPDEPlugIn" + std::string(registeredNameSuffix)) {
        return std::make_unique<TorkaFeaturesPDEPlugIn>();
    }
    return nullptr;
}

} // namespace torka
