// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PrintDialogExtension.h"

#include <string>
#include <string_view>

namespace torka {

// The principal class of the bundle. It gives the print dialog the features pane and has no state.
class TorkaFeaturesPDEPlugIn final : public PDEPlugIn {
public:
    bool initWithBundle(const BundleRef& bundle) override;
    // Another type gets an empty list. When a panel could not be made there is no list at all, so that the
    // dialog can distinguish "no pane of this type" from "no pane for this printer".
    std::optional<std::vector<PDEPanelRef>> PDEPanelsForType(const CFStringRef& type,
                                                             const PDEPlugInCallbackRef& host) override;
};

// An object of the class that is registered under the name (base name and suffix); null for an unknown name.
std::unique_ptr<PDEPlugIn> makeRegisteredClass(std::string_view registeredName);

} // namespace torka
