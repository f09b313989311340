// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/PaneInterface.h"

#include <utility>

namespace torka {
namespace {

PaneInterfaceLoader& chosenLoader() {
    static PaneInterfaceLoader loader;
    return loader;
}

} // namespace

CustomizePaneView::~CustomizePaneView() = default;
CustomizeQuickAccessView::~CustomizeQuickAccessView() = default;
PopupJobNoteView::~PopupJobNoteView() = default;
PaneInterface::~PaneInterface() = default;

void setPaneInterfaceLoader(PaneInterfaceLoader loader) { chosenLoader() = std::move(loader); }

const PaneInterfaceLoader& paneInterfaceLoader() { return chosenLoader(); }

} // namespace torka
