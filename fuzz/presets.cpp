// SPDX-License-Identifier: Apache-2.0
// Reads an arbitrary file of presets, and an arbitrary record of popup job-note preferences. No secret value
// is taken from them, lists stay within their capacities, and values saved afterwards are read again.

#include "fuzz/PaneFuzzing.h"
#include "pane/data/PopupJobNotes.h"
#include "pane/data/PresetStore.h"

namespace {

using namespace torka;
using namespace torka::fuzz;

constexpr const char* description = R"PPD(*PPD-Adobe: "4.3"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*%QVVersion: "4.2"
*%ZANPropPage Page/Page: True
*%ZANGroupName Pane/Pane: True
*%ZANGroupName Group/Group: True
*%ZANParent Pane/Page: True|Scrollpane
*%ZANParent Group/Pane: True|Rolldown
*OpenUI *QVFold/Fold: PickOne
*DefaultQVFold: Flat
*QVFold Flat: ""
*QVFold Half: ""
*CloseUI: *QVFold
*%ZANRange *QVScale/Scale: 25;400;1;100;"<*QVScale>"
*%ZANFlags *QVNote: Dynamic
*%ZANGroup *QVNote: Group
*%ZANJobNote *QVNote/Note: 255|UTF8|Remembered|PopupJN
*%ZANFlags *QVSecret: Dynamic
*%ZANGroup *QVSecret: Group
*%ZANJobNote *QVSecret/Secret: 255|Password|Remembered|PopupJN
)PPD";

ZANPPD& model() {
    static const std::unique_ptr<ZANPPD> parsed = parsedModel(description);
    return *parsed;
}

bool isSecretEmpty() { return CFStringGetLength(model().CopyValueForKey(cfString("*QVSecret"))) == 0; }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    quietPane();
    require(model().GetControls()->JobNoteCount() == 2);
    model().GetControls()->ForEach([](PPDXControl* control) { control->ResetToDefaultValue(); });
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    const std::unique_ptr<PDEData> data = paneData(model(), std::make_shared<MemoryPrintSettings>());
    PresetStore store(cfString("Press"), model(), *data);
    require(!system().WriteFile(store.File(), input, 0600));
    const std::vector<std::string> names = store.Names();
    require(names.size() <= PresetStore::maximumPresets);
    for (const std::string& name : names) {
        store.Apply(name);
        requireWithinCapacities(*data);
    }
    store.ApplyLastUsed();
    require(isSecretEmpty());

    const CFDictionaryRef values = model().CopyAllValues();
    if (store.Save("fuzz") == PresetStore::Result::done) {
        require(store.Apply("fuzz") == PresetStore::Result::done);
        require(CFEqual(values, model().CopyAllValues()));
    }

    ZANPPD::SetPUJNPrefsReader([&input] { return input; });
    model().ReadPUJNPrefs();
    applyPopupJobNotePreferences(model());
    ZANPPD::SetPUJNPrefsReader({});
    require(isSecretEmpty());
    return 0;
}
