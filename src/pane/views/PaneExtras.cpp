#include "pane/views/PaneExtras.h"

#include "pane/views/ExtraWords.h"
#include "pane/views/PaneRegistry.h"
#include "pane/views/PresetBar.h"
#include "pane/views/QuickAccessDialog.h"
#include "pane/views/WatermarkPage.h"

namespace torka {

void registerPaneExtras() {
    static bool isDone = false;
    if (isDone) {
        return;
    }
    isDone = true;
    PaneRegistry& registry = paneRegistry();
    registry.dialogs.quickAccess = [](PaneContext& context, const PaneOutletWidgets& widgets) {
        return std::make_unique<QuickAccessSheet>(context, widgets.root);
    };
    registry.pages.push_back(
        {"watermarks", words::watermarks,
         [](PaneContext& context, QWidget* parent) { return new WatermarkPage(context, parent); },
         [](const PaneContext& context) { return context.data != nullptr; }});
    registry.widgets.push_back({PanePlace::presets, [](PaneContext& context, QWidget* parent) -> QWidget* {
                                    return context.data == nullptr ? nullptr : new PresetBar(context, parent);
                                }});
}

} // namespace torka
