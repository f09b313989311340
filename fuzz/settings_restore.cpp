// SPDX-License-Identifier: Apache-2.0
// Restores an arbitrary property list of print settings into a pane's data and emits a ticket. The lists stay
// within their capacities, the same settings give the same ticket again, and saved settings restore to
// themselves.

#include "fuzz/PaneFuzzing.h"
#include "output/FeatureEmission.h"
#include "output/ZANJobTicket.h"
#include "platform/PropertyList.h"

namespace {

using namespace torka;
using namespace torka::fuzz;

// One control of each type with special handling, and a note that takes any text.
constexpr const char* description = R"PPD(*PPD-Adobe: "4.3"
*LanguageVersion: Japanese
*LanguageEncoding: JIS83-RKSJ
*%QVVersion: "3.1"
*%ZANSpecialOption *QVUTF8_Version: 2
*%ZANPropPage Page/Page: True
*%ZANGroupName Pane/Pane: True
*%ZANGroupName Group/Group: True
*%ZANParent Pane/Page: True|Scrollpane
*%ZANParent Group/Pane: True|Rolldown
*%ZANFlags *PageSize: Dynamic
*%ZANGroup *PageSize: Group
*OpenUI *PageSize/Size: PickOne
*DefaultPageSize: A4
*PageSize A4: ""
*CloseUI: *PageSize
*%ZANFlags *QVPrintSize: Dynamic
*%ZANGroup *QVPrintSize: Group
*OpenUI *QVPrintSize/Size: PickOne
*DefaultQVPrintSize: A4
*QVPrintSize A4: ""
*QVPrintSize CustomPrintSize: ""
*CloseUI: *QVPrintSize
*%ParamCustomPrintSize Width: 1 points 283.46 936
*%ParamCustomPrintSize Height: 2 points 419.53 1368
*%ZANFlags *QVCurveAdjust: Dynamic
*%ZANGroup *QVCurveAdjust: Group
*OpenUI *QVCurveAdjust/Curve: PickOne
*DefaultQVCurveAdjust: None
*QVCurveAdjust None: ""
*CloseUI: *QVCurveAdjust
*%ZANFlags *QVScale: Dynamic
*%ZANGroup *QVScale: Group
*%ZANRange *QVScale/Scale: 25;400;1;100;"<*QVScale>"
*%ZANFlags *Notes1:
*%ZANGroup *Notes1: Group
*%ZANJobNote *Notes1/Note: 255|UTF8
*%Notes1: "(<*Notes1>)"
)PPD";

ZANPPD& model() {
    static const std::unique_ptr<ZANPPD> parsed = parsedModel(description);
    return *parsed;
}

std::string emitted(PDEData& data, const PMPrintSettings& settings) {
    PrintSettingsTicket dictionary(nullptr, settings);
    ZANJobTicket ticket(&dictionary, settings, cfString("ZAN.PSData"));
    data.OutPostscriptData(ticket, nullptr, EmissionPurpose::keepSettings);
    std::string all;
    for (const ZANJobTicket::Entry& entry : ticket.Entries()) {
        all += std::to_string(entry.site) + ":" + std::string(entry.bytes) + "\n";
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    quietPane();
    const auto values = cfCast<CFDictionary>(CFPropertyListCreateFromXMLData(CFDataCreate(bytes, size)));
    if (!values) {
        return 0;
    }
    const auto settings = std::make_shared<MemoryPrintSettings>();
    for (const auto& [key, value] : values->Pairs()) {
        settings->SetValue(key, value, false);
    }
    model().SetAllValues(values);
    const std::unique_ptr<PDEData> owned = paneData(model(), settings);
    PDEData& data = *owned;
    data.RestoreNonPSSettings();
    data.SetIPAddressEnabled(true);
    requireWithinCapacities(data);
    const std::string ticket = emitted(data, settings);
    require(ticket == emitted(data, settings));

    data.SaveNonPSSettings();
    const CFDictionaryRef saved = settings->CopyAsDictionary();
    data.RestoreNonPSSettings();
    data.SaveNonPSSettings();
    require(CFEqual(saved, settings->CopyAsDictionary()));
    return 0;
}
