// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PopupJobNotes.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "output/ZANJobNote.h"
#include "pane/data/PanelState.h"
#include "platform/Log.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <optional>

namespace torka {

namespace {

constexpr std::size_t leadingCharacters = 3;
constexpr std::size_t maximumValueBytes = 4096;
constexpr std::size_t maximumPreferenceBytes = 65536;
constexpr std::string_view nothingStored = "010"; // the preferences of a queue that stores none
constexpr std::string_view recordMessage = "PopupJnData";

// The preferences that the queue keeps, as far as this process knows.
std::string& knownPreferences() {
    static std::string text(nothingStored);
    return text;
}

bool isRemembered(const ZANPPD& model, const PPDXJobNote& note) {
    return note.Keyword() != nullptr && note.IsPopupJN() && note.Remember() && !isSecretNote(model, &note);
}

void appendEscaped(std::string& out, std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || c == '%' || byte == 0x7F) {
            out += {'%', digits[byte >> 4], digits[byte & 15]};
        } else {
            out += c;
        }
    }
}

bool flagFrom(char stored, char& flag) {
    const bool usable = stored == '0' || stored == '1';
    flag = usable ? stored : flag;
    return usable;
}

} // namespace

void lookForPopupJobNotes(const ZANPPD& model) {
    gPopupJobNotesFoundOne = false;
    model.GetControls()->ForEach([](const PPDXControl* control) {
        const auto* note = dynamic_cast<const PPDXJobNote*>(control);
        gPopupJobNotesFoundOne = gPopupJobNotesFoundOne || (note != nullptr && note->IsPopupJN());
    });
    gPopupJobNotesDoneInitializing = true;
}

std::vector<PPDXJobNote*> popupJobNotes(const ZANPPD& model) {
    constexpr std::size_t maximumFields = 15;
    std::vector<PPDXJobNote*> notes;
    model.GetControls()->ForEach([&](PPDXControl* control) {
        auto* note = dynamic_cast<PPDXJobNote*>(control);
        if (note == nullptr || note->Keyword() == nullptr || !note->IsPopupJN()) {
            return;
        }
        if (notes.size() < maximumFields) {
            notes.push_back(note);
        } else {
            myNSLogC("The popup job-note dialog has no field left for %s.", note->Keyword());
        }
    });
    return notes;
}

std::vector<std::string> popupJobNoteFields(std::size_t notes) {
    std::vector<std::string> fields;
    const auto addRow = [&](std::size_t row) {
        for (std::size_t column = 1; column <= row && fields.size() < notes; ++column) {
            fields.push_back(std::to_string(row) + std::to_string(column));
        }
    };
    if (notes <= popupJobNoteCount) {
        addRow(notes);
        return fields;
    }
    for (std::size_t row = popupJobNoteCount; row > 0; --row) {
        addRow(row);
    }
    return fields;
}

bool isPopupJobNoteRemembered(const ZANPPD& model, const PPDXJobNote& note) {
    return isRemembered(model, note);
}

bool mustAskForPopupJobNotes(const std::vector<PPDXJobNote*>& notes) {
    if (gPopupJobNotesSavedEnable != '1' || gPopupJobNotesSavedSetting != '0' ||
        gPopupJobNotesDefaultsButton != 0) {
        return true;
    }
    return std::ranges::any_of(notes, [](const PPDXJobNote* note) { return !note->BrokenRules().empty(); });
}

std::string popupJobNotePreferences(const ZANPPD& model) {
    std::string text{gPopupJobNotesSavedEnable, gPopupJobNotesSavedSetting, gPopupJobNotesSavedShowLast};
    model.GetControls()->ForEach([&](PPDXControl* control) {
        const auto* note = dynamic_cast<const PPDXJobNote*>(control);
        if (note == nullptr || !isRemembered(model, *note)) {
            return;
        }
        const std::string value = utf8Text(note->CopyNotes());
        if (!value.empty() && value.size() <= maximumValueBytes && text.size() < maximumPreferenceBytes) {
            text += '\n';
            text += note->Keyword();
            text += '=';
            appendEscaped(text, value);
        }
    });
    return text;
}

void applyPopupJobNotePreferences(ZANPPD& model, RememberedValues values) {
    const PopupJobNotePreferences& stored = model.PUJNPrefs();
    flagFrom(stored.enable, gPopupJobNotesSavedEnable);
    flagFrom(stored.setting, gPopupJobNotesSavedSetting);
    flagFrom(stored.showLast, gPopupJobNotesSavedShowLast);
    if (values == RememberedValues::leave || gPopupJobNotesSavedEnable != '1' ||
        gPopupJobNotesSavedShowLast != '1') {
        return;
    }
    std::string_view rest = stored.values;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || line.size() > 3 * maximumValueBytes) {
            continue;
        }
        const std::string keyword(line.substr(0, equals));
        PPDXJobNote* note = model.GetControls()->FindJobNote(keyword.c_str(), true);
        const CFStringRef value =
            CFURLCreateStringByReplacingPercentEscapes(cfString(line.substr(equals + 1)));
        if (note != nullptr && value && isRemembered(model, *note)) {
            note->SetCurrentControlWithCFString(value);
        }
    }
}

void readPopupJobNotePreferencesFrom(std::string_view ppdPath) {
    knownPreferences() = nothingStored;
    if (ppdPath.empty()) {
        ZANPPD::SetPUJNPrefsReader({});
        return;
    }
    ZANPPD::SetPUJNPrefsReader([path = std::string(ppdPath)]() -> std::optional<std::string> {
        std::string text = utf8FromWide(CPPDMsgHdlr(path, recordMessage).GetStringData());
        if (text.size() > maximumPreferenceBytes + maximumValueBytes) {
            text.clear();
        }
        knownPreferences() = text.empty() ? std::string(nothingStored) : text;
        return text.size() < leadingCharacters ? std::nullopt : std::optional<std::string>(text);
    });
}

const std::string& knownPopupJobNotePreferences() { return knownPreferences(); }

void setKnownPopupJobNotePreferences(std::string_view preferences) { knownPreferences() = preferences; }

OSStatus QVPDEDataWrite(const PMPrinter& printer, std::string_view preferences) {
    if (preferences == knownPreferences()) {
        return noErr;
    }
    const OSStatus status =
        PMPrinterSendCommand(describedPrinter(printer), cfString(preferences),
                             cfString(commandTitle(SpoolerCommand::popupJnData)), nullptr);
    if (status == noErr) {
        knownPreferences() = preferences;
    }
    return status;
}

} // namespace torka
