// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/PaneBundle.h"

#include "platform/posix/PosixBundle.h"
#include "platform/qt/PersonsTexts.h"

#include <utility>

namespace torka::dialog {

Result<PaneBundle> startPaneBundle(const BundleRef& bundle) {
    Result<std::unique_ptr<PDEPlugIn>> plugIn = bundle->InstantiatePrincipalClass();
    if (!plugIn) {
        return plugIn.Why();
    }
    if (!(*plugIn)->initWithBundle(bundle)) {
        return Fault{"it refuses this host"};
    }
    return PaneBundle{bundle, *std::move(plugIn)};
}

Result<PaneBundle> loadPaneBundle(const std::filesystem::path& folder) {
    const Result<BundleRef> bundle = openBundle(folder);
    if (!bundle) {
        return bundle.Why();
    }
    sayInPersonsLanguage(*bundle);
    return startPaneBundle(*bundle);
}

} // namespace torka::dialog
