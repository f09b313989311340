// SPDX-License-Identifier: Apache-2.0
#include "MarkLetters.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bidi/commands/BidiFilePaths.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/serverdata/CUtil.h"
#include "pane/data/PDEData.h"
#include "pane/data/SpecialControls.h"
#include "pane/panel/PanelServices.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <utility>

// Presets of the server and of this machine, and the person's account.

namespace torka {

UI_Panel::ServerPreset UI_Panel::CurrentServerPreset() const {
    ServerPreset preset;
    for (std::size_t i = 0; i < serverPresetKeywords.size(); ++i) {
        const PPDXJobNote* note = model->GetControls()->FindJobNote(serverPresetKeywords[i], true);
        preset.notes[i] = note ? utf8Text(note->CopyNotes()) : std::string();
    }
    return preset;
}

bool UI_Panel::compareJPServerPresets() const { return CurrentServerPreset().notes == presetAtLaunch.notes; }

void UI_Panel::revertBackJPServerPresets() {
    for (std::size_t i = 0; i < serverPresetKeywords.size(); ++i) {
        if (PPDXJobNote* note = model->GetControls()->FindJobNote(serverPresetKeywords[i], true)) {
            note->SetUTF8Notes(cfString(presetAtLaunch.notes[i]));
        }
    }
}

void UI_Panel::resetJPServerpresetKeys() {
    for (const char* keyword : serverPresetKeywords) {
        if (PPDXJobNote* note = model->GetControls()->FindJobNote(keyword, true)) {
            note->SetUTF8Notes(cfString(""));
        }
    }
}

void UI_Panel::GetOSAccountName() {
    if (PPDXJobNote* note = model->GetControls()->FindJobNote("*QVUserAuthName", true)) {
        note->SetCurrentControlWithCFString(cfString(platform::system().UserName()));
    }
}

void UI_Panel::writeLocalJPPresetsToDynamicPPD() {
    const CString* fileName = model->PCFileName();
    const PMPrinter printer = panel ? panel->currentPrinter() : nullptr;
    const std::string folder =
        "Driver_" + std::string(fileName && fileName->Buffer() ? fileName->Buffer() : "");
    if (!printer || !isFileName(folder)) {
        return;
    }
    const std::filesystem::path path =
        platform::system().TemporaryFolder() / "ZAN" / "JPData" / folder / "Presets" / "presets.xml";
    std::string presets;
    // The replacement of byte-order marks doubles their length, so that a file within the limit may exceed it
    // afterwards.
    const std::error_code failure = platform::system().ReadFile(path, maximumRecordText, presets);
    if (failure == std::errc::file_too_large) {
        TellPresetsTooLarge();
        return;
    }
    if (failure) {
        if (failure != std::errc::no_such_file_or_directory) {
            myNSLogC("The local presets in %s are not sent to the queue: %s.", path.c_str(),
                     failure.message().c_str());
        }
        return;
    }
    presets = CUtil::__replace(presets, narrowMark, markLetters);
    if (presets.size() > maximumRecordText) {
        TellPresetsTooLarge();
        return;
    }
    const std::string title = commandTitle(SpoolerCommand::printerLocalPresets);
    if (PMPrinterSendCommand(describedPrinter(printer), cfString(presets), cfString(title), nullptr) !=
        noErr) {
        myNSLogC("The queue did not take the local presets.");
    }
}

void UI_Panel::TellPresetsTooLarge() {
    constexpr const char* table = "BidiStrings";
    const std::string limit = std::to_string(maximumRecordText / 1024);
    myNSLogC("The local presets are not sent to the queue: it takes at most %s kB.", limit.c_str());
    if (std::exchange(toldPresetsTooLarge, true)) {
        return;
    }
    TellPerson(
        Text("PRESETS_TOO_LARGE", "The presets are not kept in the printer’s queue", table),
        CUtil::__replace(Text("PRESETS_TOO_LARGE_L",
                              "The queue takes at most {limit} kB. This computer still has the presets. "
                              "Delete some of them in the full properties.",
                              table),
                         "{limit}", limit));
}

} // namespace torka
