// SPDX-License-Identifier: Apache-2.0
// Applies an arbitrary result of a Job Properties module to a pane. No list exceeds its capacity. When the
// pane then passes its settings to a module that returns them unchanged, nothing changes.
//
// Input: bit 0 of the first byte is two-way communication; with bit 1 the rest is 32-bit units instead of
// UTF-8. The rest is keys and values in turn, each with a NUL at its end.

#include "fuzz/PaneFuzzing.h"
#include "pane/panel/UI_Panel.h"
#include "platform/TextEncoding.h"

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using namespace torka;
using namespace torka::fuzz;

constexpr const char* description = R"PPD(*PPD-Adobe: "4.3"
*LanguageEncoding: ISOLatin1
*%ZANSpecialOption *QVUTF8_Version: 6
*%ZANPropPage Page/Page: True
*%ZANGroupName Pane/Pane: True
*%ZANGroupName Group/Group: True
*%ZANParent Pane/Page: True|Scrollpane
*%ZANParent Group/Pane: True|Rolldown
*%ZANFlags *QVOutProfile: Dynamic
*%ZANGroup *QVOutProfile: Group
*OpenUI *QVOutProfile/Profile: PickOne
*DefaultQVOutProfile: Press
*QVOutProfile Press: ""
*CloseUI: *QVOutProfile
*%ZANFlags *QVPrintSize: Dynamic
*%ZANGroup *QVPrintSize: Group
*OpenUI *QVPrintSize/Size: PickOne
*DefaultQVPrintSize: CustomPrintSize
*QVPrintSize CustomPrintSize: ""
*CloseUI: *QVPrintSize
*%ParamCustomPrintSize Width: 1 points 283.46 936
*%ParamCustomPrintSize Height: 2 points 419.53 1368
*%ZANFlags *Marks: Dynamic
*%ZANGroup *Marks: Group
*OpenUI *Marks/Marks: PickMany
*DefaultMarks: Crop
*Marks Crop: ""
*Marks Fold: ""
*CloseUI: *Marks
*%ZANFlags *Collate: Dynamic
*%ZANGroup *Collate: Group
*OpenUI *Collate/Collate: Boolean
*DefaultCollate: False
*Collate True: ""
*Collate False: ""
*CloseUI: *Collate
*%ZANFlags *QVScale: Dynamic
*%ZANGroup *QVScale: Group
*%ZANRange *QVScale/Scale: 25;400;5;100;"<*QVScale>"
*%ZANFlags *Shift: Dynamic
*%ZANGroup *Shift: Group
*%ZANFloatRange *Shift/Shift: -50.0;50.0;0.1;0.0;"<*Shift>"
*%ZANFlags *Notes1: Dynamic
*%ZANGroup *Notes1: Group
*%ZANJobNote *Notes1/Note: 40|UTF8
*%Notes1: "(<*Notes1>)"
*%ZANFlags *QVOutProfile2: Dynamic
*%ZANGroup *QVOutProfile2: Group
*%ZANJobNote *QVOutProfile2/Note: 0|UTF8
)PPD";

// The model of the description. Parses it once and removes the file.
ZANPPD& model() {
    static ZANPPD parsed(kAcceptOrphans | kAcceptHidden);
    static const bool once = [] {
        std::string name = (std::filesystem::temp_directory_path() / "torka-fuzz-XXXXXX").string();
        const int file = mkstemp(name.data());
        require(file >= 0);
        close(file);
        std::ofstream(name) << description;
        parsed.SetFile(FSRef{name});
        parsed.Build();
        std::filesystem::remove(name);
        return true;
    }();
    require(once);
    return parsed;
}

std::wstring textOf(const std::uint8_t* bytes, std::size_t size, bool isWide) {
    if (!isWide) {
        return wideFromUtf8({reinterpret_cast<const char*>(bytes), size});
    }
    std::wstring text(size / sizeof(wchar_t), L'\0');
    if (!text.empty()) {
        std::memcpy(text.data(), bytes, text.size() * sizeof(wchar_t));
    }
    return text;
}

struct OpenPane {
    std::unique_ptr<PDEData> data = paneData(model(), std::make_shared<MemoryPrintSettings>());
    UI_Panel panel{data.get()};
};

std::vector<std::pair<std::wstring, std::wstring>> handedOver(UI_Panel& panel, KeyValueList& list) {
    panel.GetDefaultSettings(list);
    std::vector<std::pair<std::wstring, std::wstring>> settings;
    for (std::size_t i = 0; i < list.Count(); ++i) {
        settings.emplace_back(list.Key(i), list.Value(i));
    }
    return settings;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    quietPane();
    if (size == 0) {
        return 0;
    }
    static OpenPane pane;
    // Removes the choices that earlier inputs added.
    const SuppliedPopupItem press{"Press", nullptr};
    model().PPDCreatePopupMenu("*QVOutProfile", {&press, 1}, "Press");
    pane.panel.ResetControlsToDefault();
    pane.data->SetCorvianPrinterAddress(cfString("10.0.0.9"), (bytes[0] & 1) != 0);
    pane.panel.makeJobNotesForSpecialControls();

    std::vector<std::wstring> texts{L""};
    for (const wchar_t unit : textOf(bytes + 1, size - 1, (bytes[0] & 2) != 0)) {
        if (unit == L'\0') {
            texts.emplace_back();
        } else {
            texts.back() += unit;
        }
    }
    KeyValueList list;
    for (std::size_t i = 0; i + 1 < texts.size(); i += 2) {
        list.Append(texts[i], texts[i + 1]);
    }
    pane.panel.SetUpdatedSettings(list.List());
    requireWithinCapacities(*pane.data);
    require(model().GetControls()->FindPopup("*QVOutProfile", true)->ItemCount() <= 3);

    const auto before = handedOver(pane.panel, list);
    pane.panel.SetUpdatedSettings(list.List());
    require(handedOver(pane.panel, list) == before);

    // Also passes the settings through the record, which cuts long texts.
    static auto record = std::make_unique<SharedMemoryList>();
    writeSettings(*record, list.List());
    Create_SDMList_From_SharedMemoryList(list, *record);
    pane.panel.SetUpdatedSettings(list.List());
    require(handedOver(pane.panel, list) == before);
    return 0;
}
