#include "pane/views/LiveExtras.h"

#include "pane/data/PDEData.h"
#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/views/GaugePanel.h"
#include "pane/views/PaneRegistry.h"
#include "pane/views/PopupJobNoteDialog.h"

#include <QPointer>

namespace torka {

namespace {

QWidget* makeGauges(PaneContext& context, QWidget* parent) {
    TorkaFeaturesPDE* panel = context.panel;
    if (panel == nullptr) {
        return nullptr; // a pane without a queue
    }
    GaugeSource source;
    source.isOn = [panel] { return panel->GetPDEDataPtr()->isBIDIEnabled(); };
    source.state = [panel] { return panel->Server().GetState(); };
    source.data = [panel] { return panel->Server().getBidiDataCopy(); };
    source.readAgain = [panel] { panel->requestServerData(ServerExchange::Failures::told); };
    auto* gauges = new GaugePanel(context, std::move(source), parent);
    panel->Server().AddListener([shown = QPointer<GaugePanel>(gauges)] {
        if (shown != nullptr) {
            shown->Update();
        }
    });
    return gauges;
}

} // namespace

void registerLiveExtras() {
    static bool isDone = false;
    if (isDone) {
        return;
    }
    isDone = true;
    PaneRegistry& registry = paneRegistry();
    registry.widgets.push_back({PanePlace::gauges, makeGauges});
    registry.dialogs.popupJobNotes = [](PaneContext& context, const PaneOutletWidgets& widgets) {
        return std::make_unique<PopupJobNoteDialog>(context, widgets.root);
    };
}

} // namespace torka
