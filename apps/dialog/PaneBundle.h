// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Bundle.h"

#include <filesystem>
#include <memory>

namespace torka::dialog {

// The plug-in of a bundle, ready for a dialog.
struct PaneBundle {
    BundleRef bundle;
    std::unique_ptr<PDEPlugIn> plugIn; // never null
};

// Starts the plug-in of an open bundle. REQUIRES: the adapters are chosen.
Result<PaneBundle> startPaneBundle(const BundleRef& bundle);

// Opens the bundle in the folder, says this program's own texts with its tables, and starts its plug-in.
// REQUIRES: the adapters are chosen, an application object.
Result<PaneBundle> loadPaneBundle(const std::filesystem::path& folder);

} // namespace torka::dialog
