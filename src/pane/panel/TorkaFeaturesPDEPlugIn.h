#pragma once

#include "platform/PrintDialogExtension.h"

#include <string>
#include <string_view>

namespace torka {

// The principal class of the bundle: gives the print dialog the features pane. Keeps nothing.
class TorkaFeaturesPDEPlugIn final : public PDEPlugIn {
public:
    bool initWithBundle(const BundleRef& bundle) override;
    // Any other type gets an empty answer. A panel that could not be made gives none at all, so that the
    // dialog can tell "not mine" from "mine, but not for this printer".
    std::optional<std::vector<PDEPanelRef>> PDEPanelsForType(const CFStringRef& type,
                                                             const PDEPlugInCallbackRef& host) override;
};

// An object of the class that is registered under the name (base name and suffix); null for an unknown one.
std::unique_ptr<PDEPlugIn> makeRegisteredClass(std::string_view registeredName);

} // namespace torka
